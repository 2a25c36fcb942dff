// The network setting over multicast, inside a network namespace that has nothing but the loopback:
// no datagram can leave the machine. Skipped where namespaces are not permitted.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/ErrorCode.h"
#include "device/DeviceSearchChannel.h"
#include "protocol/CredentialCipher.h"
#include "support/LoopbackNamespace.h"
#include "unit/device/LoggedInDevice.h"

namespace {

using testing::AnyOf;
using testing::ElementsAre;

constexpr std::uint16_t GroupPort = 31001;
constexpr std::uint16_t LocalPort = 31002;
constexpr std::uint32_t Request = 32506;
constexpr std::uint32_t Reply = 32505;

struct Datagram {
    std::string strSender;
    std::uint16_t nPort = 0;
    PeerRequest request;
};

// Listens on the group of one IP version and answers each datagram with the given ones.
class GroupMember {
public:
    using Answer = std::function<std::vector<std::string>(const Datagram&)>;

    GroupMember(int nIPProtoVer, Answer answer) : m_answer(std::move(answer)) {
        m_nSocket = socket(nIPProtoVer == 2 ? AF_INET6 : AF_INET, SOCK_DGRAM, 0);
        const timeval pause{0, 50000};
        setsockopt(m_nSocket, SOL_SOCKET, SO_RCVTIMEO, &pause, sizeof pause);
        nIPProtoVer == 2 ? joinIPv6() : joinIPv4();
        m_thread = std::thread(&GroupMember::serve, this);
    }
    ~GroupMember() {
        m_bEnding = true;
        m_thread.join();
        close(m_nSocket);
    }
    GroupMember(const GroupMember&) = delete;
    GroupMember& operator=(const GroupMember&) = delete;

    std::vector<Datagram> takeDatagrams() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_vecDatagrams, {});
    }

private:
    void joinIPv4() const {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(GroupPort);
        ip_mreq group{};
        inet_pton(AF_INET, "234.5.6.7", &group.imr_multiaddr);
        inet_pton(AF_INET, "127.0.0.1", &group.imr_interface);
        EXPECT_EQ(bind(m_nSocket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(setsockopt(m_nSocket, IPPROTO_IP, IP_ADD_MEMBERSHIP, &group, sizeof group), 0);
    }

    void joinIPv6() const {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_port = htons(GroupPort);
        ipv6_mreq group{};
        inet_pton(AF_INET6, "ff12::1", &group.ipv6mr_multiaddr);
        group.ipv6mr_interface = if_nametoindex("lo");
        EXPECT_EQ(bind(m_nSocket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(setsockopt(m_nSocket, IPPROTO_IPV6, IPV6_JOIN_GROUP, &group, sizeof group), 0);
    }

    void serve() {
        while (!m_bEnding) {
            sockaddr_storage sender{};
            socklen_t nSenderLength = sizeof sender;
            std::array<char, 4096> arrBytes{};
            auto* pSender = reinterpret_cast<sockaddr*>(&sender);
            const ssize_t nLength =
                recvfrom(m_nSocket, arrBytes.data(), arrBytes.size(), 0, pSender, &nSenderLength);
            if (nLength <= 0) {
                continue;
            }
            const Datagram datagram =
                parse({arrBytes.data(), static_cast<std::size_t>(nLength)}, sender);
            {
                const std::lock_guard guard(m_mutex);
                m_vecDatagrams.push_back(datagram);
            }
            for (const std::string& strAnswer : m_answer(datagram)) {
                sendto(m_nSocket, strAnswer.data(), strAnswer.size(), 0, pSender, nSenderLength);
            }
        }
    }

    static Datagram parse(const std::string& strBytes, const sockaddr_storage& sender) {
        Datagram datagram;
        std::array<char, INET_ADDRSTRLEN> arrText{};
        const auto& sender4 = reinterpret_cast<const sockaddr_in&>(sender);
        inet_ntop(AF_INET, &sender4.sin_addr, arrText.data(), arrText.size());
        datagram.strSender = arrText.data();
        datagram.nPort = ntohs(sender4.sin_port);
        EXPECT_TRUE(decodeCommandHead(reinterpret_cast<const std::uint8_t*>(strBytes.data()),
                                      static_cast<std::uint32_t>(strBytes.size()),
                                      datagram.request.m_objHead));
        datagram.request.m_strBody = strBytes.substr(SDKCommandHeadInfo::WireLength);
        return datagram;
    }

    const Answer m_answer;
    int m_nSocket = -1;
    std::atomic<bool> m_bEnding{false};
    std::mutex m_mutex;
    std::vector<Datagram> m_vecDatagrams;
    std::thread m_thread;
};

std::string goodAnswer(const Datagram& datagram) {
    return peerAnswer(datagram.request, Reply, peerResult(0));
}

// A well-formed message that differs in one thing from the good answer.
std::string strayAnswer(const Datagram& datagram,
                        const std::function<void(SDKCommandHeadInfo&)>& change) {
    SDKCommandHeadInfo head = datagram.request.m_objHead;
    head.setCommandID(Reply);
    change(head);
    return peerMessage(head, peerResult(0));
}

std::string lateAnswer(const Datagram& datagram) {
    return strayAnswer(datagram, [](SDKCommandHeadInfo& head) {
        head.setSequence(static_cast<std::uint16_t>(head.getSequence() + 1));
    });
}

InetAddr localAddress(const std::string& strIP, int nIPProtoVer = 1) {
    InetAddr address;
    address.setIP(strIP);
    address.setIPProtoVer(nIPProtoVer);
    return address;
}

NetworkAdapter adapter(std::vector<InetAddr> vecAddresses) {
    return {"test", std::move(vecAddresses)};
}

void useAdapters(const std::vector<NetworkAdapter>& vecAdapters) {
    setAdapterLister([=](std::vector<NetworkAdapter>& vecListed) {
        vecListed = vecAdapters;
        return true;
    });
}

HostNetwork newNetwork() {
    HostNetwork network;
    network.setLocalIp("192.0.2.9");
    network.setIPProtoVer(1);
    return network;
}

User account() {
    User user;
    user.setUserName("admin");
    user.setPassword("secret");
    user.setIP("198.51.100.1");
    return user;
}

int exchange(const InetAddr& local) {
    return DeviceSearchChannel().setHostNetwork(local, "IPC-1", newNetwork(), account());
}

// The whole of each test goes through here.
void isolated(const std::function<void()>& body) {
    if (!runInLoopbackNamespace(body)) {
        GTEST_SKIP() << "no network namespace can be made here";
    }
}

int setOverAllAdapters() {
    return setHostNetworkByMulticast("IPC-1", newNetwork(), account());
}

}  // namespace

TEST(DeviceSearchChannel, SendsOneCommandWithTheFiveRecords) {
    isolated([] {
        GroupMember device(
            1, [](const Datagram& datagram) { return std::vector{goodAnswer(datagram)}; });
        EXPECT_EQ(exchange(localAddress("127.0.0.1")), ErrorCode::Success);
        const auto vecDatagrams = device.takeDatagrams();
        ASSERT_EQ(vecDatagrams.size(), 1U);
        EXPECT_EQ(vecDatagrams[0].nPort, LocalPort);
        const SDKCommandHeadInfo& head = vecDatagrams[0].request.m_objHead;
        EXPECT_EQ(head.getProtocolType(), 1);
        EXPECT_EQ(head.getCommandID(), Request);
        EXPECT_EQ(head.getSessionId(), 0U);
        EXPECT_FALSE(head.isFlagA() || head.isFlagB());
        const std::string& strBody = vecDatagrams[0].request.m_strBody;
        EXPECT_EQ(describeBody(strBody), "User DeviceId=IPC-1 AdapterType IPProtoVer HostNetwork");
        const XmlDocument document = XmlDocument::parse(strBody.c_str());
        const XmlCursor user = document.root().firstChild("User");
        std::string strCipher;
        ASSERT_TRUE(encryptText("secret", strCipher));
        EXPECT_EQ(user.attribute("Password"), strCipher);
        EXPECT_STREQ(user.attribute("IP"), "");
        EXPECT_STREQ(document.root().firstChild("HostNetwork").attribute("LocalIp"), "192.0.2.9");
    });
}

TEST(DeviceSearchChannel, TellsItsAnswerFromStrays) {
    isolated([] {
        const auto late = lateAnswer;
        const auto otherSession = [](const Datagram& datagram) {
            return strayAnswer(datagram, [](SDKCommandHeadInfo& head) { head.setSessionId(5); });
        };
        const auto otherCommand = [](const Datagram& datagram) {
            return strayAnswer(datagram,
                               [](SDKCommandHeadInfo& head) { head.setCommandID(10000); });
        };
        const auto broken = [](const Datagram&) { return std::string("no command"); };
        using Each = std::function<std::string(const Datagram&)>;
        const std::vector<std::pair<std::vector<Each>, int>> Cases{
            {{late, otherSession, otherCommand, goodAnswer}, ErrorCode::Success},
            {{late, late, late, late, goodAnswer}, ErrorCode::BadReply},
            {{late, broken, goodAnswer}, ErrorCode::DecodeFailed},
        };
        for (const auto& [vecAnswers, nCode] : Cases) {
            GroupMember device(1, [&answers = vecAnswers](const Datagram& datagram) {
                std::vector<std::string> vecSent;
                for (const Each& answer : answers) {
                    vecSent.push_back(answer(datagram));
                }
                return vecSent;
            });
            EXPECT_EQ(exchange(localAddress("127.0.0.1")), nCode);
        }
    });
}

TEST(DeviceSearchChannel, ReachesTheIPv6Group) {
    isolated([] {
        GroupMember device(
            2, [](const Datagram& datagram) { return std::vector{goodAnswer(datagram)}; });
        EXPECT_EQ(exchange(localAddress("::1", 2)), ErrorCode::Success);
        EXPECT_EQ(device.takeDatagrams().size(), 1U);
    });
}

TEST(DeviceSearchChannel, GivesACodeForWhatCannotBeOpened) {
    isolated([] {
        EXPECT_EQ(exchange(localAddress("127.0.0.1", 3)), ErrorCode::NoTransferFactory);
        EXPECT_EQ(exchange(localAddress("2001:db8::1", 2)), ErrorCode::BindFailed);
    });
}

TEST(SetHostNetworkByMulticast, TriesEveryAdapterFromItsFirstIPv4Address) {
    isolated([] {
        GroupMember device(
            1, [](const Datagram& datagram) { return std::vector{goodAnswer(datagram)}; });
        useAdapters({adapter({}), adapter({localAddress("127.0.0.2"), localAddress("127.0.0.9")}),
                     adapter({localAddress("::1", 2)}),
                     adapter({localAddress("0.0.0.0"), localAddress("127.0.0.3")})});
        EXPECT_EQ(setOverAllAdapters(), ErrorCode::Success);
        std::vector<std::string> vecSenders;
        for (const Datagram& datagram : device.takeDatagrams()) {
            vecSenders.push_back(datagram.strSender);
        }
        // The first adapter has no address: the system picks one, or none.
        EXPECT_THAT(vecSenders, ElementsAre(AnyOf("0.0.0.0", "127.0.0.1"), "127.0.0.2", "127.0.0.2",
                                            "127.0.0.3"));
    });
}

TEST(SetHostNetworkByMulticast, TakesSilenceForSuccess) {
    isolated([] {
        GroupMember device(1, [](const Datagram& datagram) -> std::vector<std::string> {
            if (datagram.strSender == "127.0.0.2") {
                return {};
            }
            return {"no command"};
        });
        useAdapters({adapter({localAddress("127.0.0.2")}), adapter({localAddress("127.0.0.3")})});
        EXPECT_EQ(setOverAllAdapters(), ErrorCode::Success);
        EXPECT_EQ(device.takeDatagrams().size(), 2U);
    });
}

TEST(SetHostNetworkByMulticast, GivesTheCodeOfTheLastAdapterWhenAllFail) {
    isolated([] {
        GroupMember device(1, [](const Datagram& datagram) {
            return datagram.strSender == "127.0.0.2"
                       ? std::vector<std::string>{"no command"}
                       : std::vector<std::string>(4, lateAnswer(datagram));
        });
        useAdapters({adapter({localAddress("127.0.0.2")}), adapter({localAddress("127.0.0.3")})});
        EXPECT_EQ(setOverAllAdapters(), ErrorCode::BadReply);
    });
}

TEST(SetHostNetworkByMulticast, FailsWithoutAdapterAndWithoutRoute) {
    isolated([] {
        EXPECT_EQ(setOverAllAdapters(), ErrorCode::Failed);  // the loopback does not count
        ASSERT_EQ(unshare(CLONE_NEWNET), 0);                 // even that one is down here
        useAdapters({adapter({localAddress("127.0.0.1")}), adapter({})});
        EXPECT_EQ(setOverAllAdapters(), ErrorCode::SendFailed);
    });
}
