// The options of the program.
#include "virtual-device/CommandLine.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <limits>
#include <stdexcept>

namespace {

constexpr int MaxPort = 65535;
constexpr int MaxChannels = 1024;
constexpr int MaxStreams = 16;
constexpr int MaxCount = 10000;

void printMisbehaviours() {
    for (const MisbehaviourKind& kind : misbehaviourKinds()) {
        std::cout << std::left << std::setw(18) << kind.szName << kind.szMeaning;
        if (kind.value.isTaken()) {
            std::cout << ", " << kind.value.nLeast << " to " << kind.value.nMost << " ("
                      << kind.value.nDefault << ")";
        }
        std::cout << "\n";
    }
}

// A validator of the parser: an error text, empty for a good value.
std::string checkMisbehaviour(const std::string& strText) {
    try {
        parseMisbehaviour(strText);
        return {};
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

// An IPv6 address is left to the system to judge.
std::string checkIPv6(const std::string& strText) {
    return strText.find(':') == std::string::npos ? "no address: " + strText : std::string();
}

// Replaces the name of a kind by its number, which is what the parser reads into an enumeration.
std::string takeKind(std::string& strText) {
    const std::string strName = CLI::detail::to_lower(strText);
    if (strName != "ipc" && strName != "nvr") {
        return "neither ipc nor nvr: " + strText;
    }
    strText =
        std::to_string(static_cast<int>(strName == "nvr" ? DeviceKind::NVR : DeviceKind::IPC));
    return {};
}

// Without its line end.
std::string firstLineOf(const std::string& strFile) {
    std::ifstream file(strFile);
    std::string strLine;
    if (!file || (!std::getline(file, strLine) && !file.eof())) {
        throw CLI::ValidationError("--password-file", "cannot read " + strFile);
    }
    if (!strLine.empty() && strLine.back() == '\r') {
        strLine.pop_back();
    }
    return strLine;
}

// A check that speaks up only when it fails: the help names the kind of value instead.
CLI::Validator quiet(CLI::Validator check) {
    check.description("");
    return check;
}

void addDeviceOptions(CLI::App& app, DeviceOptions& device) {
    app.add_option("--bind", device.strBindAddress, "Address to listen on")
        ->check(quiet(CLI::ValidIPV4 | CLI::Validator(checkIPv6, "IPv6")))
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option("--port", device.nPort,
                   "Port, and the next ones for further devices; 0 takes free ones")
        ->check(quiet(CLI::Range(0, MaxPort)))
        ->type_name("PORT");
    app.add_option("--user", device.strUser, "Name of the user")
        ->type_name("NAME")
        ->capture_default_str();
    app.add_option("--password", device.strPassword, "Password of the user")
        ->envname("VIRTUAL_DEVICE_PASSWORD")
        ->type_name("TEXT")
        ->capture_default_str();
    app.add_option_function<std::string>(
           "--password-file",
           [&device](const std::string& strFile) { device.strPassword = firstLineOf(strFile); },
           "File with the password in its first line, which nobody sees in a list of processes")
        ->type_name("FILE");
    app.add_option("--kind", device.nKind, "Camera (ipc) or recorder (nvr)")
        ->transform(CLI::Validator(takeKind, ""))
        ->type_name("KIND")
        ->default_str("ipc");
    app.add_option("--channels", device.nChannels, "Channels; 1 for a camera, 4 for a recorder")
        ->check(quiet(CLI::Range(1, MaxChannels)))
        ->type_name("NUMBER");
    app.add_option("--streams", device.nStreams, "Streams of each channel")
        ->check(quiet(CLI::Range(1, MaxStreams)))
        ->type_name("NUMBER")
        ->capture_default_str();
    app.add_option("--device-id", device.strDeviceId,
                   "Id of the device; further ones get -2, -3 ... behind it")
        ->type_name("ID")
        ->capture_default_str();
    app.add_option("--max-connections", device.nMaxConnections,
                   "Clients at a time; one more takes the place of one that is not logged in")
        ->check(quiet(CLI::Range(1, MaxCount)))
        ->type_name("NUMBER")
        ->capture_default_str();
    app.add_flag("--multicast", device.bMulticast,
                 "Listen on group 234.5.6.7 port 31001, on the interface of the address");
    app.add_flag("--verbose", device.bVerbose,
                 "Tell on standard error who logs in and what is asked");
}

// What the texts of the command line make of the options.
void complete(const CLI::App& app, const std::vector<std::string>& vecMisbehaviours,
              DeviceOptions& device) {
    if (app.count("--channels") == 0) {
        device.nChannels = device.nKind == DeviceKind::NVR ? 4 : 1;
    }
    for (const std::string& strText : vecMisbehaviours) {
        device.vecMisbehaviours.push_back(parseMisbehaviour(strText));
    }
}

}  // namespace

CommandLine readCommandLine(int nCount, const char* const* pArguments) {
    CommandLine line;
    std::vector<std::string> vecMisbehaviours;
    bool bList = false;
    CLI::App app(
        "A virtual video device to talk to: state behind every command, and "
        "misbehaviour on demand.\nPrints \"listening on ADDRESS:PORT\" for each "
        "device, and ends on SIGINT and SIGTERM.");
    addDeviceOptions(app, line.device);
    app.add_option("--count", line.nCount, "Devices in this process")
        ->check(quiet(CLI::Range(1, MaxCount)))
        ->type_name("NUMBER")
        ->capture_default_str();
    app.add_option("--seconds", line.nSeconds, "End by itself after so many seconds")
        ->check(quiet(CLI::Range(1, std::numeric_limits<int>::max())))
        ->type_name("NUMBER");
    app.add_option("--misbehave", vecMisbehaviours,
                   "A misbehaviour; may be given several times. COMMAND, the only one that is\n"
                   "spoilt, is a number or the name of an operation: drop:getNTPParam")
        ->check(CLI::Validator(checkMisbehaviour, ""))
        ->type_name("NAME[=VALUE][:COMMAND]");
    app.add_flag("--list-misbehaviours", bList,
                 "Print their names, what they take for VALUE and by default, and end");
    try {
        app.parse(nCount, pArguments);
    } catch (const CLI::ParseError& error) {
        line.nExit = app.exit(error) == 0 ? 0 : 2;
        return line;
    }
    if (bList) {
        printMisbehaviours();
        line.nExit = 0;
    }
    complete(app, vecMisbehaviours, line.device);
    return line;
}
