// The controller of an IP camera.
#pragma once

#include "device/DeviceAbility.h"
#include "device/SDK_DeviceController.h"

// A camera's abilities are those of the whole device: none is asked for by channel.
class SDK_IPCDeviceController : public SDK_DeviceController {
public:
    // Whether the number that a caller has for the type of a device means a camera.
    static bool serves(int nDeviceType) noexcept;

    template <SharedAbility Ability>
    int getAbility(Ability& ability) {
        return perform(&DeviceControllerImpl::get<Ability>, ability);
    }
    int getSensorAbility(SensorAbility& ability) {
        return perform(&DeviceControllerImpl::get<SensorAbility>, ability);
    }
};
