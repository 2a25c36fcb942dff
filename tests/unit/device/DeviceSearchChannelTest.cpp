// The network setting over multicast, inside a network namespace that has nothing but the loopback:
// no datagram can leave the machine. Skipped where namespaces are not permitted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/ErrorCode.h"
#include "device/DeviceSearchChannel.h"
#include "domain/DeviceId.h"
#include "domain/EtAdapterType.h"
#include "domain/EtIPProtoVer.h"
#include "session/UDPTransfer.h"
#include "support/LoopbackNamespace.h"
#include "support/SampleRecords.h"
#include "unit/device/LoggedInDevice.h"

using namespace fleetkit;

namespace {

using testing::AnyOf;
using testing::ElementsAre;

InetAddr addressOf(const std::string& strIP, int nIPProtoVer = 1, std::uint16_t nPort = 0) {
    InetAddr address;
    address.setIP(strIP);
    address.setPORT(nPort);
    address.setIPProtoVer(nIPProtoVer);
    return address;
}

struct Datagram {
    InetAddr from;
    PeerRequest request;
};

using Answer = std::function<std::string(const Datagram&)>;
using Answers = std::vector<Answer>;
using AnswersBySender = std::function<Answers(const std::string& strSender)>;

// Listens on the group of one IP version and gives these answers to each datagram.
class GroupMember {
public:
    explicit GroupMember(AnswersBySender answers, int nIPProtoVer = 1)
        : m_answers(std::move(answers)), m_transfer(nIPProtoVer) {
        const char* szGroup = nIPProtoVer == 2 ? "ff12::1" : "234.5.6.7";
        EXPECT_EQ(m_transfer.create(), ErrorCode::Success);
        EXPECT_TRUE(m_transfer.openGroup(addressOf(szGroup, nIPProtoVer, 31001)));
        m_thread = std::thread(&GroupMember::serve, this);
    }
    explicit GroupMember(const Answers& answers, int nIPProtoVer = 1)
        : GroupMember([=](const std::string&) { return answers; }, nIPProtoVer) {}
    ~GroupMember() {
        m_bEnding = true;
        m_thread.join();
    }
    GroupMember(const GroupMember&) = delete;
    GroupMember& operator=(const GroupMember&) = delete;

    std::vector<Datagram> takeDatagrams() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_vecDatagrams, {});
    }

private:
    void serve() {
        CommandBuffer buffer;
        Datagram datagram;
        while (!m_bEnding) {
            if (m_transfer.recvCommand(buffer, 50, datagram.from) != ErrorCode::Success) {
                continue;
            }
            EXPECT_TRUE(
                decodeCommandHead(buffer.data(), buffer.getLength(), datagram.request.m_head));
            datagram.request.m_strBody = bytesOf(buffer).substr(SDKCommandHeadInfo::WireLength);
            {
                const std::lock_guard guard(m_mutex);
                m_vecDatagrams.push_back(datagram);
            }
            for (const Answer& answer : m_answers(datagram.from.getIP())) {
                m_transfer.sendCommand(bufferOf(answer(datagram)), datagram.from, 1000);
            }
        }
    }

    const AnswersBySender m_answers;
    UDPTransfer m_transfer;
    std::atomic<bool> m_bEnding{false};
    std::mutex m_mutex;
    std::vector<Datagram> m_vecDatagrams;
    std::thread m_thread;
};

// The good answer, with something about its head changed.
Answer changed(std::function<void(SDKCommandHeadInfo&)> change) {
    return [=](const Datagram& datagram) {
        SDKCommandHeadInfo head = datagram.request.m_head;
        head.setCommandID(32505);
        change(head);
        return peerMessage(head, peerResult(0));
    };
}

const Answer Good = changed([](auto&) {});
const Answer Late = changed(
    [](auto& head) { head.setSequence(static_cast<std::uint16_t>(head.getSequence() + 1)); });
const Answer OtherSession = changed([](auto& head) { head.setSessionId(5); });
const Answer OtherCommand = changed([](auto& head) { head.setCommandID(10000); });
const Answer Broken = [](const Datagram&) { return "no command"; };
const Answers FourLate(4, Late);

HostNetwork network() {
    HostNetwork network;
    network.setLocalIp("192.0.2.9");
    network.setIPProtoVer(1);
    return network;
}

User user(const std::string& strName, const std::string& strPassword) {
    User user;
    user.setUserName(strName);
    user.setPassword(strPassword);
    return user;
}

int setFrom(const InetAddr& local) {
    User account = user("admin", "secret");
    account.setIP("198.51.100.1");  // stays here
    return DeviceSearchChannel().setHostNetwork(local, "IPC-1", network(), account);
}

// Over adapters with these addresses each.
int setOverAdapters(const std::vector<std::vector<InetAddr>>& vecAdapters) {
    setAdapterLister([=](std::vector<NetworkAdapter>& vecListed) {
        for (const auto& vecAddresses : vecAdapters) {
            vecListed.push_back({"test", vecAddresses});
        }
        return true;
    });
    return setHostNetworkByMulticast("IPC-1", network(), user("admin", "secret"));
}

// The whole of each test goes through here.
void isolated(const std::function<void()>& body) {
    if (!runInLoopbackNamespace(body)) {
        GTEST_SKIP() << "no network namespace can be made here";
    }
}

}  // namespace

TEST(DeviceSearchChannel, SendsOneCommandWithTheFiveRecords) {
    isolated([] {
        GroupMember device({Good});
        EXPECT_EQ(setFrom(addressOf("127.0.0.1")), ErrorCode::Success);
        const auto vecDatagrams = device.takeDatagrams();
        ASSERT_EQ(vecDatagrams.size(), 1U);
        EXPECT_EQ(vecDatagrams[0].from.getPORT(), 31002);
        const SDKCommandHeadInfo& head = vecDatagrams[0].request.m_head;
        EXPECT_EQ(head.getProtocolType(), 1);
        EXPECT_EQ(head.getCommandID(), 32506U);
        EXPECT_EQ(head.getSessionId(), 0U);
        EXPECT_FALSE(head.isFlagA() || head.isFlagB());
        const User credentials = user(enciphered("admin"), enciphered("secret"));
        EXPECT_EQ(vecDatagrams[0].request.m_strBody,
                  bodyOf(recordsOf(credentials, with(&DeviceId::setId, "IPC-1"), EtAdapterType(),
                                   with(&EtIPProtoVer::setIPProtoVer, 1), network())));
    });
}

TEST(DeviceSearchChannel, TellsItsAnswerFromStrays) {
    isolated([] {
        const std::vector<std::pair<Answers, int>> Cases{
            {{Late, OtherSession, OtherCommand, Good}, ErrorCode::Success},
            {{Late, Late, Late, Late, Good}, ErrorCode::BadReply},
            {Answers(4, OtherSession), ErrorCode::BadReply},
            {Answers(4, OtherCommand), ErrorCode::BadReply},
            {{Late, Broken, Good}, ErrorCode::DecodeFailed},
        };
        for (const auto& [answers, nCode] : Cases) {
            const GroupMember device(answers);
            EXPECT_EQ(setFrom(addressOf("127.0.0.1")), nCode);
        }
    });
}

TEST(DeviceSearchChannel, ReachesTheIPv6GroupFromAnAddressThatCanBeBound) {
    isolated([] {
        GroupMember device({Good}, 2);
        EXPECT_EQ(setFrom(addressOf("::1", 2)), ErrorCode::Success);
        EXPECT_EQ(setFrom(addressOf("2001:db8::1", 2)), ErrorCode::BindFailed);
        EXPECT_EQ(setFrom(addressOf("127.0.0.1", 3)), ErrorCode::NoTransferFactory);
        EXPECT_EQ(device.takeDatagrams().size(), 1U);
    });
}

TEST(SetHostNetworkByMulticast, TriesEveryAdapterFromItsFirstIPv4Address) {
    isolated([] {
        GroupMember device({Good});
        EXPECT_EQ(setOverAdapters({{},
                                   {addressOf("127.0.0.2"), addressOf("127.0.0.9")},
                                   {addressOf("::1", 2)},
                                   {addressOf("0.0.0.0"), addressOf("127.0.0.3")}}),
                  ErrorCode::Success);
        std::vector<std::string> vecSenders;
        for (const Datagram& datagram : device.takeDatagrams()) {
            vecSenders.push_back(datagram.from.getIP());
        }
        // The first adapter has no address: the system picks one, or none.
        EXPECT_THAT(vecSenders, ElementsAre(AnyOf("0.0.0.0", "127.0.0.1"), "127.0.0.2", "127.0.0.2",
                                            "127.0.0.3"));
    });
}

TEST(SetHostNetworkByMulticast, TakesSilenceForSuccessAndElseTheLastCode) {
    const struct {
        Answers first, second;
        int nCode;
    } Cases[]{
        {{}, {Broken}, ErrorCode::Success},
        {{Broken}, FourLate, ErrorCode::BadReply},
        {FourLate, {Broken}, ErrorCode::DecodeFailed},
    };
    for (const auto& one : Cases) {
        isolated([&] {
            GroupMember device([&](const std::string& strSender) {
                return strSender == "127.0.0.2" ? one.first : one.second;
            });
            EXPECT_EQ(setOverAdapters({{addressOf("127.0.0.2")}, {addressOf("127.0.0.3")}}),
                      one.nCode);
            EXPECT_EQ(device.takeDatagrams().size(), 2U);
        });
    }
}

TEST(SetHostNetworkByMulticast, FailsWithoutAdapterAndWithoutRoute) {
    isolated([] {
        // The loopback does not count.
        EXPECT_EQ(setHostNetworkByMulticast("IPC-1", network(), User()), ErrorCode::Failed);
        ASSERT_EQ(unshare(CLONE_NEWNET), 0);  // even that one is down here
        EXPECT_EQ(setOverAdapters({{addressOf("127.0.0.1")}, {}}), ErrorCode::SendFailed);
    });
}
