// Base64 as a report travels in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vantor::inspect {

/// The bytes of a text, or nothing when the text is not the one that encodes them: characters of the alphabet in groups
/// of four, "=" only as the last one or two of the last group, what padding leaves over 0, no breaks or blanks.
std::optional<std::vector<std::uint8_t>> DecodeBase64(std::string_view text);

} // namespace vantor::inspect
