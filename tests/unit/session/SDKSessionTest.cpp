// One exchange: what counts as its reply, and what everything else comes to.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/KXRuntimeError.h"
#include "domain/EtResult.h"
#include "domain/EtSessionId.h"
#include "session/SequenceNumber.h"
#include "session/SessionCommands.h"
#include "support/SampleRecords.h"
#include "unit/session/ConnectedSession.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t ReadTime = 30507;
constexpr std::uint32_t TimeRead = 30508;
constexpr std::uint32_t Acknowledged = 10000;
constexpr std::uint32_t NoSuchCommand = 65000;
constexpr std::uint32_t OperatePTZ = 14006;

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

// Waits for a request of session 0x90000001, and tells its sequence.
std::uint16_t readSequence(PeerLink& link, PeerRequest& request) {
    EXPECT_TRUE(link.read(request));
    EXPECT_EQ(request.m_head.getProtocolType(), 1);
    EXPECT_EQ(request.m_head.getCommandID(), ReadTime);
    EXPECT_EQ(request.m_head.getSessionId(), 0x90000001u);
    return request.m_head.getSequence();
}

TEST(SDKSession, TellsItsReplyFromWhatElseArrivesAndStaysUsable) {
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
        ScriptedPeer peer([&](PeerLink& link) {
            PeerRequest request;
            const std::uint16_t nFirst = readSequence(link, request);
            for (const Message& message : testCase.vecMessages) {
                link.send(bytesOf(message, request));
            }
            EXPECT_EQ(readSequence(link, request), static_cast<std::uint16_t>(nFirst + 1));
            link.send(bytesOf(answer, request));
        });
        const auto session = connectTo(peer);
        session->setSessionId(0x90000001);
        Records reply;
        EXPECT_EQ(session->sendRecv(ReadTime, {}, reply), testCase.nCode);
        EXPECT_EQ(reply.size(), testCase.nRecords);
        EXPECT_EQ(session->getProtocolType(), testCase.vecMessages.back().nProtocolType);
        EXPECT_EQ(exchange(session), testCase.nNextCode);
    }
}

TEST(SDKSession, ThrowsLateAnswersAwayAndTellsAnUnknownCommandOnlyAfterAnAnswer) {
    for (const auto& [nCommandId, nCode] :
         {std::pair{ReadTime, 6}, {NoSuchCommand, ErrorCode::UnknownCommand}}) {
        std::string strLate;
        ScriptedPeer peer(answerEach([&](const PeerRequest& request) {
            const std::string strAnswers = strLate + bytesOf({peerResult(6)}, request);
            const bool bFirst = std::exchange(strLate, bytesOf({}, request)).empty();
            return bFirst ? "" : strAnswers;
        }));
        const auto session = connectTo(peer);
        session->setReplyTimeout(SilenceMs);
        EXPECT_EQ(exchange(session, nCommandId), ErrorCode::ReceiveTimedOut);
        session->setReplyTimeout(SDKSession::DefaultReplyTimeoutMs);
        EXPECT_EQ(exchange(session, nCommandId), nCode);
    }
}

TEST(SDKSession, SurvivesWhatCannotBeSent) {
    ScriptedPeer peer(answerAll(TimeRead));
    const auto session = connectTo(peer);
    Records reply;
    EXPECT_EQ(session->sendRecv(OperatePTZ, {}, reply), ErrorCode::EncodeFailed);
    EXPECT_THROW(session->sendRecv(ReadTime, Records(1), reply), KXRuntimeError);
    EXPECT_THROW(session->setTransfer(SafePointer<ITransfer>()), KXRuntimeError);
    EXPECT_EQ(exchange(session), 0);
}

// Takes up every safe pointer that there is but so many.
std::vector<SafePointer<int>> takePointersBut(std::size_t nLeft) {
    std::vector<SafePointer<int>> vecTaken;
    try {
        for (;;) {
            vecTaken.push_back(wrapSafe(std::make_unique<int>()));
        }
    } catch (const KXRuntimeError&) {
        vecTaken.resize(vecTaken.size() - nLeft);
    }
    return vecTaken;
}

TEST(SDKSession, NoRoomForSafePointersIsACodeOnEveryStepOfAnExchange) {
    ScriptedPeer peer(answerAll(TimeRead));
    const std::pair<std::size_t, int> arrCases[] = {
        {0, ErrorCode::EncodeFailed},  // for the record of the request
        {1, ErrorCode::EncodeFailed},  // for the request
        {2, ErrorCode::DecodeFailed},  // for the record of the reply: the head took what was left
        {3, ErrorCode::DecodeFailed},  // for the reply
        {4, ErrorCode::Success},
    };
    for (const auto& [nLeft, nCode] : arrCases) {
        const auto session = connectTo(peer);
        {
            const auto vecTaken = takePointersBut(nLeft);
            EXPECT_EQ(exchange(session), nCode) << nLeft;
        }
        EXPECT_EQ(exchange(session), 0) << nLeft;
        session->close();
    }
}

TEST(SDKSession, EveryEndOfTheConnectionHasItsCode) {
    EXPECT_EQ(exchange(SafePointer<SDKSession>()), ErrorCode::NoTransport);
    EXPECT_EQ(exchange(wrapSafe(std::make_unique<SDKSession>())), ErrorCode::NoTransport);

    ScriptedPeer peer([](PeerLink& link) {
        PeerRequest request;
        link.read(request);
        link.close();
    });
    const auto session = connectTo(peer);
    EXPECT_EQ(exchange(session), ErrorCode::ReceiveFailed);
    session->close();
    session->close();
    EXPECT_EQ(exchange(session), ErrorCode::NoTransport);
}

TEST(SDKSession, CallersOfOneSessionTakeTurns) {
    std::atomic<int> nOverlaps{0};
    ScriptedPeer peer([&](PeerLink& link) {
        answerEach([&](const PeerRequest& request) {
            nOverlaps += link.hasMore() ? 1 : 0;
            std::string strBody = request.m_strBody;
            strBody.insert(strBody.find("<ChannelId"), "<Result Code=\"0\" />");
            return bytesOf({strBody}, request);
        })(link);
    });
    const auto session = connectTo(peer);
    std::vector<std::jthread> vecCallers;
    for (const int nFirst : {1000, 2000, 3000, 4000}) {
        vecCallers.emplace_back([&, nFirst] {
            for (int nId = nFirst; nId < nFirst + 50; ++nId) {
                ChannelId answered;
                const ChannelId asked = with(&ChannelId::setId, nId);
                ASSERT_EQ(sendGet(session, ReadTime, answered, asked), 0);
                ASSERT_EQ(answered.getId(), nId);
            }
        });
    }
    vecCallers.clear();
    EXPECT_EQ(nOverlaps, 0);
}

TEST(SDKSession, CloseWaitsForTheExchangeUnderWay) {
    std::promise<void> arrived;
    std::promise<void> closing;
    ScriptedPeer peer(answerEach([&](const PeerRequest& request) {
        arrived.set_value();
        closing.get_future().wait();
        return bytesOf({}, request);
    }));
    const auto session = connectTo(peer);
    const std::jthread closer([&] {
        arrived.get_future().wait();
        closing.set_value();
        session->close();
    });
    EXPECT_EQ(exchange(session), 0);
}

TEST(SequenceNumber, ThreadsTogetherTakeEachNumberOnceARound) {
    std::vector<std::atomic<int>> vecTaken(65536);
    const std::uint16_t nBefore = nextSequence();
    const auto take = [&] {
        for (int nTake = 0; nTake < 32768; ++nTake) {
            ++vecTaken[nextSequence()];
        }
    };
    std::jthread other(take);
    take();
    other.join();
    for (const std::atomic<int>& nTaken : vecTaken) {
        ASSERT_EQ(nTaken, 1);
    }
    EXPECT_EQ(nextSequence(), static_cast<std::uint16_t>(nBefore + 1));
}

}  // namespace
