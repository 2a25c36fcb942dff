// Looks actions up.
#include "Action.h"

#include "UsageError.h"

const Action& findAction(const std::string& strName) {
    std::string strNames;
    for (const Action& action : actions()) {
        if (strName == action.szName) {
            return action;
        }
        strNames += std::string(" ") + action.szName;
    }
    throw UsageError((strName.empty() ? "no action" : "unknown action '" + strName + "'") +
                     "; the actions are:" + strNames);
}
