// Keeps what a device sends from raising an exception in the caller.
#pragma once

#include <new>
#include <utility>

#include "Product/Technic/KXRuntimeError.h"

// Runs one step of decoding. A device can announce more records than the pointer registry has room
// for, or more bytes than there is memory: that refuses the message like any other fault in it.
template <class Step>
bool guardDecoding(Step&& step) {
    try {
        return std::forward<Step>(step)();
    } catch (const KXRuntimeError&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}
