// The network of a device set over multicast, on the loopback and from one host to another.
#include <gmock/gmock.h>
#include <sched.h>

#include <QString>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/ErrorCode.h"
#include "device/DeviceSearchChannel.h"
#include "device/FleetKit.h"
#include "domain/DeviceId.h"
#include "domain/EtAdapterType.h"
#include "domain/EtIPProtoVer.h"
#include "session/UDPTransfer.h"
#include "support/OwnNetwork.h"
#include "support/ScriptedPeer.h"
#include "support/WireCommands.h"
#include "virtual-device/VirtualDevice.h"

using namespace fleetkit;

namespace {

using testing::AnyOf;
using testing::ElementsAre;

constexpr int LongMs = 5000;
constexpr const char* NewAddress = "10.9.8.7";

struct Datagram {
    InetAddr from;
    PeerRequest request;
};

using Answer = std::function<std::string(const PeerRequest&)>;
using Answers = std::vector<Answer>;

// What a member of the group hears while an action runs. It gives the first datagram the first
// answers, the second one the second, and expects no more of them.
std::vector<Datagram> heard(const std::vector<Answers>& vecAnswers,
                            const std::function<void()>& action, int nIPProtoVer = 1) {
    UDPTransfer member(nIPProtoVer);
    UDPTransfer another(nIPProtoVer);  // the group is shared
    const char* szGroup = nIPProtoVer == 2 ? "ff12::1" : "234.5.6.7";
    for (UDPTransfer* pMember : {&another, &member}) {
        EXPECT_EQ(pMember->create(), ErrorCode::Success);
        EXPECT_TRUE(pMember->openGroup(addressOf(szGroup, 31001, nIPProtoVer)));
    }
    std::vector<Datagram> vecHeard;
    CommandBuffer buffer;
    std::jthread answerer([&] {
        for (const Answers& answers : vecAnswers) {
            auto& [from, request] = vecHeard.emplace_back();
            EXPECT_EQ(member.recvCommand(buffer, LongMs, from), ErrorCode::Success);
            EXPECT_TRUE(decodeCommandHead(buffer.data(), buffer.getLength(), request.m_head));
            request.m_strBody = bytesOf(buffer).substr(SDKCommandHeadInfo::WireLength);
            for (const Answer& answer : answers) {
                const std::string strAnswer = answer(request);
                // An empty one goes out all the same.
                EXPECT_EQ(member.sendCommand(bufferOf(strAnswer), from, LongMs),
                          strAnswer.empty() ? ErrorCode::SendFailed : ErrorCode::Success);
            }
        }
    });
    action();
    answerer.join();
    InetAddr from;
    EXPECT_EQ(member.recvCommand(buffer, 0, from), ErrorCode::ReceiveTimedOut);
    return vecHeard;
}

// The good answer, unless something about its head differs.
Answer answering(std::uint16_t nAhead = 0, std::uint32_t nSession = 0,
                 std::uint32_t nCommand = 32505) {
    return [=](const PeerRequest& request) {
        const auto nSequence = static_cast<std::uint16_t>(request.m_head.getSequence() + nAhead);
        return peerMessage(headOf(nCommand, nSequence, nSession), peerResult(0));
    };
}

const Answer Good = answering();
const Answer Late = answering(1);
const Answer OtherSession = answering(0, 5);
const Answer OtherCommand = answering(0, 0, 10000);
const Answer Broken = [](const PeerRequest&) { return "no command"; };
const Answer Empty = [](const PeerRequest&) { return ""; };

HostNetwork network() {
    return with(&HostNetwork::setLocalIp, NewAddress, &HostNetwork::setIPProtoVer, 1);
}

User admin(const std::string& strPassword = "admin") {
    // The address stays here.
    return with(&User::setUserName, "admin", &User::setPassword, strPassword, &User::setIP,
                "198.51.100.1");
}

int setFrom(const InetAddr& local) {
    return DeviceSearchChannel().setHostNetwork(local, "IPC-1", network(), admin());
}

int setOverAdapters() {
    return setHostNetworkByMulticast("IPC-1", network(), admin());
}

// Over adapters with these addresses each.
int setOverAdapters(const std::vector<std::vector<InetAddr>>& vecAdapters) {
    setAdapterLister([=](std::vector<NetworkAdapter>& vecListed) {
        for (const auto& vecAddresses : vecAdapters) {
            vecListed.push_back({"test", vecAddresses});
        }
        return true;
    });
    return setOverAdapters();
}

DeviceOptions multicastDevice(const std::string& strDeviceId) {
    return {.strBindAddress = NeighbourAddress, .strDeviceId = strDeviceId, .bMulticast = true};
}

std::string addressKept(const VirtualDevice& device) {
    return device.getState().vecHostNetworks.front().getLocalIp();
}

}  // namespace

TEST(DeviceSearchChannel, SendsOneCommandWithTheFiveRecordsToTheGroupOfItsVersion) {
    inOwnNetwork([] {
        for (const InetAddr& local : {addressOf(Loopback), addressOf("::1", 0, 2)}) {
            const int nIPProtoVer = local.getIPProtoVer();
            const auto set = [&] { EXPECT_EQ(setFrom(local), ErrorCode::Success); };
            const auto [from, request] = heard({{Good}}, set, nIPProtoVer).front();
            EXPECT_EQ(from, addressOf(local.getIP(), 31002, nIPProtoVer));
            EXPECT_EQ(request.m_head.getProtocolType(), 1);
            EXPECT_EQ(request.m_head.getCommandID(), 32506U);
            EXPECT_EQ(request.m_head.getSessionId(), 0U);
            EXPECT_FALSE(request.m_head.isFlagA() || request.m_head.isFlagB());
            const auto credentials = with(&User::setUserName, enciphered("admin"),
                                          &User::setPassword, enciphered("admin"));
            const auto device = with(&DeviceId::setId, "IPC-1");
            const auto version = with(&EtIPProtoVer::setIPProtoVer, 1);
            EXPECT_EQ(request.m_strBody,
                      bodyOf(recordsOf(credentials, device, EtAdapterType(), version, network())));
        }
        EXPECT_EQ(setFrom(addressOf("2001:db8::1", 0, 2)), ErrorCode::BindFailed);
        EXPECT_EQ(setFrom(addressOf(Loopback, 0, 3)), ErrorCode::NoTransferFactory);
    });
}

TEST(SetHostNetworkByMulticast, TriesEveryAdapterFromItsFirstIPv4Address) {
    inOwnNetwork([] {
        const std::vector<std::vector<InetAddr>> vecAdapters{
            {},
            {addressOf("127.0.0.2"), addressOf("127.0.0.9")},
            {addressOf("::1", 0, 2)},
            {addressOf("0.0.0.0"), addressOf("127.0.0.3")}};
        const auto set = [&] { EXPECT_EQ(setOverAdapters(vecAdapters), ErrorCode::Success); };
        std::vector<std::string> vecSenders;
        for (const Datagram& datagram : heard({{Good}, {Good}, {Good}, {Good}}, set)) {
            vecSenders.push_back(datagram.from.getIP());
        }
        // The first adapter has no address: the system picks one, or none.
        EXPECT_THAT(vecSenders, ElementsAre(AnyOf("0.0.0.0", "127.0.0.1"), "127.0.0.2", "127.0.0.2",
                                            "127.0.0.3"));
    });
}

TEST(SetHostNetworkByMulticast, TellsAnswersFromStraysAndGivesTheCodeOfTheLastAdapter) {
    const std::pair<std::vector<Answers>, int> arrCases[] = {
        {{{Late, OtherSession, OtherCommand, Good}}, ErrorCode::Success},
        {{{Late, Late, Late, Late, Good}}, ErrorCode::BadReply},
        {{Answers(4, OtherSession)}, ErrorCode::BadReply},
        {{Answers(4, OtherCommand)}, ErrorCode::BadReply},
        {{{Late, Broken, Empty, Good}}, ErrorCode::Success},
        {{Answers(4, Broken)}, ErrorCode::BadReply},
        {{{}, Answers(4, Empty)}, ErrorCode::Success},  // silence counts as success
        {{Answers(4, Empty), Answers(4, Late)}, ErrorCode::BadReply},
        {{Answers(4, Late), Answers(4, Empty)}, ErrorCode::ReceiveFailed},
    };
    inOwnNetwork([&] {
        for (const auto& [vecAnswers, nCode] : arrCases) {
            const std::vector vecAdapters(vecAnswers.size(), std::vector{addressOf(Loopback)});
            heard(vecAnswers,
                  [&, nExpected = nCode] { EXPECT_EQ(setOverAdapters(vecAdapters), nExpected); });
        }
    });
}

TEST(SetHostNetworkByMulticast, FailsWithoutAdapterAndWithoutRoute) {
    inOwnNetwork([] {
        EXPECT_EQ(setOverAdapters(), ErrorCode::Failed) << "the loopback does not count";
        ASSERT_EQ(::unshare(CLONE_NEWNET), 0);  // even that one is down here
        EXPECT_EQ(setOverAdapters({{addressOf(Loopback)}, {}}), ErrorCode::SendFailed);
    });
}

TEST(SetHostNetworkByMulticast, SetsTheDeviceThatIsNamedFromOneHostToAnother) {
    inOwnNetwork([] {
        std::optional<VirtualDevice> other;
        std::optional<VirtualDevice> device;
        ASSERT_TRUE(onNeighbour([&] {
            other.emplace(multicastDevice("other"));
            device.emplace(multicastDevice("IPC-1"));
        }));
        ASSERT_TRUE(runCommand("ip addr add 10.77.0.3/24 dev near label near:1"));
        std::vector<std::string> vecAdapters;
        getAdapterNames(vecAdapters);
        EXPECT_THAT(vecAdapters, ElementsAre("near")) << "a label is no adapter";
        HostNetwork setting = network();
        User account = admin("wrong");
        const auto set = [&] { return FleetKit::setDeviceHostNetwork("IPC-1", setting, account); };
        EXPECT_EQ(set(), ErrorCode::Success) << "an answer is an answer";
        EXPECT_EQ(addressKept(*device), NeighbourAddress);
        account.setPassword("admin");
        EXPECT_EQ(set(), ErrorCode::Success);
        EXPECT_EQ(addressKept(*device), NewAddress);
        EXPECT_EQ(addressKept(*other), NeighbourAddress);
        EXPECT_EQ(setting, network());
        EXPECT_EQ(account, admin());
        // Damaged answers give themselves away by their codes: they did arrive.
        device->misbehave("strays=4:32506", 1);
        EXPECT_EQ(set(), ErrorCode::BadReply);
    });
}
