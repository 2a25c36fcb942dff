// Binding to a session by its handle.
#include "device/BaseController.h"

#include "session/DeviceSessionManager.h"

BaseController::~BaseController() noexcept = default;

bool BaseController::attachSession(long hSession) {
    return DeviceSessionManager::instance().findSession(hSession, m_pSession);
}
