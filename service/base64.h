// Base64 as the report travels in: one line, padded, nothing else.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vantor::service {

/// The bytes that a Base64 text stands for. Only the one text that encodes them is accepted: the standard alphabet,
/// no breaks or blanks, the padding complete and the bits that it leaves over 0; anything else gives nothing.
std::optional<std::vector<std::uint8_t>> DecodeBase64(std::string_view text);

} // namespace vantor::service
