// The table of sessions, and the heartbeat on a clock that the test moves.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <deque>
#include <future>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/SystemRunning.h"
#include "session/DeviceSessionManager.h"
#include "session/UDPTransfer.h"
#include "support/ChildProcess.h"
#include "support/GatedClock.h"
#include "unit/session/ConnectedSession.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t KeepAlive = 11007;
constexpr std::uint32_t Acknowledged = 10000;
constexpr std::uint32_t ReadTime = 30507;
constexpr std::uint64_t StartMs = 1000 * 1000;

// From one scan to the next one that finds the session due again: 63 seconds later.
constexpr int ScansBetweenKeepAlives = 21;

class RaisingTransfer : public UDPTransfer {
public:
    RaisingTransfer() : UDPTransfer(1) {}
    int sendSome(const CommandBuffer&, const InetAddr&, std::uint32_t&) override {
        throw std::bad_alloc();
    }
};

class Heartbeat : public testing::Test {
protected:
    void addSession(long nHandle, const SafePointer<SDKSession>& session) {
        m_pManager->addSession(nHandle, session);
        m_clock.awaitSleeper();
    }

    bool knows(long nHandle) {
        SafePointer<SDKSession> found;
        return m_pManager->findSession(nHandle, found);
    }

    // Lets scans pass, with all keep-alives that they ask for.
    void scan(int nScans = 1) {
        for (int nScan = 0; nScan < nScans; ++nScan) {
            m_clock.advanceMs(3000);
            m_clock.awaitSleeper();
        }
    }

    GatedClock m_clock{StartMs};
    ScopedClock m_inPlace{m_clock};
    std::unique_ptr<DeviceSessionManager> m_pManager = std::make_unique<DeviceSessionManager>();
};

TEST_F(Heartbeat, KeepsTheTableByHandle) {
    ScriptedPeer peer(answerAll(Acknowledged));
    const auto first = connectTo(peer);
    addSession(1, first);
    addSession(1, wrapSafe(std::make_unique<SDKSession>()));
    SafePointer<SDKSession> found;
    ASSERT_TRUE(m_pManager->findSession(1, found));
    EXPECT_EQ(found.get(), first.get());
    for (const long nUnknown : {0L, 2L, 1 + (1L << 32)}) {
        EXPECT_FALSE(knows(nUnknown)) << nUnknown;
    }
    m_pManager->removeSession(2);
    m_pManager->removeSession(1);
    EXPECT_FALSE(knows(1));
    EXPECT_EQ(sendHeartBeat(found), 0);
    scan(3);
    EXPECT_EQ(found->getLastHeartbeat(), 0u);
}

TEST_F(Heartbeat, GoesOutAtTheFirstScanAndThenAfterMoreThanSixtySeconds) {
    std::atomic<int> nRequests{0};
    ScriptedPeer peer(answerEach([&](const PeerRequest& request) {
        ++nRequests;
        EXPECT_EQ(request.m_head.getCommandID(), KeepAlive);
        EXPECT_EQ(request.m_head.getSessionId(), 0xFFFFFFFEu);
        EXPECT_NE(request.m_strBody.find("<SessionId SessionId=\"-2\" />"), std::string::npos)
            << request.m_strBody;
        return peerAnswer(request, Acknowledged, peerResult(0));
    }));
    const auto session = connectTo(peer);
    session->setSessionId(0xFFFFFFFE);
    addSession(1, session);
    EXPECT_EQ(nRequests, 0);
    scan();
    EXPECT_EQ(session->getLastHeartbeat(), 1003u);
    scan(ScansBetweenKeepAlives - 1);
    EXPECT_EQ(nRequests, 1);
    scan();
    EXPECT_EQ(nRequests, 2);
    EXPECT_EQ(session->getLastHeartbeat(), 1066u);
    EXPECT_EQ(session->getHeartbeatFailures(), 0);
}

TEST_F(Heartbeat, DropsSessionsAtTheScanAfterTheThirdFailureWhateverItIs) {
    const auto raising = wrapSafe(std::make_unique<SDKSession>());
    raising->setTransfer(wrapSafe<ITransfer>(std::make_unique<RaisingTransfer>()));
    std::vector<SafePointer<SDKSession>> vecDead{raising};
    int nRequests = 0;
    std::deque<ScriptedPeer> listPeers;
    for (const ScriptedPeer::Script& script :
         {answerAll(Acknowledged, 5), answerAll(30508),
          answerEach([](const PeerRequest&) { return std::string(); }),
          ScriptedPeer::Script([](PeerLink&) {})}) {
        vecDead.push_back(connectTo(listPeers.emplace_back(script)));
        vecDead.back()->setReplyTimeout(SilenceMs);
    }
    const auto recovering =
        connectTo(listPeers.emplace_back(answerEach([&](const PeerRequest& request) {
            return peerAnswer(request, Acknowledged, peerResult(++nRequests < 3 ? 5 : 0));
        })));
    addSession(99, recovering);
    for (std::size_t nDead = 0; nDead < vecDead.size(); ++nDead) {
        addSession(static_cast<long>(nDead), vecDead[nDead]);
    }
    const auto expectAll = [&](int nFailures, bool bKnown) {
        for (std::size_t nDead = 0; nDead < vecDead.size(); ++nDead) {
            EXPECT_EQ(vecDead[nDead]->getHeartbeatFailures(), nFailures) << nDead;
            EXPECT_EQ(knows(static_cast<long>(nDead)), bKnown) << nDead;
        }
    };
    scan();
    expectAll(1, true);
    scan(2 * ScansBetweenKeepAlives);
    expectAll(3, true);
    scan();
    expectAll(3, false);
    scan(ScansBetweenKeepAlives);
    expectAll(3, false);
    DomainList reply;
    EXPECT_EQ(vecDead.back()->sendRecv(ReadTime, {}, reply), ErrorCode::NoTransport);
    EXPECT_TRUE(knows(99)) << "one good keep-alive makes up for two failures";
    EXPECT_EQ(recovering->getHeartbeatFailures(), 0);
    EXPECT_EQ(recovering->getLastHeartbeat(), 1192u);
    EXPECT_TRUE(isSystemRunning());
}

TEST_F(Heartbeat, LeavesASessionInAnExchangeAloneUntilTheNextScan) {
    std::promise<void> arrived;
    std::promise<void> scanned;
    std::atomic<int> nKeepAlives{0};
    ScriptedPeer peer([&](PeerLink& link) {
        PeerRequest request;
        link.read(request);
        arrived.set_value();
        scanned.get_future().wait();
        link.send(peerAnswer(request, ReadTime + 1, peerResult(0)));
        answerEach([&](const PeerRequest& next) {
            ++nKeepAlives;
            return peerAnswer(next, Acknowledged, peerResult(0));
        })(link);
    });
    const auto session = connectTo(peer);
    session->setExchangeTimeout(60 * 1000);
    std::jthread caller([&] {
        DomainList reply;
        EXPECT_EQ(session->sendRecv(ReadTime, {}, reply), 0);
    });
    arrived.get_future().wait();
    addSession(1, session);
    scan(2);
    EXPECT_EQ(session->getLastHeartbeat(), 0u);
    EXPECT_EQ(session->getHeartbeatFailures(), 0);
    scanned.set_value();
    caller.join();
    scan();
    EXPECT_EQ(session->getLastHeartbeat(), 1009u);
    EXPECT_EQ(nKeepAlives, 1);
}

// Nobody moves the clock any more: the end cuts the pause of the heartbeat short.
TEST_F(Heartbeat, EndOfTheManagerClosesSessionsAtOnceWithoutLogout) {
    std::promise<bool> asked;
    ScriptedPeer peer([&](PeerLink& link) {
        PeerRequest request;
        asked.set_value(link.read(request));
    });
    addSession(1, connectTo(peer));
    m_pManager.reset();
    EXPECT_FALSE(asked.get_future().get());
}

TEST(DeviceSessionManager, ProcessEndsWithOpenSessions) {
    const ChildResult result = runInChild([] {
        static ScriptedPeer peer(answerAll(Acknowledged));
        DeviceSessionManager::instance().addSession(1, connectTo(peer));
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    });
    EXPECT_EQ(result.m_nExitCode, 0) << result.m_strOutput;
}

}  // namespace
