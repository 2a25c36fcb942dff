// Bytes as base64 text, for the blocks inside of records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

std::string toBase64(const std::vector<std::uint8_t>& vecBytes);

// Nothing for a text that is not base64, with its padding.
std::optional<std::vector<std::uint8_t>> fromBase64(const std::string& strText);
