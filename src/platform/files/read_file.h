// Reading small text files.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace vantor {

/// The first bytes of the file, at most maxBytes (CreateFileW, ReadFile); other programs may be writing to it.
/// std::nullopt if it cannot be opened; if reading fails, the bytes read so far.
std::optional<std::string> ReadFileStart(const std::wstring& path, std::size_t maxBytes);

} // namespace vantor
