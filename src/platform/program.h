// Facts about the running program, its preparation and its sudden end.
#pragma once

#include <optional>
#include <string>

namespace vantor {

/// Lets DLLs load by bare name from System32 only (SetDefaultDllDirectories). Does nothing where Windows is too old
/// to know the function.
void RestrictDllSearchPath();

/// Whether Windows knows the LOAD_LIBRARY_SEARCH_... flags (Windows 8, and Windows 7 with its update KB2533623). Where
/// it does not, LoadLibraryExW refuses them.
bool KnowsDllSearchFlags();

/// Process-wide defences, each by SetProcessMitigationPolicy: no link that a standard user made is followed; no DLL is
/// loaded from another host or at low integrity; System32 comes first. Does nothing where Windows is too old to know
/// the function or the policy.
void SetProcessDefences();

/// Ends the process at once with exit code 3 (TerminateProcess): no destructor and no other code of the program runs.
[[noreturn]] void EndProcessAtOnce();

/// The program's own full path (GetModuleFileNameW, room for 260 wide characters); nothing when it does not fit.
std::optional<std::wstring> ProgramPath();

} // namespace vantor
