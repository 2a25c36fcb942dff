// The table of sessions, and the heartbeat on the clock of simulated devices.
#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/SystemRunning.h"
#include "session/DeviceSessionManager.h"
#include "support/ChildProcess.h"
#include "unit/session/SimulatedDevices.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t KeepAlive = 11007;
constexpr std::uint32_t Acknowledged = 10000;
constexpr std::uint32_t ReadTime = 30507;

const Behaviour Acknowledges = answersAfter(0, Acknowledged);

class Heartbeat : public testing::Test {
protected:
    void SetUp() override { m_devices.halt(); }

    bool knows(long nHandle) {
        SafePointer<SDKSession> found;
        return m_pManager->findSession(nHandle, found);
    }

    void runUntilSecond(std::uint64_t nSecond) { m_devices.runUntil(nSecond * 1000); }

    static constexpr std::uint64_t StartMs = 1000 * 1000;

    SimulatedDevices m_devices{StartMs};
    ScopedClock m_inPlace{m_devices};
    std::unique_ptr<DeviceSessionManager> m_pManager = std::make_unique<DeviceSessionManager>();
};

TEST_F(Heartbeat, KeepsTheTableByHandle) {
    const auto first = m_devices.add(Acknowledges);
    m_pManager->addSession(1, first);
    m_pManager->addSession(1, wrapSafe(std::make_unique<SDKSession>()));
    SafePointer<SDKSession> found;
    ASSERT_TRUE(m_pManager->findSession(1, found));
    EXPECT_EQ(found.get(), first.get());
    for (const long nUnknown : {0L, 2L, 1 + (1L << 32)}) {
        EXPECT_FALSE(knows(nUnknown)) << nUnknown;
    }
    m_pManager->removeSession(2);
    m_pManager->removeSession(1);
    EXPECT_FALSE(knows(1));
    runUntilSecond(1010);
    EXPECT_EQ(found->getLastHeartbeat(), 0u);
    EXPECT_EQ(sendHeartBeat(found), 0);
}

TEST_F(Heartbeat, GoesOutAtTheFirstScanAndThenAfterMoreThanSixtySeconds) {
    std::vector<std::uint64_t> vecMoments;
    const auto session = m_devices.add([&](const PeerRequest& request) {
        vecMoments.push_back(m_devices.monotonicMs() / 1000);
        EXPECT_EQ(request.m_head.getCommandID(), KeepAlive);
        EXPECT_EQ(request.m_head.getSessionId(), 0xFFFFFFFEu);
        EXPECT_NE(request.m_strBody.find("<SessionId SessionId=\"-2\" />"), std::string::npos)
            << request.m_strBody;
        return Acknowledges(request);
    });
    session->setSessionId(0xFFFFFFFE);
    m_pManager->addSession(1, session);
    runUntilSecond(1130);
    EXPECT_EQ(vecMoments, (std::vector<std::uint64_t>{1003, 1066, 1129}));
    EXPECT_EQ(session->getLastHeartbeat(), 1129u);
    EXPECT_EQ(session->getHeartbeatFailures(), 0);
}

TEST_F(Heartbeat, DropsSessionsAtTheScanAfterTheThirdFailureWhateverItIs) {
    const Behaviour arrFailing[] = {
        answersAfter(0, Acknowledged, 5),
        answersAfter(0, 30508),
        [](const PeerRequest&) { return Arrivals(); },
        [](const PeerRequest&) {
            return Arrivals{{0, ""}};
        },
        [](const PeerRequest&) -> Arrivals { throw std::bad_alloc(); },
    };
    std::vector<SafePointer<SDKSession>> vecDead;
    for (const Behaviour& failing : arrFailing) {
        vecDead.push_back(m_devices.add(failing));
        m_pManager->addSession(static_cast<long>(vecDead.size()), vecDead.back());
    }
    int nRequests = 0;
    const auto recovering = m_devices.add([&](const PeerRequest& request) {
        return answersAfter(0, Acknowledged, ++nRequests < 3 ? 5 : 0)(request);
    });
    m_pManager->addSession(99, recovering);
    const auto expectAll = [&](std::uint64_t nSecond, int nFailures, bool bKnown) {
        runUntilSecond(nSecond);
        for (std::size_t nDead = 0; nDead < vecDead.size(); ++nDead) {
            EXPECT_EQ(vecDead[nDead]->getHeartbeatFailures(), nFailures) << nDead;
            EXPECT_EQ(knows(static_cast<long>(nDead) + 1), bKnown) << nDead;
        }
    };
    expectAll(1008, 1, true);
    expectAll(1128, 2, true);
    runUntilSecond(1131);
    EXPECT_TRUE(knows(1));
    runUntilSecond(1133);
    EXPECT_FALSE(knows(1));
    EXPECT_TRUE(knows(3)) << "silence fails later than the rest";
    expectAll(1300, 3, false);
    Records reply;
    EXPECT_EQ(vecDead.back()->sendRecv(ReadTime, {}, reply), ErrorCode::NoTransport);
    EXPECT_TRUE(knows(99)) << "one good keep-alive makes up for two failures";
    EXPECT_EQ(recovering->getHeartbeatFailures(), 0);
    EXPECT_TRUE(isSystemRunning());
}

TEST_F(Heartbeat, LeavesASessionInAnExchangeAloneUntilTheNextScan) {
    const auto session = m_devices.add(Acknowledges);
    std::optional<TurnGuard> exchange(session->turn());
    m_pManager->addSession(1, session);
    runUntilSecond(1008);
    EXPECT_EQ(session->getLastHeartbeat(), 0u);
    EXPECT_EQ(session->getHeartbeatFailures(), 0);
    exchange.reset();
    runUntilSecond(1010);
    EXPECT_EQ(session->getLastHeartbeat(), 1009u);
}

// Nobody moves the clock any more: the end cuts the wait for a silent device short.
TEST_F(Heartbeat, EndsAtOnceWithItsManager) {
    const auto session = m_devices.add([](const PeerRequest&) { return Arrivals(); });
    m_pManager->addSession(1, session);
    runUntilSecond(1004);
    m_pManager.reset();
    EXPECT_EQ(session->getHeartbeatFailures(), 0);
}

TEST(DeviceSessionManager, NoDeviceHoldsUpTheKeepAlivesOfAnother) {
    constexpr long Devices = 1000;
    SimulatedDevices devices;
    const ScopedClock inPlace(devices);
    std::map<long, std::uint64_t> mapLastMs;
    std::map<long, std::uint64_t> mapLongestMs;  // from one keep-alive to the next
    DeviceSessionManager manager;
    std::deque<TurnGuard> listExchanges;  // that take longer than the test
    const auto isSilent = [](long n) { return n % 10 == 0; };
    const auto isTrickling = [](long n) { return n % 100 == 1; };
    const auto isBusy = [](long n) { return n % 100 == 2; };
    devices.halt();
    for (long n = 0; n < Devices; ++n) {
        const SafePointer<SDKSession> session = devices.add([&, n](const PeerRequest& request) {
            const std::uint64_t nNow = devices.monotonicMs();
            const std::uint64_t nSinceMs = nNow - std::exchange(mapLastMs[n], nNow);
            mapLongestMs[n] = std::max(mapLongestMs[n], nSinceMs);
            const std::string strAnswer = peerAnswer(request, Acknowledged, peerResult(0));
            return isSilent(n)      ? Arrivals()
                   : isTrickling(n) ? inPieces(strAnswer, 1, 1000)
                                    : Arrivals{{n, strAnswer}};
        });
        if (isBusy(n)) {
            listExchanges.emplace_back(session->turn());
        }
        manager.addSession(n, session);
    }
    devices.runUntil(600 * 1000);
    for (long n = 0; n < Devices; ++n) {
        SCOPED_TRACE(n);
        SafePointer<SDKSession> session;
        ASSERT_EQ(manager.findSession(n, session), !isSilent(n) && !isTrickling(n));
        if (!session.isNull()) {
            EXPECT_EQ(mapLongestMs[n], isBusy(n) ? 0U : 63000U);
            EXPECT_EQ(session->getHeartbeatFailures(), 0);
        }
    }
}

TEST(DeviceSessionManager, ProcessEndsWithOpenSessions) {
    outputOfChild([] {
        static SimulatedDevices devices;
        DeviceSessionManager::instance().addSession(1, devices.add(Acknowledges));
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    });
}

}  // namespace
