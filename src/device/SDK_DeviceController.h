// The controller of a device of any type.
#pragma once

#include <utility>

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
    // False when the handle names no session.
    bool attachSession(long hSession) { return m_impl.attachSession(hSession); }

    // Forwards to an operation, for a channel.
    template <class... Params, class... Args>
    int performOn(int nChannelId, int (DeviceControllerImpl::*pOperation)(int, Params...),
                  Args&&... args) {
        return (m_impl.*pOperation)(nChannelId, std::forward<Args>(args)...);
    }

    // The same for the whole device.
    template <class... Params, class... Args>
    int perform(int (DeviceControllerImpl::*pOperation)(int, Params...), Args&&... args) {
        return performOn(WholeDevice, pOperation, std::forward<Args>(args)...);
    }

private:
    static constexpr int WholeDevice = -1;

    DeviceControllerImpl m_impl;
};
