// The controller of a network video recorder.
#pragma once

#include <vector>

#include "device/DeviceAbility.h"
#include "device/SDK_DeviceController.h"

// A recorder's abilities are those of one of its channels.
class SDK_NVRDeviceController : public SDK_DeviceController {
public:
    // Whether the number that a caller has for the type of a device means a recorder.
    static bool serves(int nDeviceType) noexcept;

    template <SharedAbility Ability>
    int getAbility(int nChannelId, Ability& ability) {
        return performOn(nChannelId, &DeviceControllerImpl::get<Ability>, ability);
    }
    int getAllChannels(std::vector<ChannelInfo>& vecChannels) {
        return perform(&DeviceControllerImpl::getAllChannels, vecChannels);
    }
    int getChannel(int nChannelId, ChannelInfo& channel) {
        return performOn(nChannelId, &DeviceControllerImpl::getChannel, channel);
    }
};
