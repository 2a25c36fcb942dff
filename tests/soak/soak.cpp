// A fleet in real time: good devices beside silent, trickling and slow ones, and threads that log
// in, read, write and log out while their connections are cut. What the process holds may not grow,
// and no good session may miss a keep-alive: its device ends whoever is silent for longer.
//
// usage: soak [MINUTES]     0, as in the tests, is one short round with a tenth of the fleet
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/SafePointerRegistry.h"
#include "device/FleetKit.h"
#include "device/Login.h"
#include "domain/DeviceTime.h"
#include "domain/NTPParam.h"
#include "support/LoginData.h"
#include "support/NextDoor.h"
#include "virtual-device/VirtualDevice.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int StormThreads = 8;
constexpr int LoginsOfRound = 500;  // of each thread
constexpr int SlowLimitMs = 20000;
constexpr long GrowthKb = 16L << 10;

struct Laboratory {
    std::uint16_t nGood, nSilent, nTrickling, nSlow, nCut;
};

NextDoor<Laboratory> openLaboratory(const std::string& strSlowAnswerMs) {
    return NextDoor<Laboratory>([&](const auto& serve) {
        const auto options = [](std::vector<Misbehaviour> vecMisbehaviours = {}) {
            DeviceOptions made;
            made.nMaxConnections = 4000;
            made.idleTime = 70s;
            made.vecMisbehaviours = std::move(vecMisbehaviours);
            return made;
        };
        const VirtualDevice good(options());
        const VirtualDevice silent(options({parseMisbehaviour("drop:keepAlive")}));
        const VirtualDevice trickling(options({parseMisbehaviour("trickle=200:keepAlive")}));
        const VirtualDevice slow(
            options({parseMisbehaviour("delay=" + strSlowAnswerMs + ":getDeviceTime")}));
        VirtualDevice cut(options());
        const std::jthread cutter([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                std::this_thread::sleep_for(50ms);
                cut.dropConnections();
            }
        });
        serve(
            {good.getPort(), silent.getPort(), trickling.getPort(), slow.getPort(), cut.getPort()});
    });
}

struct Holdings {
    long nMemoryKb = 0;
    long nDescriptors = 0;
    long nThreads = 0;
    long nPointers = 0;
};

long entriesOf(const char* szDirectory) {
    const std::filesystem::directory_iterator entries(szDirectory);
    return std::distance(begin(entries), end(entries));
}

Holdings holdings() {
    long nPages = 0;
    std::ifstream("/proc/self/statm") >> nPages >> nPages;
    return {nPages * sysconf(_SC_PAGESIZE) / 1024, entriesOf("/proc/self/fd"),
            entriesOf("/proc/self/task"),
            static_cast<long>(SafePointerRegistry::instance().getUsed())};
}

class Soak {
public:
    explicit Soak(int nMinutes)
        : m_laboratory(openLaboratory(nMinutes > 0 ? "8000" : "500")),
          m_nTenths(nMinutes > 0 ? 10 : 1),
          m_pause(nMinutes > 0 ? 30ms : 0ms),
          m_end(Clock::now() + std::chrono::minutes(nMinutes)) {}

    bool run() {
        const auto vecGood = loginTo(m_ports.nGood, 188 * m_nTenths);
        const auto vecSilent = loginTo(m_ports.nSilent, 10 * m_nTenths);
        const auto vecTrickling = loginTo(m_ports.nTrickling, m_nTenths);
        std::vector<std::jthread> vecSlow;
        for (const long handle : loginTo(m_ports.nSlow, m_nTenths)) {
            fleetkit::setExchangeTimeout(handle, SlowLimitMs);
            vecSlow.emplace_back([this, handle](const std::stop_token& stop) {
                while (!stop.stop_requested()) {
                    expect(readTime(handle) == 0, "a slow device is waited for");
                }
            });
        }
        storm();
        const Holdings first = holdings();
        show(first);
        Holdings last = first;
        while (Clock::now() < m_end) {
            storm();
            last = holdings();
            show(last);
        }
        expect(std::all_of(vecGood.begin(), vecGood.end(),
                           [&](long handle) { return readTime(handle) == 0; }),
               "every good session is alive");
        expect(last.nMemoryKb <= first.nMemoryKb + GrowthKb, "memory does not grow");
        // Sessions of bad devices end, no others begin.
        expect(last.nDescriptors <= first.nDescriptors, "descriptors do not grow");
        expect(last.nThreads <= first.nThreads, "threads do not grow");
        expect(last.nPointers <= first.nPointers, "pointers do not grow");
        return !m_bFailed;
    }

private:
    static int readTime(long handle) {
        DeviceTime time;
        return FleetKit::getDeviceTime(handle, time);
    }

    void expect(bool bHolds, const char* szWhat) {
        if (!bHolds && !m_bFailed.exchange(true)) {
            std::printf("FAILED: %s\n", szWhat);
        }
    }

    std::vector<long> loginTo(std::uint16_t nPort, int nCount) {
        std::vector<long> vecHandles(static_cast<std::size_t>(nCount));
        for (long& handle : vecHandles) {
            expect(fleetkit::login(loginData(nPort), handle) == 0, "a fleet logs in");
        }
        return vecHandles;
    }

    void storm() {
        std::vector<std::jthread> vecThreads;
        for (int nThread = 0; nThread < StormThreads; ++nThread) {
            vecThreads.emplace_back([this] {
                for (int nLogin = 0; nLogin < LoginsOfRound; ++nLogin) {
                    beCut();
                    std::this_thread::sleep_for(m_pause);
                }
            });
        }
    }

    // A login, a get, a set and a logout with a device whose connections are cut now and then.
    void beCut() {
        long handle = 0;
        note(fleetkit::login(loginData(m_ports.nCut), handle));
        if (handle != 0) {
            NTPParam param;
            note(FleetKit::getNTPParam(handle, param));
            note(FleetKit::setNTPParam(handle, param));
            expect(FleetKit::Logout(handle) == 0, "a session can be ended");
        }
    }

    void note(int nCode) {
        expect(nCode == 0 || nCode == fleetkit::ErrorCode::SendFailed ||
                   nCode == fleetkit::ErrorCode::ReceiveFailed ||
                   nCode == fleetkit::ErrorCode::ConnectFailed,
               "a cut connection gives the code of one");
        const std::lock_guard guard(m_mutex);
        ++m_mapCodes[nCode];
    }

    void show(const Holdings& now) {
        std::printf("%6ld KB %6ld descriptors %4ld threads %6ld pointers; codes:", now.nMemoryKb,
                    now.nDescriptors, now.nThreads, now.nPointers);
        const std::lock_guard guard(m_mutex);
        for (const auto& [nCode, nTimes] : m_mapCodes) {
            std::printf(" %d: %ld", nCode, nTimes);
        }
        std::printf("\n");
        std::fflush(stdout);
    }

    const NextDoor<Laboratory> m_laboratory;
    const Laboratory& m_ports = m_laboratory.ports();
    const int m_nTenths;
    const std::chrono::milliseconds m_pause;
    const Clock::time_point m_end;
    std::atomic<bool> m_bFailed{false};
    std::mutex m_mutex;
    std::map<int, long> m_mapCodes;  // guarded by m_mutex
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();

// The slots of safe pointers are used again, so any two of them have been locked in each order
// here, and the search for a circle among so many takes minutes.
const char* __tsan_default_options() {
    return "detect_deadlocks=0";
}

int main(int nArguments, char** ppArguments) {
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    descriptors.rlim_cur = std::min<rlim_t>(descriptors.rlim_max, 8192);
    setrlimit(RLIMIT_NOFILE, &descriptors);
    return Soak(nArguments > 1 ? std::atoi(ppArguments[1]) : 0).run() ? 0 : 1;
}
