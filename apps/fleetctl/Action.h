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

// How an action is called, and what it needs.
struct ActionForm {
    const char* szArguments;  // for the help
    std::size_t nLeastArguments;
    std::size_t nMostArguments;
    bool needsSession;
    bool needsNewPassword;
    // Throws UsageError before anything is sent.
    int (*run)(const ActionInput& input);
};

struct Action {
    const char* szName;
    const char* szSummary;
    bool endangers;  // asks before it starts
    ActionForm form;
};

// In the order of their names.
const std::vector<Action>& actions();

// UsageError, with the names that are valid, for another one.
const Action& findAction(const std::string& strName);
