// The abilities that cameras and recorders both tell.
#pragma once

#include <type_traits>

#include "device/DeviceCommands.h"

template <class T, class... Types>
concept OneOf = (std::is_same_v<T, Types> || ...);

template <class Ability>
concept SharedAbility = OneOf<Ability, VideoAbility, AudioExAbility, BlindAbility, OSDAbility,
                              MotionDetectionAbility, PTZAbilityParam>;
