// Action: what `do` can have a device do.
#pragma once

#include <string>
#include <vector>

#include "CommandLine.h"

struct ActionInput {
    const CommandLine& line;
    const std::string& strPassword;
    const std::string& strNewPassword;  // empty unless the action needs it
    const long& nHandle;                // 0 for an action without a session
};

struct Action {
    const char* szName;
    const char* szArguments;  // for the help
    const char* szSummary;
    bool isDestructive;  // asks before it starts
    bool needsSession;
    bool needsNewPassword;
    std::size_t nLeastArguments;
    std::size_t nMostArguments;
    // Throws UsageError before anything is sent.
    int (*run)(const ActionInput& input);
};

const std::vector<Action>& actions();

// UsageError, with the names that are valid, for another one.
const Action& findAction(const std::string& strName);
