// The controller of an IP camera.
#pragma once

#include <cstdint>

#include "device/SDK_DeviceController.h"

// A camera's abilities are those of the whole device: none is asked for by channel.
class SDK_IPCDeviceController : public SDK_DeviceController {
public:
    template <class Ability>
    int getAbility(std::uint32_t nCommandId, Ability& ability) {
        return perform(&DeviceControllerImpl::get<Ability>, nCommandId, ability);
    }
};
