// The exchange over multicast, and the round over the adapters.
#include "device/DeviceSearchChannel.h"

#include <algorithm>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/MemoryGuard.h"
#include "Product/Technic/platform/NameResolution.h"
#include "domain/DeviceId.h"
#include "domain/EtAdapterType.h"
#include "domain/EtIPProtoVer.h"
#include "protocol/CommandIds.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/CredentialCipher.h"
#include "protocol/SDKCommandParam.h"
#include "session/SequenceNumber.h"
#include "session/SessionCommands.h"
#include "session/TCPTransferFactory.h"
#include "session/TransferFactoryMap.h"
#include "session/UDPTransferFactory.h"

using namespace fleetkit;

namespace {

constexpr int IPv4 = 1;
constexpr int IPv6 = 2;
constexpr const char* GroupIPv4 = "234.5.6.7";
constexpr const char* GroupIPv6 = "ff12::1";
constexpr const char* AnyIPv4 = "0.0.0.0";
constexpr std::uint16_t GroupPort = 31001;
constexpr std::uint16_t LocalPort = 31002;
constexpr int SendTimeoutMs = 3000;
constexpr int ReadTimeoutMs = 3000;
constexpr int MaxStrays = 3;

InetAddr addressOf(const std::string& strIP, std::uint16_t nPort, int nIPProtoVer) {
    InetAddr address;
    address.setIP(strIP);
    address.setPORT(nPort);
    address.setIPProtoVer(nIPProtoVer);
    return address;
}

bool resolveIPv6(const std::string& strHost, unsigned nFlags, SocketApi::Address& address) {
    return SocketApi::resolve(strHost.c_str(), LocalPort, SocketApi::familyOf(IPv6),
                              Socket::Datagram, nFlags, address) >= 0;
}

// A failure to bind shows in the exchange itself.
int openIPv4(ITransfer& transfer, const InetAddr& local) {
    transfer.bind(addressOf(local.getIP(), LocalPort, IPv4));
    return ErrorCode::Success;
}

int openIPv6(ITransfer& transfer, const InetAddr& local) {
    const int nHandle = transfer.getSocket()->getHandle();
    SocketApi::Address address;
    SocketApi::Address group;
    if (!resolveIPv6(local.getIP(), SocketApi::Passive, address) ||
        SocketApi::bindTo(nHandle, address) < 0 ||
        !resolveIPv6(GroupIPv6, SocketApi::Passive, group)) {
        return ErrorCode::BindFailed;
    }
    SocketApi::changeMembership(nHandle, SocketApi::Membership::Join, group, {});
    return ErrorCode::Success;
}

int openTransfer(const InetAddr& local, std::unique_ptr<ITransfer>& transfer) {
    const int nIPProtoVer = local.getIPProtoVer();
    ITransferFactory* pFactory = TransferFactoryMap::instance().find(TransferKind::UDP);
    if (pFactory == nullptr || (nIPProtoVer != IPv4 && nIPProtoVer != IPv6)) {
        return ErrorCode::NoTransferFactory;
    }
    transfer = pFactory->create(nIPProtoVer);
    if (!transfer) {
        return ErrorCode::NoMemory;
    }
    const int nCode = transfer->create();
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    transfer->setReuseAddr(1);
    return nIPProtoVer == IPv4 ? openIPv4(*transfer, local) : openIPv6(*transfer, local);
}

// The IPv4 group is left as well, although nobody joined it.
void leaveGroup(ITransfer& transfer) {
    SocketApi::Address group;
    SocketApi::Address any;
    const bool bResolved =
        transfer.getIPProtoVer() == IPv4
            ? SocketApi::parseIPv4(GroupIPv4, 0, group) >= 0 &&
                  SocketApi::parseIPv4(AnyIPv4, 0, any) >= 0
            : resolveIPv6(GroupIPv6, SocketApi::NumericHost | SocketApi::Passive, group);
    if (bResolved) {
        SocketApi::changeMembership(transfer.getSocket()->getHandle(), SocketApi::Membership::Drop,
                                    group, any);
    }
}

InetAddr groupOf(ITransfer& transfer) {
    const int nIPProtoVer = transfer.getIPProtoVer();
    return addressOf(nIPProtoVer == IPv4 ? GroupIPv4 : GroupIPv6, GroupPort, nIPProtoVer);
}

// The first usable address of an adapter replaces the one before.
void takeAddress(const NetworkAdapter& adapter, InetAddr& local) {
    const auto it = std::find_if(
        adapter.vecAddresses.begin(), adapter.vecAddresses.end(), [](const InetAddr& address) {
            return address.getIPProtoVer() == IPv4 && address.getIP() != AnyIPv4;
        });
    if (it != adapter.vecAddresses.end()) {
        local.setIP(it->getIP());
    }
}

}  // namespace

DeviceSearchChannel::DeviceSearchChannel() {
    registerTCPTransfer();
    registerUDPTransfer();
}

int DeviceSearchChannel::setHostNetwork(const InetAddr& local, const std::string& strDeviceId,
                                        const HostNetwork& network, const User& user) {
    std::unique_ptr<ITransfer> transfer;
    int nCode = openTransfer(local, transfer);
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    const std::uint16_t nSequence = nextSequence();
    CommandBuffer buffer;
    nCode = encode(nSequence, strDeviceId, network, user, buffer);
    if (nCode == ErrorCode::Success) {
        nCode = transfer->sendCommand(buffer, groupOf(*transfer), SendTimeoutMs);
    }
    if (nCode == ErrorCode::Success) {
        nCode = waitForReply(*transfer, nSequence);
    }
    leaveGroup(*transfer);
    return nCode;
}

int DeviceSearchChannel::encode(std::uint16_t nSequence, const std::string& strDeviceId,
                                const HostNetwork& network, const User& user,
                                CommandBuffer& buffer) const {
    std::string strUserName;
    std::string strPassword;
    if (!encryptText(user.getUserName(), strUserName) ||
        !encryptText(user.getPassword(), strPassword)) {
        return ErrorCode::CipherFailed;
    }
    User credentials;
    credentials.setUserName(strUserName);
    credentials.setPassword(strPassword);
    DeviceId device;
    device.setId(strDeviceId);
    EtIPProtoVer version;
    version.setIPProtoVer(network.getIPProtoVer());

    SDKCommandHeadInfo head;
    head.setProtocolType(ProtocolType::SDK);
    head.setSequence(nSequence);
    head.setCommandID(CommandId::setDeviceHostNetwork);
    head.setSessionId(m_nSessionId);
    auto pParam = std::make_unique<SDKCommandParam>();
    pParam->setHead(head);
    const bool bEncoded = guardMemory([&] {
        pParam->setDomains({copyOf(credentials), copyOf(device), copyOf(EtAdapterType()),
                            copyOf(version), copyOf(network)});
        return createCommandProtocolParser(ProtocolType::SDK)
            ->createCommand(wrapSafe<CommandParam>(std::move(pParam)), buffer);
    });
    return bEncoded ? ErrorCode::Success : ErrorCode::EncodeFailed;
}

int DeviceSearchChannel::waitForReply(ITransfer& transfer, std::uint16_t nSequence) const {
    int nCode = ErrorCode::BadReply;
    for (int nStrays = 0; nStrays <= MaxStrays; ++nStrays) {
        CommandBuffer buffer;
        InetAddr from;
        nCode = transfer.recvCommand(buffer, ReadTimeoutMs, from);
        if (nCode == ErrorCode::Success) {
            if (isReply(buffer, nSequence)) {
                return ErrorCode::Success;
            }
            nCode = ErrorCode::BadReply;
        } else if (nCode != ErrorCode::ReceiveFailed) {  // which an empty datagram gives as well
            return nCode;
        }
    }
    return nCode;
}

bool DeviceSearchChannel::isReply(const CommandBuffer& buffer, std::uint16_t nSequence) const {
    SafePointer<CommandParam> message;
    if (!createCommandProtocolParser(ProtocolType::SDK)->parseCommand(buffer, message)) {
        return false;
    }
    const SDKCommandHeadInfo& head = static_cast<const SDKCommandParam&>(*message).getHead();
    return head.getCommandID() == CommandId::getHostNetworkReply &&
           head.getSessionId() == m_nSessionId && head.getSequence() == nSequence;
}

int setHostNetworkByMulticast(const std::string& strDeviceId, const HostNetwork& network,
                              const User& user) {
    std::vector<NetworkAdapter> vecAdapters;
    if (!listAdapters(vecAdapters) || vecAdapters.empty()) {
        return ErrorCode::Failed;
    }
    InetAddr local = addressOf(AnyIPv4, GroupPort, IPv4);
    bool bReached = false;
    int nCode = ErrorCode::Failed;
    for (const NetworkAdapter& adapter : vecAdapters) {
        takeAddress(adapter, local);
        nCode = DeviceSearchChannel().setHostNetwork(local, strDeviceId, network, user);
        bReached = bReached || nCode == ErrorCode::Success || nCode == ErrorCode::ReceiveTimedOut;
    }
    return bReached ? ErrorCode::Success : nCode;
}
