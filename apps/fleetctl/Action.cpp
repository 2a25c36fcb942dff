// The actions, each one call of the library.
#include "Action.h"

#include <fleetkit/FleetKit.h>
#include <fleetkit/domain/HostNetwork.h>
#include <fleetkit/domain/User.h>

#include <QString>
#include <limits>

#include "FieldAssignment.h"
#include "UsageError.h"

using namespace fleetkit;

namespace {

constexpr std::size_t AnyNumber = std::numeric_limits<std::size_t>::max();

int restart(const ActionInput& input) {
    return FleetKit::setDeviceRestart(input.nHandle);
}

int reset(const ActionInput& input) {
    return FleetKit::setDeviceReset(input.nHandle, input.line.vecHold);
}

int changePassword(const ActionInput& input) {
    return FleetKit::setDevicePasswd(input.nHandle, QString::fromStdString(input.strPassword),
                                     QString::fromStdString(input.strNewPassword));
}

int execute(const ActionInput& input) {
    std::string strUnused;
    return FleetKit::exeCommand(input.nHandle, input.line.vecArguments.front(), strUnused);
}

HostNetwork networkOf(const CommandLine& line) {
    HostNetwork network;
    const Shape shape{false, &HostNetwork::descriptor(), FieldKind::Record};
    Json json = toJson(shape, &network);
    std::vector<FieldAssignment> vecAssignments;
    for (std::size_t i = 1; i < line.vecArguments.size(); ++i) {
        vecAssignments.push_back(parseAssignment(line.vecArguments[i], shape, line.strName));
        assign(vecAssignments.back(), shape, line.strName, json);
    }
    requireEveryField(vecAssignments, HostNetwork::descriptor(), line.strName);
    fromJson(json, shape, &network);
    return network;
}

int setNetworkByMulticast(const ActionInput& input) {
    HostNetwork network = networkOf(input.line);
    User user;
    user.setUserName(input.line.strUser);
    user.setPassword(input.strPassword);
    return FleetKit::setDeviceHostNetwork(QString::fromStdString(input.line.vecArguments.front()),
                                          network, user);
}

}  // namespace

const std::vector<Action>& actions() {
    static const std::vector<Action> vecActions = {
        {"restart", "", "Restart the device", true, true, false, 0, 0, restart},
        {"reset", "[--hold N,...]", "Reset the device to its defaults", true, true, false, 0, 0,
         reset},
        {"passwd", "[--new-password-file FILE]", "Change the password of the user", true, true,
         true, 0, 0, changePassword},
        {"exec", "COMMAND", "Run a command line on the device; its output stays there", false, true,
         false, 1, 1, execute},
        {"network-by-multicast", "DEVICE-ID FIELD=VALUE...",
         "Set every field of `network` of a device that is out of reach", false, false, false, 1,
         AnyNumber, setNetworkByMulticast},
    };
    return vecActions;
}

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
