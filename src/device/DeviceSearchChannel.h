// Reaches a device without a session, by UDP multicast on the local network.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Product/Technic/InetAddr.h"
#include "domain/HostNetwork.h"
#include "domain/User.h"
#include "protocol/CommandBuffer.h"
#include "session/ITransfer.h"

// One exchange with the devices behind one network adapter. Owns its socket for the exchange only;
// belongs to one thread.
//
// The local port is shared: answers to another caller arrive here as well and are thrown away.
class DeviceSearchChannel {
public:
    DeviceSearchChannel();

    // Sends the network setting from this local address and waits for an answer, whose body is not
    // looked at. SendFailed, ReceiveFailed or ReceiveTimedOut (3 s for each read); BindFailed for
    // an IPv6 address that cannot be bound; NoTransferFactory for an IP version other than 1 and 2;
    // CipherFailed; EncodeFailed; BadReply after four datagrams that are no answer, and
    // ReceiveFailed when the fourth was empty; SocketOpenFailed. Anybody can send datagrams here.
    int setHostNetwork(const InetAddr& local, const std::string& strDeviceId,
                       const HostNetwork& network, const User& user);

private:
    int encode(std::uint16_t nSequence, const std::string& strDeviceId, const HostNetwork& network,
               const User& user, CommandBuffer& buffer) const;
    int waitForReply(ITransfer& transfer, std::uint16_t nSequence) const;
    bool isReply(const CommandBuffer& buffer, std::uint16_t nSequence) const;

    std::uint32_t m_nSessionId = 0;
};

// The same over every adapter of this machine, one after the other, each from its first IPv4
// address; one without an address from that of the adapter before it, or from any. Success when
// one of them had an answer, or silence, which is how a device that took the setting over may well
// behave. Failed when there is no adapter, otherwise the code of the last one.
int setHostNetworkByMulticast(const std::string& strDeviceId, const HostNetwork& network,
                              const User& user);
