// Preparing the running process, asking about it and ending it at once.
#pragma once

#include <optional>
#include <string>

namespace vantor {

/// Restricts DLLs loaded by bare name to System32 (SetDefaultDllDirectories). Does nothing if Windows is too old to
/// have the function.
void RestrictDllSearchPath();

/// Whether Windows knows the LOAD_LIBRARY_SEARCH_... flags (Windows 8, or Windows 7 with update KB2533623). Otherwise
/// LoadLibraryExW rejects them.
bool KnowsDllSearchFlags();

/// Sets process-wide mitigation policies (SetProcessMitigationPolicy): links created by standard users are not
/// followed, DLLs are not loaded from other hosts or at low integrity, and System32 is searched first. Skips whatever
/// Windows is too old to know.
void SetProcessDefences();

/// Ends the process at once with exit code 3 (TerminateProcess). No destructor or other code of the program runs.
[[noreturn]] void EndProcessAtOnce();

/// The program's own full path (GetModuleFileNameW, at most 260 wide characters); std::nullopt if it does not fit.
std::optional<std::wstring> ProgramPath();

} // namespace vantor
