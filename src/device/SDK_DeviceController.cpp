// Makes the implementation, or none where there is no memory.
#include "device/SDK_DeviceController.h"

#include <new>

SDK_DeviceController::SDK_DeviceController()
    : SDK_DeviceController(
          std::unique_ptr<DeviceControllerImpl>(new (std::nothrow) DeviceControllerImpl)) {}

SDK_DeviceController::SDK_DeviceController(std::unique_ptr<DeviceControllerImpl> pImpl)
    : m_pImpl(std::move(pImpl)) {}

SDK_DeviceController::~SDK_DeviceController() noexcept = default;

bool SDK_DeviceController::attachSession(long hSession) {
    return m_pImpl && m_pImpl->attachSession(hSession);
}
