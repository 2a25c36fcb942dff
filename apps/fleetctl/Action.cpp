// Looks actions up.
#include "Action.h"

#include "Suggestion.h"
#include "UsageError.h"

const Action& findAction(const std::string& strName) {
    std::vector<std::string> vecNames;
    for (const Action& action : actions()) {
        if (strName == action.szName) {
            return action;
        }
        vecNames.emplace_back(action.szName);
    }
    throw UsageError((strName.empty() ? "no action" : "unknown action '" + strName + "'") +
                     suggest(strName, "actions", vecNames));
}
