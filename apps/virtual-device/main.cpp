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
    DeviceOptions options = line.device;
    if (nIndex > 0) {
        options.strDeviceId += "-" + std::to_string(nIndex + 1);
    }
    if (options.nPort != 0) {
        options.nPort = static_cast<std::uint16_t>(options.nPort + nIndex);
    }
    return options;
}

std::vector<std::unique_ptr<VirtualDevice>> startDevices(const CommandLine& line) {
    if (line.device.nPort != 0 && line.device.nPort + line.nCount - 1 > MaxPort) {
        throw std::invalid_argument("there are not so many ports behind the first one");
    }
    const auto pLoop = std::make_shared<DeviceLoop>();
    std::vector<std::unique_ptr<VirtualDevice>> vecDevices;
    vecDevices.reserve(static_cast<std::size_t>(line.nCount));
    for (int nIndex = 0; nIndex < line.nCount; ++nIndex) {
        vecDevices.push_back(std::make_unique<VirtualDevice>(optionsOf(line, nIndex), pLoop));
    }
    return vecDevices;
}

void printPorts(const CommandLine& line,
                const std::vector<std::unique_ptr<VirtualDevice>>& vecDevices) {
    const std::string& strAddress = line.device.strBindAddress;
    const bool bIsIPv6 = strAddress.find(':') != std::string::npos;
    for (const auto& pDevice : vecDevices) {
        std::printf(bIsIPv6 ? "listening on [%s]:%d\n" : "listening on %s:%d\n", strAddress.c_str(),
                    static_cast<int>(pDevice->getPort()));
    }
    std::fflush(stdout);
}

// Waits for a signal to end, or for the end of the time. Signals count from its construction on.
class End {
public:
    explicit End(int nSeconds) : m_signals(m_context, SIGINT, SIGTERM) {
        m_signals.async_wait([this](asio::error_code, int) { m_context.stop(); });
        if (nSeconds > 0) {
            m_timer.expires_after(std::chrono::seconds(nSeconds));
            m_timer.async_wait([this](asio::error_code) { m_context.stop(); });
        }
    }

    void wait() { m_context.run(); }

private:
    asio::io_context m_context;
    asio::signal_set m_signals;
    asio::steady_timer m_timer{m_context};
};

}  // namespace

int main(int nCount, char** pArguments) {
    const CommandLine line = readCommandLine(nCount, pArguments);
    if (line.nExit >= 0) {
        return line.nExit;
    }
    try {
        End end(line.nSeconds);
        const auto vecDevices = startDevices(line);
        printPorts(line, vecDevices);
        // What record mappers print about odd requests is no output of this program, and nobody
        // need read its standard output to the end.
        if (!std::freopen(line.device.bVerbose ? "/dev/stderr" : "/dev/null", "w", stdout)) {
            return 1;
        }
        end.wait();
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "virtual-device: %s\n", error.what());
        return 1;
    }
}
