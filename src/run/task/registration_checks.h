// Checks before the periodic task is registered.
#pragma once

#include "run/config/run_config.h"

#include <string_view>

namespace vantor {

/// Whether the next run gets the user name and the password unchanged. The task's arguments contain them without
/// quotes, so a blank or a tab ends them, and quotes are lost.
bool ArePassedWhole(const RunConfig& config);

/// Whether the path leads to the same file for every account: it must be absolute, on a drive of this machine.
/// isOwnDrive decides that for a drive letter; it is only called for absolute paths.
bool IsTheSameForEveryone(std::string_view path, bool (*isOwnDrive)(char letter));

/// Whether the owner in a security descriptor in SDDL is SYSTEM or Administrators.
bool IsOwnedByAdministrators(std::wstring_view descriptor);

} // namespace vantor
