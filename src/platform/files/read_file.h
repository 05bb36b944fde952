// Reading small text files.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace vantor {

/// The file's first bytes as they are, at most mostBytes of them (CreateFileW, ReadFile); others may go on writing the
/// file. Nothing when it cannot be opened; what was read until then when reading fails.
std::optional<std::string> ReadFileStart(const std::wstring& path, std::size_t mostBytes);

} // namespace vantor
