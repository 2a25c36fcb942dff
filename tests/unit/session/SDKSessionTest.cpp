// One exchange: what counts as its reply, and what everything else comes to.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/KXRuntimeError.h"
#include "domain/EtResult.h"
#include "domain/EtSessionId.h"
#include "session/SequenceNumber.h"
#include "session/SessionCommands.h"
#include "support/SampleRecords.h"
#include "unit/session/ConnectedSession.h"

namespace {

constexpr std::uint32_t ReadTime = 30507;
constexpr std::uint32_t TimeRead = 30508;
constexpr std::uint32_t Acknowledged = 10000;
constexpr std::uint32_t NoSuchCommand = 65000;
constexpr std::uint32_t OperatePTZ = 14006;

int exchange(const SafePointer<SDKSession>& objSession, std::uint32_t nCommandId = ReadTime) {
    return sendRecord(objSession, nCommandId, ChannelId());
}

// A message of the device, by what makes it differ from the answer that is due.
struct Message {
    std::string strBody = peerResult(0);
    std::uint16_t nSequencesAhead = 0;
    std::uint32_t nSessionsAhead = 0;
    std::uint32_t nCommandID = TimeRead;
    std::uint16_t nProtocolType = 1;
};

std::string bytesOf(const Message& objMessage, const PeerRequest& objRequest) {
    SDKCommandHeadInfo objHead = objRequest.m_objHead;
    objHead.setCommandID(objMessage.nCommandID);
    objHead.setSequence(
        static_cast<std::uint16_t>(objHead.getSequence() + objMessage.nSequencesAhead));
    objHead.setSessionId(objHead.getSessionId() + objMessage.nSessionsAhead);
    return peerMessage(objHead, objMessage.strBody, objMessage.nProtocolType);
}

// Waits for a request of session 0x90000001, and tells its sequence.
std::uint16_t readSequence(PeerLink& objLink, PeerRequest& objRequest) {
    EXPECT_TRUE(objLink.read(objRequest));
    EXPECT_EQ(objRequest.m_objHead.getProtocolType(), 1);
    EXPECT_EQ(objRequest.m_objHead.getCommandID(), ReadTime);
    EXPECT_EQ(objRequest.m_objHead.getSessionId(), 0x90000001u);
    return objRequest.m_objHead.getSequence();
}

TEST(SDKSession, TellsItsReplyFromWhatElseArrivesAndStaysUsable) {
    const std::string strChannel = "<ChannelId Id=\"4\" />";
    const std::string strBroken = "<Parameters><Result";
    const Message objAnswer;
    const Message objStray{.nSequencesAhead = 1};
    const Message objForeign{.nSessionsAhead = 1};
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
        {"behind three strays", {objStray, objStray, objStray, objAnswer}, 0, 1},
        {"behind three of others", {objForeign, objForeign, objForeign, objAnswer}, 0, 1},
        {"four strays", {objStray, objStray, objStray, objStray}, -501, 0},
        {"four of others", {objForeign, objForeign, objForeign, objForeign}, -501, 0},
        {"a fifth", {objStray, objStray, objStray, objStray, {strBroken}}, -501, 0, -233},
    };
    for (const auto& objCase : arrCases) {
        SCOPED_TRACE(objCase.szName);
        ScriptedPeer objPeer([&](PeerLink& objLink) {
            PeerRequest objRequest;
            const std::uint16_t nFirst = readSequence(objLink, objRequest);
            for (const Message& objMessage : objCase.vecMessages) {
                objLink.send(bytesOf(objMessage, objRequest));
            }
            EXPECT_EQ(readSequence(objLink, objRequest), static_cast<std::uint16_t>(nFirst + 1));
            objLink.send(bytesOf(objAnswer, objRequest));
        });
        const auto objSession = connectTo(objPeer);
        objSession->setSessionId(0x90000001);
        Records objReply;
        EXPECT_EQ(objSession->sendRecv(ReadTime, {}, objReply), objCase.nCode);
        EXPECT_EQ(objReply.size(), objCase.nRecords);
        EXPECT_EQ(objSession->getProtocolType(), objCase.vecMessages.back().nProtocolType);
        EXPECT_EQ(exchange(objSession), objCase.nNextCode);
    }
}

TEST(SDKSession, ThrowsLateAnswersAwayAndTellsAnUnknownCommandOnlyAfterAnAnswer) {
    for (const auto& [nCommandId, nCode] :
         {std::pair{ReadTime, 6}, {NoSuchCommand, ErrorCode::UnknownCommand}}) {
        std::string strLate;
        ScriptedPeer objPeer(answerEach([&](const PeerRequest& objRequest) {
            const std::string strAnswers = strLate + bytesOf({peerResult(6)}, objRequest);
            const bool bFirst = std::exchange(strLate, bytesOf({}, objRequest)).empty();
            return bFirst ? "" : strAnswers;
        }));
        const auto objSession = connectTo(objPeer);
        objSession->setReplyTimeout(SilenceMs);
        EXPECT_EQ(exchange(objSession, nCommandId), ErrorCode::ReceiveTimedOut);
        objSession->setReplyTimeout(SDKSession::DefaultReplyTimeoutMs);
        EXPECT_EQ(exchange(objSession, nCommandId), nCode);
    }
}

TEST(SDKSession, SurvivesWhatCannotBeSent) {
    ScriptedPeer objPeer(answerAll(TimeRead));
    const auto objSession = connectTo(objPeer);
    Records objReply;
    EXPECT_EQ(objSession->sendRecv(OperatePTZ, {}, objReply), ErrorCode::EncodeFailed);
    EXPECT_THROW(objSession->sendRecv(ReadTime, Records(1), objReply), KXRuntimeError);
    EXPECT_THROW(objSession->setTransfer(SafePointer<ITransfer>()), KXRuntimeError);
    EXPECT_EQ(exchange(objSession), 0);
}

// Takes up every safe pointer that there is, and gives some of them back.
class FullRegistry {
public:
    explicit FullRegistry(std::size_t nLeft) {
        try {
            for (;;) {
                m_vecPointers.push_back(wrapSafe(std::make_unique<int>()));
            }
        } catch (const KXRuntimeError&) {
            m_vecPointers.resize(m_vecPointers.size() - nLeft);
        }
    }

private:
    std::vector<SafePointer<int>> m_vecPointers;
};

TEST(SDKSession, NoRoomForSafePointersIsACodeOnEveryStepOfAnExchange) {
    ScriptedPeer objPeer(answerAll(TimeRead));
    const std::pair<std::size_t, int> arrCases[] = {
        {0, ErrorCode::EncodeFailed},  // for the record of the request
        {1, ErrorCode::EncodeFailed},  // for the request
        {2, ErrorCode::DecodeFailed},  // for the record of the reply: the head took what was left
        {3, ErrorCode::DecodeFailed},  // for the reply
        {4, ErrorCode::Success},
    };
    for (const auto& [nLeft, nCode] : arrCases) {
        const auto objSession = connectTo(objPeer);
        {
            const FullRegistry objFull(nLeft);
            EXPECT_EQ(exchange(objSession), nCode) << nLeft;
        }
        EXPECT_EQ(exchange(objSession), 0) << nLeft;
        objSession->close();
    }
}

TEST(SDKSession, EveryEndOfTheConnectionHasItsCode) {
    EXPECT_EQ(exchange(SafePointer<SDKSession>()), ErrorCode::NoTransport);
    EXPECT_EQ(exchange(wrapSafe(std::make_unique<SDKSession>())), ErrorCode::NoTransport);

    ScriptedPeer objPeer([](PeerLink& objLink) {
        PeerRequest objRequest;
        objLink.read(objRequest);
        objLink.close();
    });
    const auto objSession = connectTo(objPeer);
    EXPECT_EQ(exchange(objSession), ErrorCode::ReceiveFailed);
    objSession->close();
    EXPECT_EQ(exchange(objSession), ErrorCode::NoTransport);
    objSession->close();
}

TEST(SDKSession, CallersOfOneSessionTakeTurns) {
    std::atomic<int> nOverlaps{0};
    ScriptedPeer objPeer([&](PeerLink& objLink) {
        answerEach([&](const PeerRequest& objRequest) {
            nOverlaps += objLink.hasMore() ? 1 : 0;
            std::string strBody = objRequest.m_strBody;
            strBody.insert(strBody.find("<ChannelId"), "<Result Code=\"0\" />");
            return bytesOf({strBody}, objRequest);
        })(objLink);
    });
    const auto objSession = connectTo(objPeer);
    std::vector<std::jthread> vecCallers;
    for (const int nFirst : {1000, 2000, 3000, 4000}) {
        vecCallers.emplace_back([&, nFirst] {
            for (int nId = nFirst; nId < nFirst + 50; ++nId) {
                ChannelId objAnswered;
                const ChannelId objAsked = with(&ChannelId::setId, nId);
                ASSERT_EQ(sendRecord(objSession, ReadTime, objAsked, objAnswered), 0);
                ASSERT_EQ(objAnswered.getId(), nId);
            }
        });
    }
    vecCallers.clear();
    EXPECT_EQ(nOverlaps, 0);
}

TEST(SDKSession, CloseWaitsForTheExchangeUnderWay) {
    std::promise<void> objArrived;
    std::promise<void> objClosing;
    ScriptedPeer objPeer(answerEach([&](const PeerRequest& objRequest) {
        objArrived.set_value();
        objClosing.get_future().wait();
        return bytesOf({}, objRequest);
    }));
    const auto objSession = connectTo(objPeer);
    std::thread objCloser([&] {
        objArrived.get_future().wait();
        objClosing.set_value();
        objSession->close();
    });
    EXPECT_EQ(exchange(objSession), 0);
    objCloser.join();
    EXPECT_EQ(exchange(objSession), ErrorCode::NoTransport);
}

TEST(SessionCommands, FindRecordTakesTheFirstOfItsTypeAndListsByTheirElement) {
    const ChannelId objFour = with(&ChannelId::setId, 4);
    const auto objList = listOf<ChannelId>({objFour, objFour});
    const Records objReply =
        recordsOf(EtResult(), DomainVectorContainer<EtResult>(), objList, objFour, ChannelId());
    ChannelId objFound;
    EXPECT_TRUE(findRecord(ChannelId::DomainId, 0, objReply, objFound));
    EXPECT_EQ(objFound, objFour);
    DomainVectorContainer<ChannelId> objFoundList;
    EXPECT_TRUE(findRecord(ContainerDomainId, ChannelId::DomainId, objReply, objFoundList));
    EXPECT_EQ(objFoundList.getElements(), objList.getElements());

    EtSessionId objMissing = with(&EtSessionId::setSessionId, 9);
    EXPECT_FALSE(findRecord(EtSessionId::DomainId, 0, objReply, objMissing));
    EXPECT_FALSE(findRecord(ContainerDomainId, EtSessionId::DomainId, objReply, objMissing));
    EXPECT_EQ(objMissing.getSessionId(), 9);
}

TEST(SequenceNumber, ThreadsTogetherTakeEachNumberOnceARound) {
    std::vector<std::atomic<int>> vecTaken(65536);
    const std::uint16_t nBefore = nextSequence();
    std::vector<std::jthread> vecTakers;
    for (int nTaker = 0; nTaker < 4; ++nTaker) {
        vecTakers.emplace_back([&] {
            for (int nTake = 0; nTake < 16384; ++nTake) {
                ++vecTaken[nextSequence()];
            }
        });
    }
    vecTakers.clear();
    for (const std::atomic<int>& nTaken : vecTaken) {
        ASSERT_EQ(nTaken, 1);
    }
    EXPECT_EQ(nextSequence(), static_cast<std::uint16_t>(nBefore + 1));
}

}  // namespace
