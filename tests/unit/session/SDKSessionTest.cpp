// One exchange: what counts as its reply, and what everything else comes to; login and logout.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/KXRuntimeError.h"
#include "session/DeviceSessionManager.h"
#include "session/SDK_DeviceSessionCreator.h"
#include "session/SequenceNumber.h"
#include "session/SessionCommands.h"
#include "support/ChildProcess.h"
#include "support/SampleRecords.h"
#include "unit/session/SimulatedDevices.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t ReadTime = 30507;
constexpr std::uint32_t TimeRead = 30508;
constexpr std::uint32_t Acknowledged = 10000;
constexpr std::uint32_t ReadFile = 32742;
constexpr std::uint32_t NoSuchCommand = 65000;
constexpr std::uint32_t OperatePTZ = 14006;
constexpr std::uint32_t Login = 11001;
constexpr std::uint32_t LoggedIn = 11002;
constexpr long Untouched = -99;

int exchange(const SafePointer<SDKSession>& session, std::uint32_t nCommandId = ReadTime) {
    return sendSet(session, nCommandId, ChannelId());
}

// A message of the device, by what makes it differ from the answer that is due.
struct Message {
    std::string strBody = peerResult(0);
    std::uint16_t nSequencesAhead = 0;
    std::uint32_t nSessionsAhead = 0;
    std::uint32_t nCommandID = TimeRead;
    std::uint16_t nProtocolType = 1;
};

std::string bytesOf(const Message& message, const PeerRequest& request) {
    SDKCommandHeadInfo head = request.m_head;
    head.setCommandID(message.nCommandID);
    head.setSequence(static_cast<std::uint16_t>(head.getSequence() + message.nSequencesAhead));
    head.setSessionId(head.getSessionId() + message.nSessionsAhead);
    return peerMessage(head, message.strBody, message.nProtocolType);
}

class SDKSessionTest : public testing::Test {
protected:
    SimulatedDevices m_devices;
    ScopedClock m_inPlace{m_devices};
};

TEST_F(SDKSessionTest, TellsItsReplyFromWhatElseArrivesAndStaysUsable) {
    const std::string strChannel = "<ChannelId Id=\"4\" />";
    const std::string strBroken = "<Parameters><Result";
    const Message answer;
    const Message stray{.nSequencesAhead = 1};
    const Message foreign{.nSessionsAhead = 1};
    const struct {
        const char* szName;
        std::vector<Message> vecMessages;
        int nCode;
        std::size_t nRecords;
        int nNextCode = 0;
    } arrCases[] = {
        {"success", {{peerResult(0, strChannel)}}, 0, 2},
        {"code of the device", {{peerResult(7, strChannel)}}, 7, 2},
        {"no result", {{peerBody(strChannel)}}, -501, 1},
        {"last of two results", {{peerResult(0, "<Result Code=\"3\" />")}}, 3, 2},
        {"another type, which no request takes over", {{.nProtocolType = 3}}, 0, 1},
        {"wrong command", {{.nCommandID = Acknowledged}}, -501, 0},
        {"undecodable", {{strBroken}}, -233, 0},
        {"undecodable of another session", {{strBroken, 0, 1}}, -233, 0},
        {"behind three strays", {stray, stray, stray, answer}, 0, 1},
        {"behind three of others", {foreign, foreign, foreign, answer}, 0, 1},
        {"four strays", {stray, stray, stray, stray}, -501, 0},
        {"four of others", {foreign, foreign, foreign, foreign}, -501, 0},
        {"a fifth", {stray, stray, stray, stray, {strBroken}}, -501, 0, -233},
    };
    for (const auto& testCase : arrCases) {
        SCOPED_TRACE(testCase.szName);
        std::vector<std::uint16_t> vecSequences;
        const auto session = m_devices.add([&](const PeerRequest& request) {
            EXPECT_EQ(request.m_head.getProtocolType(), 1);
            EXPECT_EQ(request.m_head.getCommandID(), ReadTime);
            EXPECT_EQ(request.m_head.getSessionId(), 0x90000001u);
            vecSequences.push_back(request.m_head.getSequence());
            const std::size_t nAsked = vecSequences.size();
            Arrivals arrivals;  // one a millisecond, later ones behind what is left of the first
            for (const Message& message :
                 nAsked == 1 ? testCase.vecMessages : std::vector{answer}) {
                arrivals.emplace(arrivals.size() + nAsked, bytesOf(message, request));
            }
            return arrivals;
        });
        session->setSessionId(0x90000001);
        Records reply;
        EXPECT_EQ(session->sendRecv(ReadTime, {}, reply), testCase.nCode);
        EXPECT_EQ(reply.size(), testCase.nRecords);
        EXPECT_EQ(session->getProtocolType(), testCase.vecMessages.back().nProtocolType);
        EXPECT_EQ(exchange(session), testCase.nNextCode);
        EXPECT_EQ(vecSequences.back(), static_cast<std::uint16_t>(vecSequences.front() + 1));
    }
}

TEST_F(SDKSessionTest, ThrowsLateAnswersAwayAndTellsAnUnknownCommandOnlyAfterAnAnswer) {
    for (const auto& [nCommandId, nCode] :
         {std::pair{ReadTime, 6}, {NoSuchCommand, ErrorCode::UnknownCommand}}) {
        std::uint64_t nAfterMs = 5001;
        const auto session = m_devices.add([&](const PeerRequest& request) {
            const Message answer{peerResult(nAfterMs == 2 ? 6 : 0)};
            return Arrivals{{std::exchange(nAfterMs, 2), bytesOf(answer, request)}};
        });
        EXPECT_EQ(exchange(session, nCommandId), ErrorCode::ReceiveTimedOut);
        EXPECT_EQ(exchange(session, nCommandId), nCode);
    }
}

TEST_F(SDKSessionTest, AnExchangeIsOverInTimeWhateverTheDeviceSends) {
    const std::string strFile = fromHex("00 04 00 00 00 00 00 00 ") + std::string(256U << 10, 'x');
    const Behaviour silent = [](const PeerRequest&) { return Arrivals(); };
    const Behaviour trickling = [](const PeerRequest& request) {
        return inPieces(bytesOf({}, request), 1, 1000);
    };
    const Behaviour straying = [](const PeerRequest& request) {
        Arrivals arrivals;
        for (const std::uint64_t nMs : {4000U, 8000U, 12000U}) {
            arrivals.emplace(nMs, bytesOf({.nSequencesAhead = 1}, request));
        }
        return arrivals;
    };
    const Behaviour slow = [&](const PeerRequest& request) {
        return inPieces(peerAnswer(request, request.m_head.getCommandID() + 1, strFile), 65536,
                        4900);
    };
    const struct {
        const char* szName;
        Behaviour behaviour;
        int nCode;
        std::uint64_t nTookMs;
        std::uint32_t nCommandId = ReadTime;
        ExchangeLimits limits = {};
    } arrCases[] = {
        {"silence", silent, ErrorCode::ReceiveTimedOut, 5000},
        {"a byte a second", trickling, ErrorCode::ReceiveTimedOut, 10000},
        {"strays", straying, ErrorCode::ReceiveTimedOut, 10000},
        {"late", answersAfter(4999, TimeRead), 0, 4999},
        {"too late", answersAfter(5001, TimeRead), ErrorCode::ReceiveTimedOut, 5000},
        {"a file that goes on", slow, 0, 5 * 4900, ReadFile},
        {"a record that goes on", slow, ErrorCode::ReceiveTimedOut, 10000},
        {"other limits", answersAfter(59999, TimeRead), 0, 59999, ReadTime, {60000, 60000}},
        {"shorter ones", silent, ErrorCode::ReceiveTimedOut, 100, ReadTime, {100, 100}},
    };
    for (const auto& testCase : arrCases) {
        SCOPED_TRACE(testCase.szName);
        const auto session = m_devices.add(testCase.behaviour);
        session->setLimits(testCase.limits);
        const std::uint64_t nStartMs = m_devices.monotonicMs();
        EXPECT_EQ(exchange(session, testCase.nCommandId), testCase.nCode);
        EXPECT_EQ(m_devices.monotonicMs(), nStartMs + testCase.nTookMs);
    }
}

TEST_F(SDKSessionTest, SurvivesWhatCannotBeSent) {
    const auto session = m_devices.add(answersAfter(0, TimeRead));
    Records reply;
    EXPECT_EQ(session->sendRecv(OperatePTZ, {}, reply), ErrorCode::EncodeFailed);
    EXPECT_THROW(session->sendRecv(ReadTime, Records(1), reply), KXRuntimeError);
    EXPECT_THROW(session->setTransfer(SafePointer<ITransfer>()), KXRuntimeError);
    EXPECT_EQ(exchange(session), 0);
    for (const auto& none : {SafePointer<SDKSession>(), wrapSafe(std::make_unique<SDKSession>())}) {
        EXPECT_EQ(exchange(none), ErrorCode::NoTransport);
    }
}

// Takes up every safe pointer that there is but so many.
std::vector<SafePointer<int>> takePointersBut(std::size_t nLeft) {
    std::vector<SafePointer<int>> vecTaken;
    const auto takeAll = [&] {
        for (;;) {
            vecTaken.push_back(wrapSafe(std::make_unique<int>()));
        }
    };
    EXPECT_THROW(takeAll(), KXRuntimeError);
    vecTaken.resize(vecTaken.size() - nLeft);
    return vecTaken;
}

TEST_F(SDKSessionTest, NoRoomForSafePointersIsACodeOnEveryStepOfAnExchange) {
    const std::pair<std::size_t, int> arrCases[] = {
        {0, ErrorCode::EncodeFailed},     // for the record of the request
        {1, ErrorCode::EncodeFailed},     // for the request
        {2, ErrorCode::DecodeFailed},     // for the reply
        {2049, ErrorCode::DecodeFailed},  // for others, beside what the exchange has
        {2050, ErrorCode::Success},
    };
    for (const auto& [nLeft, nCode] : arrCases) {
        const auto session = m_devices.add(answersAfter(0, TimeRead));
        {
            const auto vecTaken = takePointersBut(nLeft);
            EXPECT_EQ(exchange(session), nCode) << nLeft;
        }
        EXPECT_EQ(exchange(session), 0) << nLeft;
    }
}

TEST_F(SDKSessionTest, CallersOfOneSessionTakeTurns) {
    // Whoever reads the answer to another throws it away, and that one waits in vain.
    const auto session = m_devices.add(answersAfter(1, TimeRead));
    std::vector<std::jthread> vecCallers;
    for (int nCaller = 0; nCaller < 4; ++nCaller) {
        vecCallers.emplace_back([&] {
            for (int nCall = 0; nCall < 50; ++nCall) {
                ASSERT_EQ(exchange(session), 0);
            }
        });
    }
}

TEST_F(SDKSessionTest, CloseWaitsForTheExchangeUnderWay) {
    std::promise<void> arrived;
    std::promise<void> closing;
    const auto session = m_devices.add([&](const PeerRequest& request) {
        arrived.set_value();
        closing.get_future().wait();
        return Arrivals{{1, bytesOf({}, request)}};
    });
    const std::jthread closer([&] {
        arrived.get_future().wait();
        closing.set_value();
        session->close();
    });
    EXPECT_EQ(exchange(session), 0);
}

TEST(SequenceNumber, ThreadsTogetherTakeEachNumberOnceARound) {
    constexpr int Rounds = 16;  // of each of two threads: long enough for both to run at a time
    std::vector<std::atomic<int>> vecTaken(65536);
    const std::uint16_t nBefore = nextSequence();
    const auto take = [&] {
        for (std::size_t nTake = 0; nTake < Rounds * vecTaken.size(); ++nTake) {
            ++vecTaken[nextSequence()];
        }
    };
    std::jthread other(take);
    take();
    other.join();
    EXPECT_TRUE(std::ranges::all_of(vecTaken, [](int nTaken) { return nTaken == 2 * Rounds; }));
    EXPECT_EQ(nextSequence(), static_cast<std::uint16_t>(nBefore + 1));
}

// Lets everybody in, as session -5, and writes down what was asked: command, session, record.
ScriptedPeer::Script welcoming(std::vector<std::string>& vecAsked) {
    return answerEach([&](const PeerRequest& request) {
        const SDKCommandHeadInfo& head = request.m_head;
        const std::string strUser = request.m_strBody.substr(request.m_strBody.find("<UserParam"));
        vecAsked.push_back(std::to_string(head.getCommandID()) + " " +
                           std::to_string(head.getSessionId()) + " " +
                           strUser.substr(0, strUser.find('\n')));
        return head.getCommandID() == Login
                   ? peerAnswer(request, LoggedIn, peerResult(0, "<SessionId SessionId=\"-5\" />"))
                   : peerAnswer(request, Acknowledged, peerResult(0));
    });
}

// The table of the process and its heartbeat come into being with the first login, so each test of
// logins has a process of its own.
TEST(SDK_DeviceSessionCreator, LogsInAndOutWithEncipheredCredentials) {
    outputOfChild([] {
        std::vector<std::string> vecAsked;
        SafePointer<SDKSession> session;
        SDK_DeviceSessionCreator creator;
        long nLeft = Untouched;
        EXPECT_EQ(creator.login(session), ErrorCode::NoTransport);
        EXPECT_EQ(creator.logout(session), ErrorCode::NoTransport);
        {
            ScriptedPeer peer(welcoming(vecAsked));
            const DeviceInfoEx admin = peer.getDeviceInfo();
            const auto nobody = with(&DeviceInfoEx::setDeviceAddr, admin.getDeviceAddr());
            // Handles are never used again.
            for (const auto& [nExpected, info] : {std::pair{1L, admin}, {2L, nobody}}) {
                long nHandle = Untouched;
                ASSERT_EQ(creator.createSession(info, {}, nHandle), 0);
                EXPECT_EQ(nHandle, nExpected);
                ASSERT_TRUE(DeviceSessionManager::instance().findSession(nHandle, session));
                EXPECT_EQ(session->getSessionId(), 0xFFFFFFFBu);
                EXPECT_EQ(creator.destroySession(nHandle), 0);
                EXPECT_EQ(session->getSessionId(), 0u);
                EXPECT_EQ(creator.login(session), ErrorCode::NoTransport) << "closed";
                EXPECT_EQ(creator.destroySession(nHandle), ErrorCode::UnknownHandle);
            }
            EXPECT_EQ(creator.createSession(admin, {}, nLeft), 0);
        }
        EXPECT_EQ(creator.destroySession(nLeft), 0) << "although the device is gone";
        const std::string strAdmin = "<UserParam UserName=\"" + enciphered("admin") +
                                     "\" Password=\"" + enciphered("secret") + "\" Desc=\"\" />";
        const std::string strNobody = "<UserParam UserName=\"\" Password=\"\" Desc=\"\" />";
        EXPECT_THAT(vecAsked,
                    testing::ElementsAre("11001 0 " + strAdmin, "11003 4294967291 " + strAdmin,
                                         "11001 0 " + strNobody, "11003 4294967291 " + strNobody,
                                         "11001 0 " + strAdmin));
    });
}

TEST(SDK_DeviceSessionCreator, FailedLoginClosesTheConnectionAndLeavesTheHandle) {
    const std::string strSession = "<SessionId SessionId=\"1\" />";
    const struct {
        int nCode;
        std::string strBody;
        std::uint32_t nSessionInHead = 0;
        ExchangeLimits limits = {};
    } arrCases[] = {
        {9, peerResult(9, strSession)},
        {ErrorCode::BadReply, peerResult(0)},
        // The number travels in the body; a head that has it already answers another session.
        {ErrorCode::ReceiveTimedOut, peerResult(0, strSession), 1, {50, 50}},
    };
    outputOfChild([&] {
        // One connection after the other: a login is heard only when the one before hung up.
        std::atomic<std::size_t> nCase{0};
        ScriptedPeer peer(answerEach([&](PeerRequest request) {
            request.m_head.setSessionId(arrCases[nCase].nSessionInHead);
            return peerAnswer(request, LoggedIn, arrCases[nCase].strBody);
        }));
        for (; nCase < std::size(arrCases); ++nCase) {
            long nHandle = Untouched;
            EXPECT_EQ(SDK_DeviceSessionCreator().createSession(peer.getDeviceInfo(),
                                                               arrCases[nCase].limits, nHandle),
                      arrCases[nCase].nCode);
            EXPECT_EQ(nHandle, Untouched);
        }
    });
}

}  // namespace
