// What is checked before the periodic task is registered.
#pragma once

#include "run/config/run_config.h"

#include <string_view>

namespace vantor {

/// Whether the next run gets user name and password as they are. They stand in the task's arguments without quotes, so a
/// blank or a tab ends them there, and quotes are lost.
bool ArePassedWhole(const RunConfig& config);

/// Whether every account finds the same file at this path: an absolute one, on a drive of the machine itself.
/// isOwnDrive tells that of the drive's letter; it is only asked about absolute paths.
bool IsTheSameForEveryone(std::string_view path, bool (*isOwnDrive)(char letter));

/// Whether a security descriptor in Windows' text form (SDDL) names SYSTEM or Administrators as the owner.
bool IsOwnedByAdministrators(std::wstring_view descriptor);

} // namespace vantor
