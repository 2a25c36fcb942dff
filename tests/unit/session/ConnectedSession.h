// A session in the middle of its life, without a login.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "protocol/SDKCommandHeadParser.h"
#include "session/SDKSession.h"
#include "session/TransferConnector.h"
#include "support/ScriptedPeer.h"

// Long enough to be of no account where an answer comes, and short where none does.
constexpr int SilenceMs = 50;

inline SafePointer<SDKSession> connectTo(const ScriptedPeer& objPeer) {
    SafePointer<ITransfer> objTransfer;
    EXPECT_EQ(
        TransferConnector().connect(objPeer.getDeviceInfo(), TransferKind::TCP, objTransfer, 3000),
        0);
    objTransfer->setCommandHeadParser(createCommandHeadParser(1));
    auto objSession = wrapSafe(std::make_unique<SDKSession>());
    objSession->setDeviceInfo(objPeer.getDeviceInfo());
    objSession->setTransfer(objTransfer);
    return objSession;
}
