// UsageError: the command line makes no sense as it stands. Nothing was sent.
#pragma once

#include <stdexcept>

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};
