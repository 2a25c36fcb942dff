// UsageError: what the user asked for cannot be meant. Nothing of it was sent.
#pragma once

#include <stdexcept>

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};
