// What the tables of names are made of: the calls of the library behind `get`, `set` and `do`.
//
// The rows are generated. A name whose function takes just a session and a record needs nothing
// here; every other one has a function below, called after its verb and name.
#pragma once

#include <fleetkit/DeviceType.h>
#include <fleetkit/domain/AVStreamParam.h>
#include <fleetkit/domain/ChannelInfo.h>
#include <fleetkit/domain/HostNetwork.h>
#include <fleetkit/domain/OSDUserParam.h>
#include <fleetkit/domain/TimeZoneAbility.h>
#include <fleetkit/domain/TimeZoneParam.h>

#include <limits>
#include <vector>

#include "Action.h"
#include "Property.h"

namespace Calls {

// Each as its signature says; all give the code of the library.
int getChannel(const Call& call, ChannelInfo& channel);
int getChannels(const Call& call, std::vector<ChannelInfo>& vecChannels);
int setNetwork(const Call& call, const HostNetwork& network);
int getOsd(const Call& call, std::vector<OSDUserParam>& vecParams);
int setOsd(const Call& call, const std::vector<OSDUserParam>& vecParams);
int getOsdChannel(const Call& call, OSDUserParam& param);
int setOsdChannel(const Call& call, const OSDUserParam& param);
int getStream(const Call& call, AVStreamParam& stream);
int setStream(const Call& call, const AVStreamParam& stream);
int getStreams(const Call& call, std::vector<AVStreamParam>& vecStreams);
int setStreams(const Call& call, const std::vector<AVStreamParam>& vecStreams);
int getTimezoneAbility(const Call& call, TimeZoneAbility& ability);
int getTimezoneDefault(const Call& call, TimeZoneParam& timeZone);

extern const ActionForm doExec;
extern const ActionForm doNetworkByMulticast;
extern const ActionForm doPasswd;
extern const ActionForm doReset;

}  // namespace Calls

// The forms that a function behind a name may have.
template <class T>
int callGet(int (*get)(const long&, T&), const Call& call, T& target) {
    return get(call.nHandle, target);
}
template <class T>
int callGet(int (*get)(const long&, const int&, const int&, T&), const Call& call, T& target) {
    constexpr int AllChannels = -1;
    return get(call.nHandle, call.selection.type.value_or(fleetkit::CameraType),
               call.selection.channel.value_or(AllChannels), target);
}
template <class T>
int callGet(int (*get)(const Call&, T&), const Call& call, T& target) {
    return get(call, target);
}

template <class T>
int callSet(int (*set)(const long&, const T&), const Call& call, const T& source) {
    return set(call.nHandle, source);
}
// With an argument that the library ignores.
template <class T>
int callSet(int (*set)(const long&, const int&, const T&), const Call& call, const T& source) {
    return set(call.nHandle, 0, source);
}
template <class T>
int callSet(int (*set)(const Call&, const T&), const Call& call, const T& source) {
    return set(call, source);
}

// What a function fills or takes is its last parameter.
template <class T>
struct LastParameter {
    static_assert(std::is_null_pointer_v<T>);
    using Type = void;
};
template <class T>
struct LastParameter<int (*)(T&)> {
    using Type = std::remove_const_t<T>;
};
template <class First, class... Rest>
struct LastParameter<int (*)(First, Rest...)> : LastParameter<int (*)(Rest...)> {};

template <class T>
Value makeValue() {
    using fleetkit::FieldKind;
    if constexpr (requires { typename T::value_type; }) {
        return {{true, &T::value_type::descriptor(), FieldKind::RecordList}, std::make_shared<T>()};
    } else {
        return {{false, &T::descriptor(), FieldKind::Record}, std::make_shared<T>()};
    }
}

// The row of a name; a function that is null is not there.
template <auto Get, auto Set>
Property property(const char* szName, const char* szSummary, unsigned nUses, unsigned nNeeds,
                  unsigned nServes) {
    constexpr bool Gets = !std::is_null_pointer_v<decltype(Get)>;
    constexpr bool Sets = !std::is_null_pointer_v<decltype(Set)>;
    using Target =
        typename LastParameter<std::conditional_t<Gets, decltype(Get), decltype(Set)>>::Type;
    Property row{szName, szSummary, &makeValue<Target>, nullptr, nullptr, nUses, nNeeds, nServes};
    if constexpr (Gets) {
        row.get = [](const Call& call, void* pObject) {
            return callGet(Get, call, *static_cast<Target*>(pObject));
        };
    }
    if constexpr (Sets) {
        row.set = [](const Call& call, const void* pObject) {
            return callSet(Set, call, *static_cast<const Target*>(pObject));
        };
    }
    return row;
}

// The form of an action without arguments.
template <int (*Act)(const long&)>
ActionForm plainAction() {
    return {"", 0, 0, true, false, [](const ActionInput& input) { return Act(input.nHandle); }};
}
