// Keeps what a device sends from raising an exception in anybody's caller.
#pragma once

#include <new>
#include <utility>

#include "Product/Technic/KXRuntimeError.h"

// Runs a step that takes memory and wraps safe pointers, and has no other reason to raise
// KXRuntimeError. A device can announce more records than the pointer registry can hold, or more
// bytes than there is memory, and as long as such a message lives nobody gets any: the step is
// given up, and the result is false.
template <class Step>
bool guardMemory(Step&& step) {
    try {
        return std::forward<Step>(step)();
    } catch (const KXRuntimeError&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}
