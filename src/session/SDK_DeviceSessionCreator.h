// Brings sessions to life and ends them.
#pragma once

#include <cstdint>

#include "Product/Technic/SafePointer.h"
#include "domain/DeviceInfoEx.h"
#include "session/SDKSession.h"

// Stateless: callable from any thread.
class SDK_DeviceSessionCreator {
public:
    // Connects over TCP within 3 seconds, or the limit of a whole exchange if that is less, logs in
    // within these limits, which stay those of the session, and puts the session into the table of
    // `DeviceSessionManager`. `nHandle` is its new handle: positive, never used before, untouched
    // on failure, when the connection is closed again. Fails with the code of the connect or of
    // `login`.
    std::int32_t createSession(const DeviceInfoEx& info, const ExchangeLimits& limits,
                               long& nHandle);

    // Logs out, closes the connection and takes the handle out of the table. UnknownHandle when it
    // is not there, otherwise Success, whatever the device had to say.
    std::int32_t destroySession(long nHandle);

    // The two commands, for a connected session; both carry the enciphered credentials of its
    // device info. CipherFailed, with nothing sent, or the result of the exchange; a login without
    // a session number in its reply is a BadReply. NoTransport without a session.
    std::int32_t login(SafePointer<SDKSession>& session);
    std::int32_t logout(SafePointer<SDKSession>& session);
};
