// A session in the middle of its life, without a login.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "protocol/CommandParserFactory.h"
#include "session/SDKSession.h"
#include "session/TransferConnector.h"
#include "support/ScriptedPeer.h"

// Long enough to be of no account where an answer comes, and short where none does.
constexpr int SilenceMs = 50;

inline SafePointer<SDKSession> connectTo(const ScriptedPeer& peer) {
    SafePointer<ITransfer> transfer;
    EXPECT_EQ(TransferConnector().connect(peer.getDeviceInfo(), TransferKind::TCP, transfer, 3000),
              0);
    transfer->setCommandHeadParser(createCommandHeadParser(1));
    auto session = wrapSafe(std::make_unique<SDKSession>());
    session->setDeviceInfo(peer.getDeviceInfo());
    session->setTransfer(transfer);
    return session;
}
