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

using namespace fleetkit;

namespace {

constexpr std::uint32_t Login = 11001;
constexpr std::uint32_t LoggedIn = 11002;
constexpr std::uint32_t Acknowledged = 10000;
constexpr long Untouched = -99;
constexpr int ReplyTimeoutMs = 5000;

std::string loggedIn(const PeerRequest& request) {
    return peerAnswer(request, LoggedIn, peerResult(0, "<SessionId SessionId=\"-5\" />"));
}

// Lets everybody in, as session -5, and writes down what was asked: command, session, record.
ScriptedPeer::Script welcoming(std::vector<std::string>& vecAsked) {
    return answerEach([&](const PeerRequest& request) {
        const SDKCommandHeadInfo& head = request.m_head;
        const std::string strUser = request.m_strBody.substr(request.m_strBody.find("<UserParam"));
        vecAsked.push_back(std::to_string(head.getCommandID()) + " " +
                           std::to_string(head.getSessionId()) + " " +
                           strUser.substr(0, strUser.find('\n')));
        return head.getCommandID() == Login ? loggedIn(request)
                                            : peerAnswer(request, Acknowledged, peerResult(0));
    });
}

TEST(SDK_DeviceSessionCreator, LogsInAndOutWithEncipheredCredentials) {
    outputOfChild([] {
        std::vector<std::string> vecAsked;
        {
            ScriptedPeer peer(welcoming(vecAsked));
            SDK_DeviceSessionCreator creator;
            for (const long nExpected : {1L, 2L}) {  // handles are never used again
                long nHandle = Untouched;
                ASSERT_EQ(creator.createSession(peer.getDeviceInfo(), ReplyTimeoutMs, nHandle), 0);
                EXPECT_EQ(nHandle, nExpected);
                SafePointer<SDKSession> session;
                ASSERT_TRUE(DeviceSessionManager::instance().findSession(nHandle, session));
                EXPECT_EQ(session->getSessionId(), 0xFFFFFFFBu);
                EXPECT_EQ(creator.destroySession(nHandle), 0);
                EXPECT_EQ(session->getSessionId(), 0u);
                EXPECT_EQ(creator.login(session), ErrorCode::NoTransport) << "closed";
                EXPECT_EQ(creator.destroySession(nHandle), ErrorCode::UnknownHandle);
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
        for (const auto& testCase : arrCases) {
            SCOPED_TRACE(testCase.nCode);
            std::promise<void> closed;
            ScriptedPeer peer([&](PeerLink& link) {
                answerEach([&](PeerRequest request) {
                    request.m_head.setSessionId(testCase.nSessionInHead);
                    return peerAnswer(request, LoggedIn, testCase.strBody);
                })(link);
                closed.set_value();
            });
            const int nTimeoutMs =
                testCase.nCode == ErrorCode::ReceiveTimedOut ? SilenceMs : ReplyTimeoutMs;
            long nHandle = Untouched;
            EXPECT_EQ(
                SDK_DeviceSessionCreator().createSession(peer.getDeviceInfo(), nTimeoutMs, nHandle),
                testCase.nCode);
            EXPECT_EQ(closed.get_future().wait_for(std::chrono::seconds(30)),
                      std::future_status::ready);
            EXPECT_EQ(nHandle, Untouched);
        }
        const DeviceInfoEx gone = ScriptedPeer([](PeerLink&) {}).getDeviceInfo();
        long nHandle = Untouched;
        EXPECT_EQ(SDK_DeviceSessionCreator().createSession(gone, ReplyTimeoutMs, nHandle),
                  ErrorCode::ConnectFailed);
    });
}

TEST(SDK_DeviceSessionCreator, EmptyCredentialsStayEmptyAndLogoutOfADeadConnectionSucceeds) {
    outputOfChild([] {
        std::string strBody;
        ScriptedPeer peer([&](PeerLink& link) {
            PeerRequest request;
            link.read(request);
            strBody = request.m_strBody;
            link.send(loggedIn(request));
            link.read(request);
            link.close();
        });
        SDK_DeviceSessionCreator creator;
        DeviceInfoEx nobody;
        nobody.setDeviceAddr(peer.getDeviceInfo().getDeviceAddr());
        long nHandle = Untouched;
        ASSERT_EQ(creator.createSession(nobody, ReplyTimeoutMs, nHandle), 0);
        EXPECT_NE(strBody.find("<UserParam UserName=\"\" Password=\"\" Desc=\"\" />"),
                  std::string::npos);
        EXPECT_EQ(creator.destroySession(nHandle), 0);
        EXPECT_EQ(creator.destroySession(nHandle), ErrorCode::UnknownHandle);
        SafePointer<SDKSession> none;
        EXPECT_EQ(creator.login(none), ErrorCode::NoTransport);
        EXPECT_EQ(creator.logout(none), ErrorCode::NoTransport);
    });
}

}  // namespace
