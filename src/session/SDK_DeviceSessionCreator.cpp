// Login and logout, and what has to stand around them.
#include "session/SDK_DeviceSessionCreator.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/MemoryGuard.h"
#include "domain/EtSessionId.h"
#include "domain/UserParam.h"
#include "protocol/CommandIds.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/CredentialCipher.h"
#include "protocol/ProtocolType.h"
#include "session/DeviceSessionManager.h"
#include "session/SessionCommands.h"
#include "session/TransferConnector.h"

using namespace fleetkit;

namespace {

constexpr int ConnectTimeoutMs = 3000;

std::uint32_t nextSessionHandle() {
    static std::atomic<std::uint32_t> nLast{0};
    return ++nLast;
}

// What login and logout carry.
std::int32_t enciphered(const SafePointer<SDKSession>& session, UserParam& user) {
    if (session.isNull()) {
        return ErrorCode::NoTransport;
    }
    const DeviceInfoEx& info = session->getDeviceInfo();
    std::string strUserName;
    std::string strPassword;
    if (!encryptText(info.getUserID(), strUserName) ||
        !encryptText(info.getPassword(), strPassword)) {
        return ErrorCode::CipherFailed;
    }
    user.setUserName(strUserName);
    user.setPassword(strPassword);
    return ErrorCode::Success;
}

}  // namespace

std::int32_t SDK_DeviceSessionCreator::createSession(const DeviceInfoEx& info,
                                                     const ExchangeLimits& limits, long& nHandle) {
    DeviceSessionManager& manager = DeviceSessionManager::instance();
    SafePointer<ITransfer> transfer;
    const InetAddr dial = getDialAddr(info);
    const int nConnectMs = std::min(ConnectTimeoutMs, limits.nWhole);
    std::int32_t nResult =
        TransferConnector().connect(dial, TransferKind::TCP, transfer, nConnectMs);
    if (nResult != ErrorCode::Success) {
        return nResult;
    }
    transfer->setCommandHeadParser(createCommandHeadParser(ProtocolType::SDK));
    SafePointer<SDKSession> session = wrapSafe(std::make_unique<SDKSession>());
    session->setDeviceInfo(info);
    session->setDialAddr(dial);
    session->setTransfer(transfer);
    session->setLimits(limits);
    nResult = login(session);
    if (nResult != ErrorCode::Success) {
        session->close();
        return nResult;
    }
    const long nNewHandle = nextSessionHandle();
    manager.addSession(nNewHandle, session);
    nHandle = nNewHandle;
    return ErrorCode::Success;
}

std::int32_t SDK_DeviceSessionCreator::destroySession(long nHandle) {
    DeviceSessionManager& manager = DeviceSessionManager::instance();
    SafePointer<SDKSession> session;
    if (!manager.findSession(nHandle, session)) {
        return ErrorCode::UnknownHandle;
    }
    // Whatever comes of the goodbye, the session ends.
    guardMemory([&] { return logout(session) == ErrorCode::Success; });
    session->close();
    manager.removeSession(nHandle);
    return ErrorCode::Success;
}

std::int32_t SDK_DeviceSessionCreator::login(SafePointer<SDKSession>& session) {
    UserParam user;
    std::int32_t nResult = enciphered(session, user);
    if (nResult != ErrorCode::Success) {
        return nResult;
    }
    EtSessionId sessionId;
    nResult = sendGet(session, CommandId::Login, sessionId, user);
    if (nResult == ErrorCode::Success) {
        session->setSessionId(static_cast<std::uint32_t>(sessionId.getSessionId()));
    }
    return nResult;
}

std::int32_t SDK_DeviceSessionCreator::logout(SafePointer<SDKSession>& session) {
    UserParam user;
    std::int32_t nResult = enciphered(session, user);
    if (nResult != ErrorCode::Success) {
        return nResult;
    }
    nResult = sendSet(session, CommandId::Logout, user);
    if (nResult == ErrorCode::Success) {
        session->setSessionId(0);
    }
    return nResult;
}
