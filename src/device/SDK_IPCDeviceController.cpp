// The numbers that stand for cameras.
#include "device/SDK_IPCDeviceController.h"

#include <algorithm>
#include <array>

bool SDK_IPCDeviceController::serves(int nDeviceType) noexcept {
    constexpr std::array Types{1, 4, 8, 9, 13, 14, 15};
    return std::find(Types.begin(), Types.end(), nDeviceType) != Types.end();
}
