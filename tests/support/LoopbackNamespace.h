// Runs a piece of a test in a network of its own, where there is nothing but the loopback.
#pragma once

#include <gtest/gtest.h>
#include <net/if.h>
#include <net/route.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <string>

#include "support/ChildProcess.h"

// Brings the loopback of the current namespace up, with the multicast of both families routed to
// it.
inline bool prepareLoopback() {
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP | IFF_RUNNING;

    rtentry route4{};
    route4.rt_dev = request.ifr_name;
    route4.rt_flags = RTF_UP;
    auto& target = reinterpret_cast<sockaddr_in&>(route4.rt_dst);
    auto& mask = reinterpret_cast<sockaddr_in&>(route4.rt_genmask);
    target.sin_family = AF_INET;
    target.sin_addr.s_addr = htonl(0xE0000000U);  // 224.0.0.0/4
    mask.sin_family = AF_INET;
    mask.sin_addr.s_addr = htonl(0xF0000000U);

    in6_rtmsg route6{};
    route6.rtmsg_dst.s6_addr[0] = 0xFF;  // ff00::/8
    route6.rtmsg_dst_len = 8;
    route6.rtmsg_metric = 256;
    route6.rtmsg_flags = RTF_UP | RTF_LOCAL;
    route6.rtmsg_ifindex = static_cast<int>(::if_nametoindex(request.ifr_name));

    const int nHandle4 = ::socket(AF_INET, SOCK_DGRAM, 0);
    const int nHandle6 = ::socket(AF_INET6, SOCK_DGRAM, 0);
    const bool bDone = ::ioctl(nHandle4, SIOCSIFFLAGS, &request) == 0 &&
                       ::ioctl(nHandle4, SIOCADDRT, &route4) == 0 &&
                       ::ioctl(nHandle6, SIOCADDRT, &route6) == 0;
    ::close(nHandle4);
    ::close(nHandle6);
    return bDone;
}

// Enters a new network namespace; false when this machine does not permit it.
inline bool enterLoopbackNamespace() {
    const bool bEntered =
        ::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
    return bEntered && prepareLoopback();
}

// Runs the body in a child process with such a network, and expects all its checks to hold. False,
// with nothing checked, when this machine does not permit it.
inline bool runInLoopbackNamespace(const std::function<void()>& body) {
    const std::string strRefused = "this machine permits no network namespace";
    const std::string strOutput = outputOfChild([&] {
        if (enterLoopbackNamespace()) {
            body();
        } else {
            std::fputs(strRefused.c_str(), stdout);
        }
    });
    return strOutput != strRefused;
}
