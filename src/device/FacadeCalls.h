// The frame of every exported function: find the instance, bind a controller to the session, have
// it perform one operation.
#pragma once

#include <cstdint>

#include "Product/Technic/platform/NativeThread.h"
#include "device/DeviceType.h"
#include "device/FleetKitImpl.h"
#include "device/SDK_IPCDeviceController.h"
#include "device/SDK_NVRDeviceController.h"

// Each gives the code of the operation, or Failed, with nothing sent, without instance or session
// and for a device type that the function does not serve.
namespace FacadeCalls {

using Operations = DeviceControllerImpl;

// `operation` takes the controller.
template <class Controller, class Operation>
int withController(const long& handle, const Operation& operation) {
    if (FleetKitImpl::instance() == nullptr) {
        return fleetkit::ErrorCode::Failed;
    }
    const CancellationDeferral deferral;
    Controller controller;
    return controller.attachSession(handle) ? operation(controller) : fleetkit::ErrorCode::Failed;
}

template <class Operation>
int withCamera(const long& handle, int nDeviceType, const Operation& operation) {
    return fleetkit::isCamera(nDeviceType)
               ? withController<SDK_IPCDeviceController>(handle, operation)
               : fleetkit::ErrorCode::Failed;
}

template <class Operation>
int withRecorder(const long& handle, int nDeviceType, const Operation& operation) {
    return fleetkit::isRecorder(nDeviceType)
               ? withController<SDK_NVRDeviceController>(handle, operation)
               : fleetkit::ErrorCode::Failed;
}

// An operation for the whole device, and one for a channel.
template <class Operation, class... Args>
int perform(const long& handle, Operation pOperation, Args&&... args) {
    return withController<SDK_DeviceController>(
        handle, [&](auto& device) { return device.perform(pOperation, args...); });
}

template <class Operation, class... Args>
int performOn(const long& handle, int nChannel, Operation pOperation, Args&&... args) {
    return withController<SDK_DeviceController>(
        handle, [&](auto& device) { return device.performOn(nChannel, pOperation, args...); });
}

// The plain operations: one record there or back, or none.
template <class Record>
int get(const long& handle, std::uint32_t nCommandId, Record& record) {
    return perform(handle, &Operations::get<Record>, nCommandId, record);
}

template <class Record>
int set(const long& handle, std::uint32_t nCommandId, const Record& record) {
    return perform(handle, &Operations::set<Record>, nCommandId, record);
}

inline int act(const long& handle, std::uint32_t nCommandId) {
    return perform(handle, &Operations::act, nCommandId);
}

template <class Record>
int getOfCamera(const long& handle, std::uint32_t nCommandId, int nDeviceType, Record& record) {
    return withCamera(handle, nDeviceType,
                      [&](auto& camera) { return camera.getAbility(nCommandId, record); });
}

template <class Record>
int getByType(const long& handle, std::uint32_t nCommandId, int nDeviceType, int nChannel,
              Record& record) {
    if (fleetkit::isCamera(nDeviceType)) {
        return getOfCamera(handle, nCommandId, nDeviceType, record);
    }
    return withRecorder(handle, nDeviceType, [&](auto& recorder) {
        return recorder.getAbility(nChannel, nCommandId, record);
    });
}

}  // namespace FacadeCalls
