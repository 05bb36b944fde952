// Facts about the running program, and its preparation.
#pragma once

#include <optional>
#include <string>

namespace vantor {

/// Lets DLLs load by bare name from System32 only (SetDefaultDllDirectories). Does nothing where Windows is too old
/// to know the function.
void RestrictDllSearchPath();

/// The program's own full path (GetModuleFileNameW, room for 260 wide characters); nothing when it does not fit.
std::optional<std::wstring> ProgramPath();

} // namespace vantor
