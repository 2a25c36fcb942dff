// What happens between the command line and the output: checks, login, calls, results.
#include "Verbs.h"

#include <fleetkit/FleetKit.h>

#include "Action.h"
#include "Credentials.h"
#include "DeviceSession.h"
#include "ExitCode.h"
#include "FieldAssignment.h"
#include "Terminal.h"
#include "UsageError.h"

using namespace fleetkit;

namespace {

constexpr const char* LoginName = "login";

// The meaning of a code. Positive ones are none of the library's.
std::string describe(int nCode) {
    return nCode > 0 ? "the device refused with its own code " + std::to_string(nCode)
                     : errorMeaning(nCode);
}

void requireUser(const CommandLine& line) {
    if (line.strUser.empty()) {
        throw UsageError("no user: use -u or set FLEETCTL_USER");
    }
}

// Where to log in, complete before anything is sent.
struct Target {
    explicit Target(const CommandLine& line) {
        if (line.strDevice.empty()) {
            throw UsageError("no device: use -d or set FLEETCTL_DEVICE");
        }
        requireUser(line);
        address = parseDeviceAddress(line.strDevice);
        strPassword = loginPassword(line.strPasswordFile, line.strUser);
    }

    InetAddr address;
    std::string strPassword;
};

// Logs in and has the work done with the handle.
template <class Work>
int withSession(const CommandLine& line, const Target& target, Output& output, Work work) {
    const DeviceSession session(target.address, line.strUser, target.strPassword, line.nTimeoutMs);
    if (session.getCode() != ErrorCode::Success) {
        output.failure(line.strDevice, LoginName, session.getCode(), describe(session.getCode()));
        return ExitCode::LoginFailed;
    }
    return work(session.getHandle());
}

int report(const CommandLine& line, Output& output, const std::string& strName, int nCode,
           const Json& value) {
    if (nCode == ErrorCode::Success) {
        output.success(line.strDevice, strName, value);
        return ExitCode::Success;
    }
    output.failure(line.strDevice, strName, nCode, describe(nCode));
    return ExitCode::OperationFailed;
}

int listNames(Output& output) {
    TableRows vecRows;
    for (const Property& property : properties()) {
        const bool bGet = property.get != nullptr;
        const bool bSet = property.set != nullptr;
        if (output.getFormat() == Format::JsonLines) {
            output.jsonLine({{"name", property.szName},
                             {"get", bGet},
                             {"set", bSet},
                             {"record", property.make().shape.pRecord->szClass},
                             {"summary", property.szSummary}});
        }
        vecRows.push_back(
            {property.szName, bGet ? "get" : "", bSet ? "set" : "", property.szSummary});
    }
    if (output.getFormat() == Format::Table) {
        output.text(formatTable(vecRows, 0, output.getWidth()));
    }
    return ExitCode::Success;
}

const Property& readableProperty(const std::string& strName) {
    const Property& property = findProperty(strName);
    if (property.get == nullptr) {
        throw UsageError(strName +
                         " cannot be read, the library has no function for it; it can "
                         "only be set, with every field given");
    }
    return property;
}

const Property& writableProperty(const std::string& strName) {
    const Property& property = findProperty(strName);
    if (property.set == nullptr) {
        throw UsageError(strName + " can only be read");
    }
    return property;
}

int getOne(const CommandLine& line, Output& output, const Property& property, const long& nHandle) {
    const Value value = property.make();
    const int nCode = property.get({nHandle, line.selection}, value.pObject.get());
    return report(line, output, property.szName, nCode, toJson(value.shape, value.pObject.get()));
}

int setOne(const CommandLine& line, Output& output, const Property& property,
           const std::vector<FieldAssignment>& vecAssignments, const long& nHandle) {
    const Call call{nHandle, line.selection};
    const Value value = property.make();
    if (property.get != nullptr) {
        const int nCode = property.get(call, value.pObject.get());
        if (nCode != ErrorCode::Success) {
            return report(line, output, property.szName, nCode, nullptr);
        }
    }
    Json json = toJson(value.shape, value.pObject.get());
    for (const FieldAssignment& assignment : vecAssignments) {
        assign(assignment, value.shape, property.szName, json);
    }
    fromJson(json, value.shape, value.pObject.get());
    const int nCode = property.set(call, value.pObject.get());
    if (nCode > 0) {  // only the device knows which of the fields it does not like
        std::string strSent = "; sent:";
        for (const std::string& strText : line.vecArguments) {
            strSent += ' ' + strText;
        }
        output.failure(line.strDevice, property.szName, nCode, describe(nCode) + strSent);
        return ExitCode::OperationFailed;
    }
    return report(line, output, property.szName, nCode, toJson(value.shape, value.pObject.get()));
}

void checkArguments(const Action& action, const CommandLine& line) {
    const std::size_t nCount = line.vecArguments.size();
    if (nCount < action.form.nLeastArguments || nCount > action.form.nMostArguments) {
        throw UsageError(std::string("usage: do ") + action.szName + ' ' + action.form.szArguments);
    }
}

// Whether the user wants it. UsageError when there is nobody to say so.
bool isConfirmed(const Action& action, const CommandLine& line) {
    if (!action.endangers || line.bYes) {
        return true;
    }
    if (!canAsk()) {
        throw UsageError(std::string(action.szName) +
                         " has to be confirmed: use --yes where nobody can be asked");
    }
    return askYesNo(std::string(action.szSummary) + " (" + line.strDevice + ")?");
}

}  // namespace

int runGet(const CommandLine& line, Output& output) {
    if (line.bList) {
        return listNames(output);
    }
    if (line.vecNames.empty()) {
        throw UsageError("nothing to get; `fleetctl get --list` prints the names");
    }
    std::vector<const Property*> vecProperties;
    for (const std::string& strName : line.vecNames) {
        vecProperties.push_back(&readableProperty(strName));
        requireSelectors(*vecProperties.back(), line.selection);
        requireServedType(*vecProperties.back(), line.selection);
    }
    refuseOtherSelectors(vecProperties, line.selection);
    return withSession(line, Target(line), output, [&](const long& nHandle) {
        int nExitCode = ExitCode::Success;
        for (const Property* pProperty : vecProperties) {
            if (getOne(line, output, *pProperty, nHandle) != ExitCode::Success) {
                nExitCode = ExitCode::OperationFailed;
            }
        }
        return nExitCode;
    });
}

int runSet(const CommandLine& line, Output& output) {
    const Property& property = writableProperty(line.strName);
    requireSelectors(property, line.selection);
    requireServedType(property, line.selection);
    refuseOtherSelectors({&property}, line.selection);
    const Shape shape = property.make().shape;
    std::vector<FieldAssignment> vecAssignments;
    for (const std::string& strText : line.vecArguments) {
        vecAssignments.push_back(parseAssignment(strText, shape, property.szName));
    }
    if (vecAssignments.empty()) {
        throw UsageError("nothing to set; say FIELD=VALUE");
    }
    if (property.get == nullptr) {
        requireEveryField(vecAssignments, *shape.pRecord, property.szName);
    }
    return withSession(line, Target(line), output, [&](const long& nHandle) {
        return setOne(line, output, property, vecAssignments, nHandle);
    });
}

int runDo(const CommandLine& line, Output& output) {
    const Action& action = findAction(line.strName);
    checkArguments(action, line);
    std::string strNewPassword;
    const auto run = [&](const std::string& strPassword, const long& nHandle) {
        const int nCode = action.form.run({line, strPassword, strNewPassword, nHandle});
        return report(line, output, action.szName, nCode, nullptr);
    };
    if (!action.form.needsSession) {
        requireUser(line);
        return run(loginPassword(line.strPasswordFile, line.strUser), 0);
    }
    const Target target(line);
    if (action.form.needsNewPassword) {
        strNewPassword = newPassword(line.strNewPasswordFile);
    }
    if (!isConfirmed(action, line)) {
        std::fputs("fleetctl: not confirmed, nothing was done\n", stderr);
        return ExitCode::OperationFailed;
    }
    return withSession(line, target, output,
                       [&](const long& nHandle) { return run(target.strPassword, nHandle); });
}
