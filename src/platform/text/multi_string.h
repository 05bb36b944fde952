// Lists of strings as the registry stores them (REG_MULTI_SZ).
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vantor {

/// Whether one of the NUL-separated entries of UTF-16 little-endian data equals this entry. Never reads past the data:
/// the last entry may lack its NUL, and an odd last byte is ignored.
bool MultiStringContains(std::span<const std::uint8_t> data, std::u16string_view entry);

} // namespace vantor
