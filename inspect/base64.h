// Strict Base64, in which reports are sent.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vantor::inspect {

/// The decoded bytes; std::nullopt unless the text is their one canonical encoding: characters of the alphabet in
/// groups of four, "=" only as the last one or two of the last group, unused bits 0, no line breaks or blanks.
std::optional<std::vector<std::uint8_t>> DecodeBase64(std::string_view text);

} // namespace vantor::inspect
