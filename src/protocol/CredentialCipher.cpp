// A stream cipher with a fixed key, then base64.
#include "protocol/CredentialCipher.h"

#include <array>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <utility>

#include "Product/Technic/Base64.h"

namespace {

// Devices use the zero byte that ends the text as the key's last byte.
constexpr char Key[] = "mvtqxz~%!~)(!)()()#%&%RTYRTPYRY##PQQ";
constexpr std::size_t KeyLength = sizeof Key;
static_assert(KeyLength == 37);

constexpr std::uint32_t MaxLength = std::numeric_limits<std::int32_t>::max();

std::unique_ptr<std::uint8_t[]> makeBlock(std::size_t nSize) {
    return std::unique_ptr<std::uint8_t[]>(new (std::nothrow) std::uint8_t[nSize]());
}

std::array<std::uint8_t, 256> scheduleKey() {
    std::array<std::uint8_t, 256> state;
    std::iota(state.begin(), state.end(), std::uint8_t{0});
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + static_cast<std::uint8_t>(Key[i % KeyLength]) + state[i]);
        std::swap(state[i], state[j]);
    }
    return state;
}

}  // namespace

void applyStreamCipher(const std::uint8_t* source, std::uint32_t length, std::uint8_t* dest) {
    auto state = scheduleKey();
    std::uint8_t i = 0;
    std::uint8_t j = 0;
    for (std::uint32_t n = 0; n < length; ++n) {
        i = static_cast<std::uint8_t>(i + 1);
        j = static_cast<std::uint8_t>(j + state[i]);
        std::swap(state[i], state[j]);
        dest[n] = source[n] ^ state[static_cast<std::uint8_t>(state[i] + state[j])];
    }
}

bool encryptBytes(std::uint32_t& written, const std::uint8_t* plain, std::uint32_t length,
                  std::uint8_t* dest, std::uint32_t destSize) {
    if (!plain || !dest || length > MaxLength) {
        return false;
    }
    if (length == 0) {
        written = 0;
        return true;
    }
    const auto pEnciphered = makeBlock(length);
    if (!pEnciphered) {
        return false;
    }
    applyStreamCipher(plain, length, pEnciphered.get());
    std::uint32_t nEncoded = destSize;
    if (base64Encode(pEnciphered.get(), static_cast<std::int32_t>(length), dest, nEncoded) !=
        Base64Result::Done) {
        return false;
    }
    written = nEncoded;
    return true;
}

bool encryptText(const std::string& plain, std::string& out) {
    if (plain.empty()) {
        return true;
    }
    // Four characters for three bytes or part of them, and a zero byte, always fit.
    const std::size_t nCapacity = plain.size() * 2 + 6;
    if (nCapacity > MaxLength) {
        return false;
    }
    const auto pText = makeBlock(nCapacity);
    std::uint32_t nWritten = 0;
    if (!pText || !encryptBytes(nWritten, reinterpret_cast<const std::uint8_t*>(plain.data()),
                                static_cast<std::uint32_t>(plain.size()), pText.get(),
                                static_cast<std::uint32_t>(nCapacity))) {
        return false;
    }
    out.assign(reinterpret_cast<const char*>(pText.get()), nWritten);
    return true;
}
