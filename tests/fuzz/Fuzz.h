// What all targets share. A target is one function over any bytes: it must come back, and what it
// says about the result must hold.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

// The target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nLength);

// Ends the process when something does not hold.
inline void require(bool bHolds, const char* szWhat) {
    if (!bHolds) {
        std::fprintf(stderr, "does not hold: %s\n", szWhat);
        std::abort();
    }
}

// Takes numbers and texts off the head of an input; zeros behind its end.
class Input {
public:
    Input(const std::uint8_t* pBytes, std::size_t nLength)
        : m_rest(reinterpret_cast<const char*>(pBytes), nLength) {}

    template <class Number>
    Number number() {
        Number nValue = 0;
        for (std::size_t n = 0; n < sizeof nValue; ++n) {
            nValue = static_cast<Number>(nValue << 8U | static_cast<std::uint8_t>(take(1).front()));
        }
        return nValue;
    }
    std::string text(std::size_t nLength) {
        std::string strText = take(nLength);
        return strText.substr(0, strText.find('\0'));
    }
    std::string rest() { return take(m_rest.size()); }
    bool isEmpty() const { return m_rest.empty(); }

private:
    std::string take(std::size_t nLength) {
        std::string strTaken(m_rest.substr(0, nLength));
        m_rest.remove_prefix(strTaken.size());
        strTaken.resize(nLength);
        return strTaken;
    }

    std::string_view m_rest;
};
