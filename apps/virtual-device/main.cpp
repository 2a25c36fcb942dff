// The program: devices until a signal or the end of their time.
#include <asio/io_context.hpp>
#include <asio/ip/address.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "virtual-device/CommandLine.h"
#include "virtual-device/DeviceLoop.h"
#include "virtual-device/VirtualDevice.h"

namespace {

constexpr int MaxPort = 65535;

DeviceOptions optionsOf(const CommandLine& line, int nIndex) {
    DeviceOptions objOptions = line.objDevice;
    if (nIndex > 0) {
        objOptions.strDeviceId += "-" + std::to_string(nIndex + 1);
    }
    if (objOptions.nPort != 0) {
        objOptions.nPort = static_cast<std::uint16_t>(objOptions.nPort + nIndex);
    }
    return objOptions;
}

std::vector<std::unique_ptr<VirtualDevice>> startDevices(const CommandLine& line) {
    if (line.objDevice.nPort != 0 && line.objDevice.nPort + line.nCount - 1 > MaxPort) {
        throw std::invalid_argument("there are not so many ports behind the first one");
    }
    const auto pobjLoop = std::make_shared<DeviceLoop>();
    std::vector<std::unique_ptr<VirtualDevice>> vecDevices;
    vecDevices.reserve(static_cast<std::size_t>(line.nCount));
    for (int nIndex = 0; nIndex < line.nCount; ++nIndex) {
        vecDevices.push_back(std::make_unique<VirtualDevice>(optionsOf(line, nIndex), pobjLoop));
    }
    return vecDevices;
}

void printPorts(const CommandLine& line,
                const std::vector<std::unique_ptr<VirtualDevice>>& vecDevices) {
    const std::string& strAddress = line.objDevice.strBindAddress;
    const bool bIsIPv6 = strAddress.find(':') != std::string::npos;
    for (const auto& pobjDevice : vecDevices) {
        std::printf(bIsIPv6 ? "listening on [%s]:%d\n" : "listening on %s:%d\n", strAddress.c_str(),
                    static_cast<int>(pobjDevice->getPort()));
    }
    std::fflush(stdout);
}

// Waits for a signal to end, or for the end of the time. Signals count from its construction on.
class End {
public:
    explicit End(int nSeconds) : m_objSignals(m_objContext, SIGINT, SIGTERM) {
        m_objSignals.async_wait([this](asio::error_code, int) { m_objContext.stop(); });
        if (nSeconds > 0) {
            m_objTimer.expires_after(std::chrono::seconds(nSeconds));
            m_objTimer.async_wait([this](asio::error_code) { m_objContext.stop(); });
        }
    }

    void wait() { m_objContext.run(); }

private:
    asio::io_context m_objContext;
    asio::signal_set m_objSignals;
    asio::steady_timer m_objTimer{m_objContext};
};

}  // namespace

int main(int nCount, char** pArguments) {
    const CommandLine objLine = readCommandLine(nCount, pArguments);
    if (objLine.nExit >= 0) {
        return objLine.nExit;
    }
    try {
        End objEnd(objLine.nSeconds);
        const auto vecDevices = startDevices(objLine);
        printPorts(objLine, vecDevices);
        // What record mappers print about odd requests is no output of this program, and nobody
        // need read its standard output to the end.
        if (!std::freopen(objLine.objDevice.bVerbose ? "/dev/stderr" : "/dev/null", "w", stdout)) {
            return 1;
        }
        objEnd.wait();
        return 0;
    } catch (const std::exception& objError) {
        std::fprintf(stderr, "virtual-device: %s\n", objError.what());
        return 1;
    }
}
