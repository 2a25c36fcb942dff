// Base64 with the standard alphabet, into blocks of the caller.
#pragma once

#include <cstdint>

// Results of the two operations.
namespace Base64Result {
constexpr int Done = 0;
constexpr int NullPointer = -4;    // source or destination is null
constexpr int TooSmall = -16;      // the destination; its needed size is told
constexpr int BadCharacter = -18;  // not of the alphabet, or misplaced padding
}  // namespace Base64Result

// Encodes nLength bytes as zero-terminated text. nDestSize is the space at pDest on entry and the
// length of the text, without its zero, on success; with TooSmall it is the space that is needed.
// A length below 1 is Done and changes nothing.
int base64Encode(const std::uint8_t* pSource, std::int32_t nLength, std::uint8_t* pDest,
                 std::uint32_t& nDestSize);

// Decodes nLength characters; line feeds, alone or behind a carriage return, are skipped, and a
// last group of fewer than four characters gives nothing. nDestSize is the space at pDest on entry
// and the number of bytes on success; with TooSmall it is the space that is needed, which can be
// more than what is then written. Nothing to decode is Done and changes nothing.
int base64Decode(const std::uint8_t* pSource, std::int32_t nLength, std::uint8_t* pDest,
                 std::int32_t& nDestSize);
