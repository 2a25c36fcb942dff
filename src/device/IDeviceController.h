// The root of the controllers.
#pragma once

class IDeviceController {
public:
    virtual ~IDeviceController() noexcept = default;
};
