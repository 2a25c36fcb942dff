// The options of the program.
#include "virtual-device/CommandLine.h"

#include <CLI/CLI.hpp>
#include <iomanip>
#include <iostream>
#include <map>

namespace {

constexpr int MaxPort = 65535;
constexpr int MaxChannels = 1024;
constexpr int MaxStreams = 16;
constexpr int MaxCount = 10000;

void printMisbehaviours() {
    for (const MisbehaviourKind& kind : misbehaviourKinds()) {
        std::cout << std::left << std::setw(18) << kind.szName << kind.szMeaning;
        if (kind.nDefault != 0) {
            std::cout << " (" << kind.nDefault << ")";
        }
        std::cout << "\n";
    }
}

// A validator of the parser: an error text, empty for a good value.
std::string checkMisbehaviour(const std::string& strText) {
    return parseMisbehaviour(strText)
               ? std::string()
               : "no misbehaviour: " + strText + " (see --list-misbehaviours)";
}

}  // namespace

CommandLine readCommandLine(int nCount, const char* const* pArguments) {
    CommandLine objLine;
    DeviceOptions& objDevice = objLine.objDevice;
    std::vector<std::string> vecMisbehaviours;
    bool bList = false;
    CLI::App objApp(
        "A virtual video device to talk to: state behind every command, and "
        "misbehaviour on demand.\nPrints \"listening on ADDRESS:PORT\" for each "
        "device, and ends on SIGINT and SIGTERM.");
    const std::map<std::string, DeviceKind> mapKinds{{"ipc", DeviceKind::IPC},
                                                     {"nvr", DeviceKind::NVR}};
    objApp.add_option("--bind", objDevice.strBindAddress, "Address to listen on")
        ->check(CLI::ValidIPV4 | CLI::Validator(
                                     [](const std::string& strText) {
                                         return strText.find(':') == std::string::npos
                                                    ? std::string("no address: " + strText)
                                                    : std::string();
                                     },
                                     "IPV6"))
        ->capture_default_str();
    objApp
        .add_option("--port", objDevice.nPort,
                    "Port, and the next ones for further devices; 0 takes free ones")
        ->check(CLI::Range(0, MaxPort));
    objApp.add_option("--user", objDevice.strUser, "Name of the user")->capture_default_str();
    objApp.add_option("--password", objDevice.strPassword, "Password of the user")
        ->envname("VIRTUAL_DEVICE_PASSWORD")
        ->capture_default_str();
    objApp.add_option("--kind", objDevice.nKind, "Camera (ipc) or recorder (nvr)")
        ->transform(CLI::CheckedTransformer(mapKinds, CLI::ignore_case))
        ->default_str("ipc");
    auto* pChannels = objApp
                          .add_option("--channels", objDevice.nChannels,
                                      "Channels; 1 for a camera, 4 for a recorder")
                          ->check(CLI::Range(1, MaxChannels));
    objApp.add_option("--streams", objDevice.nStreams, "Streams of each channel")
        ->check(CLI::Range(1, MaxStreams))
        ->capture_default_str();
    objApp
        .add_option("--device-id", objDevice.strDeviceId,
                    "Id of the device; further ones get -2, -3 ... behind it")
        ->capture_default_str();
    objApp.add_option("--count", objLine.nCount, "Devices in this process")
        ->check(CLI::Range(1, MaxCount))
        ->capture_default_str();
    objApp.add_option("--seconds", objLine.nSeconds, "End by itself after so many seconds")
        ->check(CLI::PositiveNumber);
    objApp.add_flag("--multicast", objDevice.bMulticast,
                    "Listen on group 234.5.6.7 port 31001, on the interface of the address");
    objApp
        .add_option("--misbehave", vecMisbehaviours,
                    "NAME[=VALUE][:COMMAND], may be given several times")
        ->check(CLI::Validator(checkMisbehaviour, "MISBEHAVIOUR"));
    objApp.add_flag("--list-misbehaviours", bList, "Print their names and end");
    objApp.add_flag("--verbose", objDevice.bVerbose,
                    "Tell on standard error who logs in and what is asked");
    try {
        objApp.parse(nCount, pArguments);
    } catch (const CLI::ParseError& objError) {
        const int nStatus = objApp.exit(objError);
        objLine.nExit = nStatus == 0 ? 0 : 2;
        return objLine;
    }
    if (bList) {
        printMisbehaviours();
        objLine.nExit = 0;
    }
    if (pChannels->empty()) {
        objDevice.nChannels = objDevice.nKind == DeviceKind::NVR ? 4 : 1;
    }
    for (const std::string& strText : vecMisbehaviours) {
        objDevice.vecMisbehaviours.push_back(*parseMisbehaviour(strText));
    }
    return objLine;
}
