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
    int sendCommand(const CommandBuffer&, const InetAddr&, int) override { throw std::bad_alloc(); }
};

class Heartbeat : public testing::Test {
protected:
    void TearDown() override { endManager(); }

    void endManager() {
        m_objClock.open();
        m_pobjManager.reset();
    }

    void addSession(long nHandle, const SafePointer<SDKSession>& objSession) {
        m_pobjManager->addSession(nHandle, objSession);
        m_objClock.awaitSleeper();
    }

    bool knows(long nHandle) {
        SafePointer<SDKSession> objFound;
        return m_pobjManager->findSession(nHandle, objFound);
    }

    // Lets scans pass, with all keep-alives that they ask for.
    void scan(int nScans = 1) {
        for (int nScan = 0; nScan < nScans; ++nScan) {
            m_objClock.advanceMs(3000);
            m_objClock.awaitSleeper();
        }
    }

    GatedClock m_objClock{StartMs};
    ScopedClock m_objInPlace{m_objClock};
    std::unique_ptr<DeviceSessionManager> m_pobjManager = std::make_unique<DeviceSessionManager>();
};

TEST_F(Heartbeat, KeepsTheTableByHandle) {
    ScriptedPeer objPeer(answerAll(Acknowledged));
    const auto objFirst = connectTo(objPeer);
    addSession(1, objFirst);
    addSession(1, wrapSafe(std::make_unique<SDKSession>()));
    SafePointer<SDKSession> objFound;
    ASSERT_TRUE(m_pobjManager->findSession(1, objFound));
    EXPECT_EQ(objFound.get(), objFirst.get());
    for (const long nUnknown : {0L, 2L, 1 + (1L << 32)}) {
        EXPECT_FALSE(knows(nUnknown)) << nUnknown;
    }
    m_pobjManager->removeSession(2);
    m_pobjManager->removeSession(1);
    EXPECT_FALSE(knows(1));
    EXPECT_EQ(sendHeartBeat(objFound), 0);
    scan(3);
    EXPECT_EQ(objFound->getLastHeartbeat(), 0u);
}

TEST_F(Heartbeat, GoesOutAtTheFirstScanAndThenAfterMoreThanSixtySeconds) {
    std::atomic<int> nRequests{0};
    ScriptedPeer objPeer(answerEach([&](const PeerRequest& objRequest) {
        ++nRequests;
        EXPECT_EQ(objRequest.m_objHead.getCommandID(), KeepAlive);
        EXPECT_EQ(objRequest.m_objHead.getSessionId(), 0xFFFFFFFEu);
        EXPECT_NE(objRequest.m_strBody.find("<SessionId SessionId=\"-2\" />"), std::string::npos)
            << objRequest.m_strBody;
        return peerAnswer(objRequest, Acknowledged, peerResult(0));
    }));
    const auto objSession = connectTo(objPeer);
    objSession->setSessionId(0xFFFFFFFE);
    addSession(1, objSession);
    EXPECT_EQ(nRequests, 0);
    scan();
    EXPECT_EQ(objSession->getLastHeartbeat(), 1003u);
    scan(ScansBetweenKeepAlives - 1);
    EXPECT_EQ(nRequests, 1);
    scan();
    EXPECT_EQ(nRequests, 2);
    EXPECT_EQ(objSession->getLastHeartbeat(), 1066u);
    EXPECT_EQ(objSession->getHeartbeatFailures(), 0);
    EXPECT_LE(m_objClock.getLongestSleepMs(), 100u) << "somebody would wait for the end";
}

TEST_F(Heartbeat, DropsSessionsAtTheScanAfterTheThirdFailureWhateverItIs) {
    const auto objRaising = wrapSafe(std::make_unique<SDKSession>());
    objRaising->setTransfer(wrapSafe<ITransfer>(std::make_unique<RaisingTransfer>()));
    std::vector<SafePointer<SDKSession>> vecDead{objRaising};
    int nRequests = 0;
    std::deque<ScriptedPeer> listPeers;
    for (const ScriptedPeer::Script& objScript :
         {answerAll(Acknowledged, 5), answerAll(30508),
          answerEach([](const PeerRequest&) { return std::string(); }),
          ScriptedPeer::Script([](PeerLink&) {})}) {
        vecDead.push_back(connectTo(listPeers.emplace_back(objScript)));
        vecDead.back()->setReplyTimeout(SilenceMs);
    }
    const auto objRecovering =
        connectTo(listPeers.emplace_back(answerEach([&](const PeerRequest& objRequest) {
            return peerAnswer(objRequest, Acknowledged, peerResult(++nRequests < 3 ? 5 : 0));
        })));
    addSession(99, objRecovering);
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
    DomainList objReply;
    EXPECT_EQ(vecDead.back()->sendRecv(ReadTime, {}, objReply), ErrorCode::NoTransport);
    EXPECT_TRUE(knows(99)) << "one good keep-alive makes up for two failures";
    EXPECT_EQ(objRecovering->getHeartbeatFailures(), 0);
    EXPECT_EQ(objRecovering->getLastHeartbeat(), 1192u);
    EXPECT_TRUE(isSystemRunning());
}

TEST_F(Heartbeat, SessionThatLeftTheTableWhileItWasDueFailsOnceAndIsForgotten) {
    std::promise<void> objArrived;
    std::promise<void> objRemoved;
    ScriptedPeer objFirstPeer([&](PeerLink& objLink) {
        PeerRequest objRequest;
        objLink.read(objRequest);
        objArrived.set_value();
        objRemoved.get_future().wait();
        objLink.send(peerAnswer(objRequest, Acknowledged, peerResult(0)));
        answerAll(Acknowledged)(objLink);
    });
    ScriptedPeer objSecondPeer(answerAll(Acknowledged));
    const auto objFirst = connectTo(objFirstPeer);
    const auto objSecond = connectTo(objSecondPeer);
    addSession(1, objFirst);
    addSession(2, objSecond);
    m_objClock.advanceMs(3000);
    objArrived.get_future().wait();
    m_pobjManager->removeSession(2);
    objSecond->close();
    objRemoved.set_value();
    m_objClock.awaitSleeper();
    EXPECT_EQ(objSecond->getHeartbeatFailures(), 1);
    scan(ScansBetweenKeepAlives);
    EXPECT_EQ(objSecond->getHeartbeatFailures(), 1);
    EXPECT_EQ(objFirst->getLastHeartbeat(), 1066u);
}

TEST_F(Heartbeat, EndOfTheManagerClosesSessionsWithoutLogout) {
    std::promise<bool> objAsked;
    ScriptedPeer objPeer([&](PeerLink& objLink) {
        PeerRequest objRequest;
        objAsked.set_value(objLink.read(objRequest));
    });
    addSession(1, connectTo(objPeer));
    endManager();
    EXPECT_FALSE(objAsked.get_future().get());
}

TEST(DeviceSessionManager, ProcessEndsWithOpenSessions) {
    const ChildResult objResult = runInChild([] {
        static ScriptedPeer objPeer(answerAll(Acknowledged));
        DeviceSessionManager::instance().addSession(1, connectTo(objPeer));
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    });
    EXPECT_EQ(objResult.m_nExitCode, 0) << objResult.m_strOutput;
}

}  // namespace
