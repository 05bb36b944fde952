// Writing to standard output and standard error.
#pragma once

#include <windows.h>

#include <string_view>

namespace vantor {

/// Writes narrow text to STD_OUTPUT_HANDLE or STD_ERROR_HANDLE: as UTF-16 to a console, which shows it correctly in any
/// code page, and byte for byte to a file or a pipe. Text that cannot be written is lost.
void WriteToStandard(DWORD handle, std::string_view text);

} // namespace vantor
