// Networks that a test makes for itself, and that nothing sent there can leave: a loopback, and
// where it is asked for a cable to a neighbouring host.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "support/ChildProcess.h"

constexpr const char* OwnAddress = "10.77.0.1";
constexpr const char* NeighbourAddress = "10.77.0.2";

inline bool runCommand(const std::string& strCommand) {
    return std::system((strCommand + " 2>/dev/null").c_str()) == 0;
}

// Gives this thread a network with nothing but the loopback, which the multicast of both families
// goes to. False when this machine does not permit it or lacks the program ip.
inline bool enterOwnNetwork() {
    bool bEntered = ::unshare(CLONE_NEWNET) == 0;
    if (!bEntered) {
        const std::string strMap = "0 " + std::to_string(::geteuid()) + " 1";
        bEntered = ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 &&
                   (std::ofstream("/proc/self/uid_map") << strMap << std::flush).good();
    }
    return bEntered && runCommand("ip link set lo up") &&
           runCommand("ip route add 224.0.0.0/4 dev lo") &&
           runCommand("ip -6 route add local ff00::/8 dev lo metric 256 table local");
}

// Runs the body in a child process with such a network, and expects all its checks to hold. The
// test is skipped where there can be none.
inline void inOwnNetwork(const std::function<void()>& body) {
    const std::string strRefused = "this machine permits no network of a test's own";
    const std::string strOutput = outputOfChild([&] {
        if (enterOwnNetwork()) {
            body();
        } else {
            std::fputs(strRefused.c_str(), stdout);
        }
    });
    if (strOutput == strRefused) {
        GTEST_SKIP() << strRefused;
    }
}

// Does something on a second host, which a cable connects with this one; the sockets and threads
// that it makes stay there, and keep the host in being. False when it or the cable cannot be had.
inline bool onNeighbour(const std::function<void()>& action) {
    const auto plug = [](const std::string& strEnd, const std::string& strAddress) {
        return runCommand("ip addr add " + strAddress + "/24 dev " + strEnd) &&
               runCommand("ip link set " + strEnd + " up");
    };
    bool bCabled = false;
    std::thread([&] {
        bCabled = ::unshare(CLONE_NEWNET) == 0 &&
                  runCommand("ip link add far type veth peer name near netns " +
                             std::to_string(::getpid())) &&
                  plug("far", NeighbourAddress);
        if (bCabled) {
            action();
        }
    }).join();
    return bCabled && plug("near", OwnAddress);
}
