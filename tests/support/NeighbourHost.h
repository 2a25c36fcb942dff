// A second machine beside the one that a test runs on: two network namespaces with one cable
// between them, so that what is sent there reaches nobody else.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

#include "support/ChildProcess.h"

constexpr const char* OwnAddress = "10.77.0.1";
constexpr const char* NeighbourAddress = "10.77.0.2";

// Runs a program on the other machine, from its construction to its end.
class NeighbourHost {
public:
    // The caller is in a network namespace of its own. The cable is laid once the other side is
    // there, and the program starts once the cable is.
    explicit NeighbourHost(const std::string& strProgram) {
        if (pipe2(m_arrToHost, O_CLOEXEC) != 0 || pipe2(m_arrFromHost, O_CLOEXEC) != 0) {
            return;
        }
        const std::string strScript = "echo here && read cable && " +
                                      address("far", NeighbourAddress) + " && exec " + strProgram;
        m_nHost = fork();
        if (m_nHost == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(m_arrToHost[0], STDIN_FILENO);
            dup2(m_arrFromHost[1], STDOUT_FILENO);
            if (unshare(CLONE_NEWNET) == 0) {
                execl("/bin/sh", "sh", "-c", strScript.c_str(), nullptr);
            }
            _exit(1);
        }
        m_bCabled =
            readLine() == "here" &&
            run("ip link add near type veth peer name far netns " + std::to_string(m_nHost)) &&
            run(address("near", OwnAddress)) && write(m_arrToHost[1], "\n", 1) == 1;
    }
    ~NeighbourHost() {
        if (m_nHost > 0) {
            kill(m_nHost, SIGKILL);
            waitpid(m_nHost, nullptr, 0);
        }
        for (const int nHandle :
             {m_arrToHost[0], m_arrToHost[1], m_arrFromHost[0], m_arrFromHost[1]}) {
            ::close(nHandle);
        }
    }
    NeighbourHost(const NeighbourHost&) = delete;
    NeighbourHost& operator=(const NeighbourHost&) = delete;

    bool isCabled() const { return m_bCabled; }

    // The next line that the program prints; empty when none comes.
    std::string readLine() const {
        std::string strLine;
        pollfd waiting{m_arrFromHost[0], POLLIN, 0};
        for (char nByte = 0; poll(&waiting, 1, 30000) > 0 &&
                             read(m_arrFromHost[0], &nByte, 1) == 1 && nByte != '\n';) {
            strLine += nByte;
        }
        return strLine;
    }

private:
    static bool run(const std::string& strCommand) {
        return std::system((strCommand + " 2>/dev/null").c_str()) == 0;
    }

    static std::string address(const std::string& strLink, const std::string& strAddress) {
        return "ip addr add " + strAddress + "/24 dev " + strLink + " && ip link set " + strLink +
               " up";
    }

    int m_arrToHost[2] = {-1, -1};
    int m_arrFromHost[2] = {-1, -1};
    pid_t m_nHost = -1;
    bool m_bCabled = false;
};

// Enters a network namespace in which programs may lay cables; false when this machine does not
// permit it.
inline bool enterOwnNetwork() {
    if (::unshare(CLONE_NEWNET) == 0) {
        return true;
    }
    const std::string strMap = "0 " + std::to_string(::geteuid()) + " 1";
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 &&
           (std::ofstream("/proc/self/uid_map") << strMap << std::flush).good();
}

// Runs the body in a child process with such a neighbour, and expects all its checks to hold.
// False, with nothing checked, when this machine permits no namespaces or lacks the program ip.
inline bool runBesideHost(const std::string& strProgram,
                          const std::function<void(const NeighbourHost&)>& body) {
    const std::string strRefused = "no two hosts can be made here";
    const std::string strOutput = outputOfChild([&] {
        if (enterOwnNetwork()) {
            const NeighbourHost host(strProgram);
            if (host.isCabled()) {
                body(host);
                return;
            }
        }
        std::fputs(strRefused.c_str(), stdout);
    });
    return strOutput != strRefused;
}
