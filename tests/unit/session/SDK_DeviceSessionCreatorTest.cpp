// Login and logout from the caller's side and from the device's. The table of the process and its
// heartbeat come into being with the first login, so each test has a process of its own.
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "protocol/CredentialCipher.h"
#include "session/DeviceSessionManager.h"
#include "session/SDK_DeviceSessionCreator.h"
#include "support/ChildProcess.h"
#include "support/ScriptedPeer.h"
#include "unit/session/ConnectedSession.h"

namespace {

constexpr std::uint32_t Login = 11001;
constexpr std::uint32_t LoggedIn = 11002;
constexpr std::uint32_t Logout = 11003;
constexpr std::uint32_t Acknowledged = 10000;
constexpr long Untouched = -99;
constexpr int ReplyTimeoutMs = 5000;

std::string enciphered(const std::string& strPlain) {
    std::string strCipher;
    EXPECT_TRUE(encryptText(strPlain, strCipher));
    return strCipher;
}

std::string sessionElement(int nSessionId) {
    return "<SessionId SessionId=\"" + std::to_string(nSessionId) + "\" />";
}

// Lets everybody in, as session -5, and writes down what was asked.
ScriptedPeer::Script welcoming(std::vector<PeerRequest>& vecRequests) {
    return [&](PeerLink& objLink) {
        PeerRequest objRequest;
        while (objLink.read(objRequest)) {
            vecRequests.push_back(objRequest);
            const bool bLogin = objRequest.m_objHead.getCommandID() == Login;
            objLink.send(peerAnswer(objRequest, bLogin ? LoggedIn : Acknowledged,
                                    peerResult(0, sessionElement(-5))));
        }
    };
}

// One login with a device that answers it with `strBytes`, and sees the connection closed.
void expectRefusal(int nCode, const std::function<std::string(const PeerRequest&)>& objAnswer,
                   int nTimeoutMs = ReplyTimeoutMs) {
    std::promise<bool> objClosed;
    ScriptedPeer objPeer([&](PeerLink& objLink) {
        PeerRequest objRequest;
        objLink.read(objRequest);
        objLink.send(objAnswer(objRequest));
        objClosed.set_value(!objLink.read(objRequest));
    });
    long nHandle = Untouched;
    EXPECT_EQ(
        SDK_DeviceSessionCreator().createSession(objPeer.getDeviceInfo(), nTimeoutMs, nHandle),
        nCode);
    EXPECT_TRUE(objClosed.get_future().get());
    EXPECT_EQ(nHandle, Untouched);
}

}  // namespace

TEST(SDK_DeviceSessionCreator, LogsInAndOutWithEncipheredCredentials) {
    outputOfChild([] {
        std::vector<PeerRequest> vecRequests;
        {
            ScriptedPeer objPeer(welcoming(vecRequests));
            SDK_DeviceSessionCreator objCreator;
            long nHandle = Untouched;
            ASSERT_EQ(objCreator.createSession(objPeer.getDeviceInfo(), ReplyTimeoutMs, nHandle),
                      0);
            EXPECT_EQ(nHandle, 1);
            SafePointer<SDKSession> objSession;
            ASSERT_TRUE(DeviceSessionManager::instance().findSession(nHandle, objSession));
            EXPECT_EQ(objSession->getSessionId(), 0xFFFFFFFBu);
            EXPECT_EQ(objCreator.destroySession(nHandle), 0);
            EXPECT_EQ(objSession->getSessionId(), 0u);
            EXPECT_EQ(objCreator.destroySession(nHandle), ErrorCode::UnknownHandle);
        }
        ASSERT_EQ(vecRequests.size(), 2u);
        EXPECT_EQ(vecRequests[0].m_objHead.getCommandID(), Login);
        EXPECT_EQ(vecRequests[0].m_objHead.getSessionId(), 0u);
        EXPECT_EQ(vecRequests[1].m_objHead.getCommandID(), Logout);
        EXPECT_EQ(vecRequests[1].m_objHead.getSessionId(), 0xFFFFFFFBu);
        const std::string strUser = "<UserParam UserName=\"" + enciphered("admin") +
                                    "\" Password=\"" + enciphered("secret") + "\" Desc=\"\" />";
        for (const PeerRequest& objRequest : vecRequests) {
            EXPECT_NE(objRequest.m_strBody.find(strUser), std::string::npos)
                << objRequest.m_strBody;
        }
    });
}

TEST(SDK_DeviceSessionCreator, HandlesAreNeverUsedAgain) {
    outputOfChild([] {
        std::vector<PeerRequest> vecRequests;
        ScriptedPeer objPeer(welcoming(vecRequests));
        SDK_DeviceSessionCreator objCreator;
        for (const long nExpected : {1L, 2L, 3L}) {
            long nHandle = Untouched;
            ASSERT_EQ(objCreator.createSession(objPeer.getDeviceInfo(), ReplyTimeoutMs, nHandle),
                      0);
            EXPECT_EQ(nHandle, nExpected);
            EXPECT_EQ(objCreator.destroySession(nHandle), 0);
        }
    });
}

TEST(SDK_DeviceSessionCreator, FailedLoginClosesTheConnectionAndLeavesTheHandle) {
    outputOfChild([] {
        expectRefusal(9, [](const PeerRequest& objRequest) {
            return peerAnswer(objRequest, LoggedIn, peerResult(9, sessionElement(1)));
        });
        expectRefusal(ErrorCode::BadReply, [](const PeerRequest& objRequest) {
            return peerAnswer(objRequest, LoggedIn, peerResult(0));
        });
        expectRefusal(ErrorCode::HeadRefused,
                      [](const PeerRequest&) { return std::string(24, '\0'); });
        // The number travels in the body; a head that has it already answers another session.
        const auto objWithNumber = [](PeerRequest objRequest) {
            objRequest.m_objHead.setSessionId(1);
            return peerAnswer(objRequest, LoggedIn, peerResult(0, sessionElement(1)));
        };
        expectRefusal(ErrorCode::ReceiveTimedOut, objWithNumber, SilenceMs);
    });
}

TEST(SDK_DeviceSessionCreator, ConnectFailureIsPassedOn) {
    outputOfChild([] {
        DeviceInfoEx objGone = ScriptedPeer([](PeerLink&) {}).getDeviceInfo();
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
            objLink.send(peerAnswer(objRequest, LoggedIn, peerResult(0, sessionElement(8))));
            objLink.read(objRequest);
            objLink.close();
        });
        SDK_DeviceSessionCreator objCreator;
        long nHandle = Untouched;
        ASSERT_EQ(objCreator.createSession(objPeer.getDeviceInfo(), ReplyTimeoutMs, nHandle), 0);
        SafePointer<SDKSession> objSession;
        ASSERT_TRUE(DeviceSessionManager::instance().findSession(nHandle, objSession));
        EXPECT_EQ(objCreator.destroySession(nHandle), 0);
        EXPECT_EQ(objCreator.destroySession(nHandle), ErrorCode::UnknownHandle);
        DomainList objReply;
        EXPECT_EQ(objSession->sendRecv(Logout, {}, objReply), ErrorCode::NoTransport);
    });
}

TEST(SDK_DeviceSessionCreator, EmptyCredentialsStayEmpty) {
    outputOfChild([] {
        std::vector<PeerRequest> vecRequests;
        {
            ScriptedPeer objPeer(welcoming(vecRequests));
            DeviceInfoEx objInfo = objPeer.getDeviceInfo();
            objInfo.setUserID("");
            objInfo.setPassword("");
            auto objSession = connectTo(objPeer);
            objSession->setDeviceInfo(objInfo);
            EXPECT_EQ(SDK_DeviceSessionCreator().login(objSession), 0);
        }
        ASSERT_EQ(vecRequests.size(), 1u);
        EXPECT_NE(vecRequests[0].m_strBody.find("UserName=\"\" Password=\"\""), std::string::npos)
            << vecRequests[0].m_strBody;
    });
}

TEST(SDK_DeviceSessionCreator, CommandsNeedASession) {
    SafePointer<SDKSession> objNone;
    EXPECT_EQ(SDK_DeviceSessionCreator().login(objNone), ErrorCode::NoTransport);
    EXPECT_EQ(SDK_DeviceSessionCreator().logout(objNone), ErrorCode::NoTransport);
}
