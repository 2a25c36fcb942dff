// What every controller is bound to.
#pragma once

#include "Product/Technic/SafePointer.h"
#include "session/SDKSession.h"

// Holds the session for as long as it lives, so that one which is dropped in the meantime stays
// usable to the end of the call. Belongs to the thread that made it.
class BaseController {
public:
    BaseController() = default;
    virtual ~BaseController() noexcept;
    BaseController(const BaseController&) = delete;
    BaseController& operator=(const BaseController&) = delete;

    // False, bound to nothing new, when the handle names no session.
    bool attachSession(long hSession);

protected:
    SafePointer<SDKSession> m_pSession;
};
