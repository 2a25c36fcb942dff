// What a password leaves behind in memory.
#pragma once

#include <string.h>

#include <string>

// Overwrites the text, which is empty afterwards; the compiler may not leave that out.
inline void wipe(std::string& strText) noexcept {
    explicit_bzero(strText.data(), strText.size());
    strText.clear();
}
