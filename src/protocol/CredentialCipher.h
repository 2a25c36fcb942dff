// Enciphers the few credential strings of the protocol.
#pragma once

#include <cstdint>
#include <string>

// User names and passwords travel as base64 of a stream cipher with a key that library and devices
// share. The same text always gives the same result: this is obfuscation, and hides nothing from
// anybody who knows the protocol. All functions use their arguments only: callable from any thread.

// Enciphers `plain`, zero bytes inside it included, into printable text. An empty text leaves `out`
// as it is. False without memory.
bool encryptText(const std::string& plain, std::string& out);

// The same into a block of the caller's: `written` characters and a zero byte behind them, which is
// not counted. A length of 0 writes nothing. False for a null argument, without memory, and when
// `destSize` is too small.
bool encryptBytes(std::uint32_t& written, const std::uint8_t* plain, std::uint32_t length,
                  std::uint8_t* dest, std::uint32_t destSize);

// The cipher itself, which is its own inverse: a device deciphers with it what it decoded from
// base64. `source` and `dest` may be the same block; both hold `length` bytes.
void applyStreamCipher(const std::uint8_t* source, std::uint32_t length, std::uint8_t* dest);
