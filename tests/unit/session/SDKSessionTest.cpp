// One exchange: what counts as its reply, and what everything else comes to.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/KXRuntimeError.h"
#include "domain/ChannelId.h"
#include "domain/DomainVectorContainer.h"
#include "domain/EtResult.h"
#include "domain/EtSessionId.h"
#include "session/SDKSession.h"
#include "session/SequenceNumber.h"
#include "session/SessionCommands.h"
#include "support/ScriptedPeer.h"
#include "support/WireBytes.h"
#include "unit/session/ConnectedSession.h"

namespace {

constexpr std::uint32_t ReadTime = 30507;
constexpr std::uint32_t TimeRead = 30508;
constexpr std::uint32_t Acknowledged = 10000;
constexpr std::uint32_t NoSuchCommand = 65000;
constexpr std::uint32_t OperatePTZ = 14006;

int exchange(const SafePointer<SDKSession>& objSession, std::uint32_t nCommandId = ReadTime) {
    Records objReply;
    return objSession->sendRecv(nCommandId, recordsOf(ChannelId()), objReply);
}

std::string timeRead(const PeerRequest& objRequest, const std::string& strBody = peerResult(0)) {
    return peerAnswer(objRequest, TimeRead, strBody);
}

// Answers to requests that were never made.
std::string strays(PeerRequest objRequest, int nCount) {
    std::string strBytes;
    for (int nStray = 1; nStray <= nCount; ++nStray) {
        objRequest.m_objHead.setSequence(
            static_cast<std::uint16_t>(objRequest.m_objHead.getSequence() + 1));
        strBytes += timeRead(objRequest);
    }
    return strBytes;
}

std::string answersOfOtherSession(PeerRequest objRequest, int nCount,
                                  const std::string& strBody = peerResult(0)) {
    objRequest.m_objHead.setSessionId(objRequest.m_objHead.getSessionId() + 1);
    std::string strBytes;
    for (int nAnswer = 0; nAnswer < nCount; ++nAnswer) {
        strBytes += timeRead(objRequest, strBody);
    }
    return strBytes;
}

const std::string Undecodable = "<Parameters><Result";

}  // namespace

struct ReplyCase {
    const char* m_pName;
    std::string (*m_pBytes)(const PeerRequest&);
    int m_nCode;
    std::size_t m_nRecords;

    friend std::ostream& operator<<(std::ostream& objOut, const ReplyCase& objCase) {
        return objOut << objCase.m_pName;
    }
};

class SDKSessionReply : public testing::TestWithParam<ReplyCase> {};

TEST_P(SDKSessionReply, ComesToItsCodeAndLeavesTheSessionUsable) {
    ScriptedPeer objPeer([](PeerLink& objLink) {
        PeerRequest objRequest;
        objLink.read(objRequest);
        objLink.send(GetParam().m_pBytes(objRequest));
        objLink.read(objRequest);
        objLink.send(timeRead(objRequest));
    });
    const auto objSession = connectTo(objPeer);
    objSession->setSessionId(77);
    Records objReply;
    EXPECT_EQ(objSession->sendRecv(ReadTime, recordsOf(ChannelId()), objReply), GetParam().m_nCode);
    EXPECT_EQ(objReply.size(), GetParam().m_nRecords);
    if (GetParam().m_nCode != ErrorCode::HeadRefused) {
        EXPECT_EQ(exchange(objSession), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Messages, SDKSessionReply,
    testing::Values(
        ReplyCase{"Success",
                  [](const PeerRequest& r) {
                      return timeRead(r, peerResult(0, "<ChannelId Id=\"4\" />"));
                  },
                  0, 2},
        ReplyCase{"CodeOfTheDevice",
                  [](const PeerRequest& r) {
                      return timeRead(r, peerResult(7, "<ChannelId Id=\"4\" />"));
                  },
                  7, 2},
        ReplyCase{
            "NoResult",
            [](const PeerRequest& r) { return timeRead(r, peerBody("<ChannelId Id=\"4\" />")); },
            -501, 1},
        ReplyCase{"LastOfTwoResults",
                  [](const PeerRequest& r) {
                      return timeRead(r, peerResult(0, "<Result Code=\"3\" />"));
                  },
                  3, 2},
        ReplyCase{"WrongCommand",
                  [](const PeerRequest& r) { return peerAnswer(r, Acknowledged, peerResult(0)); },
                  -501, 0},
        ReplyCase{"Undecodable", [](const PeerRequest& r) { return timeRead(r, Undecodable); },
                  -233, 0},
        ReplyCase{"UndecodableOfOtherSession",
                  [](const PeerRequest& r) { return answersOfOtherSession(r, 1, Undecodable); },
                  -233, 0},
        ReplyCase{"BehindOneStray", [](const PeerRequest& r) { return strays(r, 1) + timeRead(r); },
                  0, 1},
        ReplyCase{"BehindThreeStrays",
                  [](const PeerRequest& r) { return strays(r, 3) + timeRead(r); }, 0, 1},
        ReplyCase{"BehindAnswersOfOtherSession",
                  [](const PeerRequest& r) { return answersOfOtherSession(r, 3) + timeRead(r); }, 0,
                  1},
        ReplyCase{"FourStrays", [](const PeerRequest& r) { return strays(r, 4); }, -501, 0},
        ReplyCase{"FourAnswersOfOtherSession",
                  [](const PeerRequest& r) { return answersOfOtherSession(r, 4); }, -501, 0},
        ReplyCase{"MoreRecordsThanThereArePointers",
                  [](const PeerRequest& r) {
                      std::string strElements;
                      for (int nRecord = 0; nRecord < 20200; ++nRecord) {
                          strElements += "<ChannelId />";
                      }
                      return timeRead(r, peerBody(strElements));
                  },
                  -233, 0},
        ReplyCase{"NotAHead", [](const PeerRequest&) { return std::string(24, '#'); }, -402, 0}),
    testing::PrintToStringParamName());

TEST(SDKSession, ReadsNoFifthMessage) {
    ScriptedPeer objPeer([](PeerLink& objLink) {
        PeerRequest objRequest;
        objLink.read(objRequest);
        objLink.send(strays(objRequest, 4) + timeRead(objRequest, Undecodable));
        objLink.read(objRequest);
    });
    const auto objSession = connectTo(objPeer);
    EXPECT_EQ(exchange(objSession), ErrorCode::BadReply);
    EXPECT_EQ(exchange(objSession), ErrorCode::DecodeFailed);
}

TEST(SDKSession, LateAnswersAreThrownAwayByTheNextExchange) {
    ScriptedPeer objPeer([](PeerLink& objLink) {
        PeerRequest objLate;
        PeerRequest objRequest;
        objLink.read(objLate);
        objLink.read(objRequest);
        objLink.send(timeRead(objLate, peerResult(5)) + timeRead(objRequest, peerResult(6)));
        objLink.read(objRequest);
    });
    const auto objSession = connectTo(objPeer);
    objSession->setReplyTimeout(SilenceMs);
    EXPECT_EQ(exchange(objSession), ErrorCode::ReceiveTimedOut);
    objSession->setReplyTimeout(SDKSession::DefaultReplyTimeoutMs);
    EXPECT_EQ(exchange(objSession), 6);
}

TEST(SDKSession, UnknownCommandIsSentAndToldOnlyAfterAnAnswer) {
    ScriptedPeer objPeer([](PeerLink& objLink) {
        PeerRequest objRequest;
        objLink.read(objRequest);
        objLink.read(objRequest);
        objLink.send(peerAnswer(objRequest, NoSuchCommand + 1, peerResult(0)));
        objLink.read(objRequest);
    });
    const auto objSession = connectTo(objPeer);
    objSession->setReplyTimeout(SilenceMs);
    EXPECT_EQ(exchange(objSession, NoSuchCommand), ErrorCode::ReceiveTimedOut);
    objSession->setReplyTimeout(SDKSession::DefaultReplyTimeoutMs);
    EXPECT_EQ(exchange(objSession, NoSuchCommand), ErrorCode::UnknownCommand);
}

TEST(SDKSession, WhatCannotBeEncodedIsNotSent) {
    ScriptedPeer objPeer(answerAll(TimeRead));
    const auto objSession = connectTo(objPeer);
    Records objReply;
    EXPECT_EQ(objSession->sendRecv(OperatePTZ, {}, objReply), ErrorCode::EncodeFailed);
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
    const struct {
        std::size_t m_nLeft;
        int m_nCode;
    } arrCases[] = {
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
            EXPECT_EQ(sendRecord(objSession, ReadTime, ChannelId()), nCode) << nLeft;
        }
        EXPECT_EQ(exchange(objSession), 0) << nLeft;
        objSession->close();
    }
}

TEST(SDKSession, EmptyRecordIsMisuse) {
    ScriptedPeer objPeer(answerAll(TimeRead));
    const auto objSession = connectTo(objPeer);
    Records objReply;
    EXPECT_THROW(objSession->sendRecv(ReadTime, Records(1), objReply), KXRuntimeError);
    EXPECT_EQ(exchange(objSession), 0);
}

TEST(SDKSession, EveryRequestHasTheSessionAndASequenceOfItsOwn) {
    std::vector<SDKCommandHeadInfo> vecHeads;
    {
        ScriptedPeer objPeer([&](PeerLink& objLink) {
            PeerRequest objRequest;
            while (objLink.read(objRequest)) {
                vecHeads.push_back(objRequest.m_objHead);
                SDKCommandHeadInfo objHead = objRequest.m_objHead;
                objHead.setCommandID(TimeRead);
                objLink.send(peerMessage(objHead, peerResult(0), 3));
            }
        });
        const auto objSession = connectTo(objPeer);
        objSession->setSessionId(0x90000001);
        EXPECT_EQ(objSession->getProtocolType(), 1);
        EXPECT_EQ(exchange(objSession), 0);
        EXPECT_EQ(objSession->getProtocolType(), 3);  // and yet what leaves is a command of type 1
        EXPECT_EQ(exchange(objSession), 0);
    }
    ASSERT_EQ(vecHeads.size(), 2u);
    EXPECT_EQ(vecHeads[1].getSequence(), static_cast<std::uint16_t>(vecHeads[0].getSequence() + 1));
    for (const SDKCommandHeadInfo& objHead : vecHeads) {
        EXPECT_EQ(objHead.getProtocolType(), 1);
        EXPECT_EQ(objHead.getCommandID(), ReadTime);
        EXPECT_EQ(objHead.getSessionId(), 0x90000001u);
        EXPECT_FALSE(objHead.isFlagA() || objHead.isFlagB());
    }
}

TEST(SDKSession, EveryEndOfTheConnectionHasItsCode) {
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

TEST(SDKSession, EmptyTransferIsMisuse) {
    SDKSession objSession;
    EXPECT_THROW(objSession.setTransfer(SafePointer<ITransfer>()), KXRuntimeError);
    Records objReply;
    EXPECT_EQ(objSession.sendRecv(ReadTime, {}, objReply), ErrorCode::NoTransport);
}

TEST(SDKSession, CallersOfOneSessionTakeTurns) {
    std::atomic<int> nOverlaps{0};
    ScriptedPeer objPeer([&](PeerLink& objLink) {
        PeerRequest objRequest;
        while (objLink.read(objRequest)) {
            nOverlaps += objLink.hasMore() ? 1 : 0;
            const std::size_t nBegin = objRequest.m_strBody.find("<ChannelId");
            objLink.send(timeRead(
                objRequest,
                peerResult(0, objRequest.m_strBody.substr(
                                  nBegin, objRequest.m_strBody.find("/>", nBegin) + 2 - nBegin))));
        }
    });
    const auto objSession = connectTo(objPeer);
    const auto objCalls = [&](int nFirst) {
        for (int nId = nFirst; nId < nFirst + 50; ++nId) {
            ChannelId objAsked;
            ChannelId objAnswered;
            objAsked.setId(nId);
            ASSERT_EQ(sendRecord(objSession, ReadTime, objAsked, objAnswered), 0);
            ASSERT_EQ(objAnswered.getId(), nId);
        }
    };
    std::vector<std::thread> vecCallers;
    for (const int nFirst : {1000, 2000, 3000, 4000}) {
        vecCallers.emplace_back(objCalls, nFirst);
    }
    for (std::thread& objCaller : vecCallers) {
        objCaller.join();
    }
    EXPECT_EQ(nOverlaps, 0);
}

TEST(SDKSession, CloseWaitsForTheExchangeUnderWay) {
    std::promise<void> objArrived;
    std::promise<void> objClosing;
    ScriptedPeer objPeer([&](PeerLink& objLink) {
        PeerRequest objRequest;
        objLink.read(objRequest);
        objArrived.set_value();
        objClosing.get_future().wait();
        objLink.send(timeRead(objRequest));
        objLink.read(objRequest);
    });
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

TEST(SessionCommands, FindRecordTakesTheFirstOfItsType) {
    ChannelId objFour;
    objFour.setId(4);
    DomainVectorContainer<ChannelId> objList({objFour, objFour});
    const Records objReply =
        recordsOf(EtResult(), DomainVectorContainer<EtResult>(), objList, objFour, ChannelId());
    ChannelId objFound;
    EXPECT_TRUE(findRecord(ChannelId::DomainId, 0, objReply, objFound));
    EXPECT_EQ(objFound.getId(), 4);
    DomainVectorContainer<ChannelId> objFoundList;
    EXPECT_TRUE(findRecord(ContainerDomainId, ChannelId::DomainId, objReply, objFoundList));
    EXPECT_EQ(objFoundList.getElements().size(), 2u);
    EtSessionId objMissing;
    objMissing.setSessionId(9);
    EXPECT_FALSE(findRecord(EtSessionId::DomainId, 0, objReply, objMissing));
    EXPECT_EQ(objMissing.getSessionId(), 9);
}

TEST(SessionCommands, NeedASession) {
    ChannelId objRecord;
    EXPECT_EQ(sendRecord(SafePointer<SDKSession>(), ReadTime, objRecord), ErrorCode::NoTransport);
    EXPECT_EQ(sendRecord(SafePointer<SDKSession>(), ReadTime, objRecord, objRecord),
              ErrorCode::NoTransport);
}

TEST(SequenceNumber, ThreadsTogetherTakeEachNumberOnceARound) {
    std::vector<std::atomic<int>> vecTaken(65536);
    const std::uint16_t nBefore = nextSequence();
    std::vector<std::thread> vecTakers;
    for (int nTaker = 0; nTaker < 4; ++nTaker) {
        vecTakers.emplace_back([&] {
            for (int nTake = 0; nTake < 16384; ++nTake) {
                ++vecTaken[nextSequence()];
            }
        });
    }
    for (std::thread& objTaker : vecTakers) {
        objTaker.join();
    }
    for (const std::atomic<int>& nTaken : vecTaken) {
        ASSERT_EQ(nTaken, 1);
    }
    EXPECT_EQ(nextSequence(), static_cast<std::uint16_t>(nBefore + 1));
}
