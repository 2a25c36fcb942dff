// The text forms of scalar values in attributes.
#include "domainxml/XmlText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <system_error>

namespace XmlText {

namespace {

template <class Number>
std::string fixedText(Number number) {
    // The largest double has 309 digits before the point.
    char szBuffer[400];
    const auto result =
        std::to_chars(szBuffer, szBuffer + sizeof(szBuffer), number, std::chars_format::fixed, 6);
    return std::string(szBuffer, result.ptr);
}

const char* skipBlanks(const char* szText) noexcept {
    while (*szText == ' ' || (*szText >= '\t' && *szText <= '\r')) {
        ++szText;
    }
    return szText;
}

// The power of ten of the first digit that counts, in a number that has one.
std::int64_t magnitude(std::string_view text) noexcept {
    const auto nDigits = std::min(text.find_first_of("eE"), text.size());
    const auto nPoint = static_cast<std::int64_t>(std::min(text.find('.'), nDigits));
    const auto nFirst = static_cast<std::int64_t>(text.find_first_of("123456789"));
    // A far larger exponent than any text has digits.
    constexpr std::int64_t Endless = std::numeric_limits<std::int32_t>::max();
    std::int64_t nExponent = 0;
    if (nDigits < text.size()) {
        std::string_view exponent = text.substr(nDigits + 1);
        exponent.remove_prefix(exponent.front() == '+' ? 1 : 0);
        const auto result = std::from_chars(exponent.begin(), exponent.end(), nExponent);
        nExponent = result.ec == std::errc()  ? std::clamp(nExponent, -Endless, Endless)
                    : exponent.front() == '-' ? -Endless
                                              : Endless;
    }
    return nExponent + (nFirst < nPoint ? nPoint - 1 - nFirst : nPoint - nFirst);
}

template <class Number>
void readNumber(const char* szText, Number& number) noexcept {
    szText = skipBlanks(szText);
    const bool bNegative = *szText == '-';
    if (*szText == '+' || bNegative) {
        ++szText;
    }
    const std::string_view text(szText);
    if (text.substr(0, 1) == "-") {
        return;
    }
    Number read = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), read);
    if (result.ec == std::errc::invalid_argument) {
        return;
    }
    if (result.ec == std::errc::result_out_of_range) {
        const auto nLength = static_cast<std::size_t>(result.ptr - text.data());
        read = magnitude(text.substr(0, nLength)) < 0 ? Number(0)
                                                      : std::numeric_limits<Number>::infinity();
    }
    number = bNegative ? -read : read;
}

char lowerCase(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isWord(std::string_view text, std::string_view word) noexcept {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char cLeft, char cRight) { return lowerCase(cLeft) == cRight; });
}

}  // namespace

std::string ofInt(int nValue) {
    return std::to_string(nValue);
}

std::string ofBool(bool bValue) {
    return bValue ? "true" : "false";
}

std::string ofFloat(float fValue) {
    return fixedText(static_cast<double>(fValue));
}

std::string ofDouble(double dValue) {
    return fixedText(dValue);
}

int toInt(const char* szText) noexcept {
    return static_cast<int>(std::strtol(szText, nullptr, 10));
}

void toBool(const char* szText, bool& bValue) noexcept {
    if (isWord(szText, "true")) {
        bValue = true;
    } else if (isWord(szText, "false")) {
        bValue = false;
    }
}

void toFloat(const char* szText, float& fValue) noexcept {
    readNumber(szText, fValue);
}

void toDouble(const char* szText, double& dValue) noexcept {
    readNumber(szText, dValue);
}

}  // namespace XmlText
