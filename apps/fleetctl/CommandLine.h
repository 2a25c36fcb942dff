// CommandLine: the arguments of fleetctl, read.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Output.h"
#include "Property.h"

struct CommandLine {
    enum class Verb { Get, Set, Do, Vocabulary, Text };

    Verb nVerb = Verb::Text;
    std::string strText;  // Verb::Text: what help and --version print

    std::string strDevice;
    std::string strUser;
    std::string strPasswordFile;
    std::optional<Format> format;  // as asked for
    int nTimeoutMs = 0;            // of an exchange; 0 for the library's own limits
    int nVerbosity = 0;

    std::vector<std::string> vecNames;      // get
    bool bList = false;                     // get
    std::string strName;                    // set, do, vocabulary, help
    std::vector<std::string> vecArguments;  // set, do
    Selection selection;                    // get, set

    bool bYes = false;               // do
    std::vector<int> vecHold;        // do reset
    std::string strNewPasswordFile;  // do passwd
};

// UsageError for arguments that make no sense.
CommandLine parseCommandLine(int nCount, char** ppArguments);
