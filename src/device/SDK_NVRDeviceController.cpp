// The numbers that stand for recorders.
#include "device/SDK_NVRDeviceController.h"

#include <algorithm>
#include <array>

bool SDK_NVRDeviceController::serves(int nDeviceType) noexcept {
    constexpr std::array Types{5, 10, 103};
    return std::find(Types.begin(), Types.end(), nDeviceType) != Types.end();
}
