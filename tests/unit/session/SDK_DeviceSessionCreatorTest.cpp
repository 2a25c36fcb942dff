// Login and logout from the caller's side and from the device's. The table of the process and its
// heartbeat come into being with the first login, so each test has a process of its own.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "session/DeviceSessionManager.h"
#include "session/SDK_DeviceSessionCreator.h"
#include "support/ChildProcess.h"
#include "support/SampleRecords.h"
#include "unit/session/ConnectedSession.h"

namespace {

constexpr std::uint32_t Login = 11001;
constexpr std::uint32_t LoggedIn = 11002;
constexpr std::uint32_t Acknowledged = 10000;
constexpr long Untouched = -99;
constexpr int ReplyTimeoutMs = 5000;

std::string loggedIn(const PeerRequest& objRequest) {
    return peerAnswer(objRequest, LoggedIn, peerResult(0, "<SessionId SessionId=\"-5\" />"));
}

// Lets everybody in, as session -5, and writes down what was asked: command, session, record.
ScriptedPeer::Script welcoming(std::vector<std::string>& vecAsked) {
    return answerEach([&](const PeerRequest& objRequest) {
        const SDKCommandHeadInfo& objHead = objRequest.m_objHead;
        const std::string strUser =
            objRequest.m_strBody.substr(objRequest.m_strBody.find("<UserParam"));
        vecAsked.push_back(std::to_string(objHead.getCommandID()) + " " +
                           std::to_string(objHead.getSessionId()) + " " +
                           strUser.substr(0, strUser.find('\n')));
        return objHead.getCommandID() == Login
                   ? loggedIn(objRequest)
                   : peerAnswer(objRequest, Acknowledged, peerResult(0));
    });
}

TEST(SDK_DeviceSessionCreator, LogsInAndOutWithEncipheredCredentials) {
    outputOfChild([] {
        std::vector<std::string> vecAsked;
        {
            ScriptedPeer objPeer(welcoming(vecAsked));
            SDK_DeviceSessionCreator objCreator;
            for (const long nExpected : {1L, 2L}) {  // handles are never used again
                long nHandle = Untouched;
                ASSERT_EQ(
                    objCreator.createSession(objPeer.getDeviceInfo(), ReplyTimeoutMs, nHandle), 0);
                EXPECT_EQ(nHandle, nExpected);
                SafePointer<SDKSession> objSession;
                ASSERT_TRUE(DeviceSessionManager::instance().findSession(nHandle, objSession));
                EXPECT_EQ(objSession->getSessionId(), 0xFFFFFFFBu);
                EXPECT_EQ(objCreator.destroySession(nHandle), 0);
                EXPECT_EQ(objSession->getSessionId(), 0u);
                EXPECT_EQ(objCreator.login(objSession), ErrorCode::NoTransport) << "closed";
                EXPECT_EQ(objCreator.destroySession(nHandle), ErrorCode::UnknownHandle);
            }
        }
        const std::string strUser = "<UserParam UserName=\"" + enciphered("admin") +
                                    "\" Password=\"" + enciphered("secret") + "\" Desc=\"\" />";
        const std::string strIn = "11001 0 " + strUser;
        const std::string strOut = "11003 4294967291 " + strUser;
        EXPECT_EQ(vecAsked, (std::vector<std::string>{strIn, strOut, strIn, strOut}));
    });
}

TEST(SDK_DeviceSessionCreator, FailedLoginClosesTheConnectionAndLeavesTheHandle) {
    const std::string strSession = "<SessionId SessionId=\"1\" />";
    const struct {
        int nCode;
        std::string strBody;
        std::uint32_t nSessionInHead;
    } arrCases[] = {
        {9, peerResult(9, strSession), 0},
        {ErrorCode::BadReply, peerResult(0), 0},
        // The number travels in the body; a head that has it already answers another session.
        {ErrorCode::ReceiveTimedOut, peerResult(0, strSession), 1},
    };
    outputOfChild([&] {
        for (const auto& objCase : arrCases) {
            SCOPED_TRACE(objCase.nCode);
            std::promise<void> objClosed;
            ScriptedPeer objPeer([&](PeerLink& objLink) {
                answerEach([&](PeerRequest objRequest) {
                    objRequest.m_objHead.setSessionId(objCase.nSessionInHead);
                    return peerAnswer(objRequest, LoggedIn, objCase.strBody);
                })(objLink);
                objClosed.set_value();
            });
            const int nTimeoutMs =
                objCase.nCode == ErrorCode::ReceiveTimedOut ? SilenceMs : ReplyTimeoutMs;
            long nHandle = Untouched;
            EXPECT_EQ(SDK_DeviceSessionCreator().createSession(objPeer.getDeviceInfo(), nTimeoutMs,
                                                               nHandle),
                      objCase.nCode);
            EXPECT_EQ(objClosed.get_future().wait_for(std::chrono::seconds(30)),
                      std::future_status::ready);
            EXPECT_EQ(nHandle, Untouched);
        }
        const DeviceInfoEx objGone = ScriptedPeer([](PeerLink&) {}).getDeviceInfo();
        long nHandle = Untouched;
        EXPECT_EQ(SDK_DeviceSessionCreator().createSession(objGone, ReplyTimeoutMs, nHandle),
                  ErrorCode::ConnectFailed);
        EXPECT_EQ(nHandle, Untouched);
    });
}

TEST(SDK_DeviceSessionCreator, LogoutOfADeadConnectionSucceeds) {
    outputOfChild([] {
        ScriptedPeer objPeer([](PeerLink& objLink) {
            PeerRequest objRequest;
            objLink.read(objRequest);
            objLink.send(loggedIn(objRequest));
            objLink.read(objRequest);
            objLink.close();
        });
        SDK_DeviceSessionCreator objCreator;
        long nHandle = Untouched;
        ASSERT_EQ(objCreator.createSession(objPeer.getDeviceInfo(), ReplyTimeoutMs, nHandle), 0);
        EXPECT_EQ(objCreator.destroySession(nHandle), 0);
        EXPECT_EQ(objCreator.destroySession(nHandle), ErrorCode::UnknownHandle);
    });
}

TEST(SDK_DeviceSessionCreator, EmptyCredentialsStayEmptyAndNoSessionIsACode) {
    std::vector<std::string> vecAsked;
    {
        ScriptedPeer objPeer(welcoming(vecAsked));
        auto objSession = connectTo(objPeer);
        objSession->setDeviceInfo(DeviceInfoEx());
        EXPECT_EQ(SDK_DeviceSessionCreator().login(objSession), 0);
    }
    EXPECT_EQ(
        vecAsked,
        (std::vector<std::string>{"11001 0 <UserParam UserName=\"\" Password=\"\" Desc=\"\" />"}));

    SafePointer<SDKSession> objNone;
    EXPECT_EQ(SDK_DeviceSessionCreator().login(objNone), ErrorCode::NoTransport);
    EXPECT_EQ(SDK_DeviceSessionCreator().logout(objNone), ErrorCode::NoTransport);
}

}  // namespace
