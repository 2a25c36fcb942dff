// Makes the implementation.
#include "device/SDK_DeviceController.h"

// Without memory it throws: to go on without would tell the caller that the session is gone.
SDK_DeviceController::SDK_DeviceController()
    : SDK_DeviceController(std::make_unique<DeviceControllerImpl>()) {}

SDK_DeviceController::SDK_DeviceController(std::unique_ptr<DeviceControllerImpl> pImpl)
    : m_pImpl(std::move(pImpl)) {}

SDK_DeviceController::~SDK_DeviceController() noexcept = default;

bool SDK_DeviceController::attachSession(long hSession) {
    return m_pImpl && m_pImpl->attachSession(hSession);
}
