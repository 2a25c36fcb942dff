// The controller of a device of any type.
#pragma once

#include <memory>
#include <utility>

#include "Product/Technic/ErrorCode.h"
#include "device/DeviceControllerImpl.h"
#include "device/IDeviceController.h"

// Made on the stack for one call: bind it to a session, perform one operation.
//
//     SDK_DeviceController controller;
//     if (controller.attachSession(hSession)) {
//         nCode = controller.perform(&DeviceControllerImpl::act, CommandId::setDeviceRestart);
//     }
class SDK_DeviceController : public IDeviceController {
public:
    SDK_DeviceController();
    // Null stands for an implementation that memory was refused for.
    explicit SDK_DeviceController(std::unique_ptr<DeviceControllerImpl> pImpl);
    ~SDK_DeviceController() noexcept override;

    // False when the handle names no session.
    bool attachSession(long hSession);

    // Forwards to an operation, for a channel. NoTransport without an implementation.
    template <class... Params, class... Args>
    int performOn(int nChannelId, int (DeviceControllerImpl::*pOperation)(int, Params...),
                  Args&&... args) {
        return m_pImpl ? (m_pImpl.get()->*pOperation)(nChannelId, std::forward<Args>(args)...)
                       : fleetkit::ErrorCode::NoTransport;
    }

    // The same for the whole device.
    template <class... Params, class... Args>
    int perform(int (DeviceControllerImpl::*pOperation)(int, Params...), Args&&... args) {
        return performOn(m_nChannelId, pOperation, std::forward<Args>(args)...);
    }

private:
    std::unique_ptr<DeviceControllerImpl> m_pImpl;
    const int m_nChannelId = -1;
};
