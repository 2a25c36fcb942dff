// The controller of a network video recorder.
#pragma once

#include <cstdint>
#include <vector>

#include "device/SDK_DeviceController.h"

// A recorder's abilities are those of one of its channels.
class SDK_NVRDeviceController : public SDK_DeviceController {
public:
    template <class Ability>
    int getAbility(int nChannelId, std::uint32_t nCommandId, Ability& ability) {
        return performOn(nChannelId, &DeviceControllerImpl::get<Ability>, nCommandId, ability);
    }
    int getAllChannels(std::vector<ChannelInfo>& vecChannels) {
        return perform(&DeviceControllerImpl::getAllChannels, vecChannels);
    }
    int getChannel(int nChannelId, ChannelInfo& channel) {
        return performOn(nChannelId, &DeviceControllerImpl::getChannel, channel);
    }
};
