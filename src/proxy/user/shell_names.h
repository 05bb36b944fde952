// Program names of the logged-on user's shell.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// The program names in Winlogon's registry value Shell, which holds a list separated by commas; an entry may be a
/// path, quoted, and followed by arguments. Returns lower-case file names; "explorer.exe" if there are none.
std::vector<std::wstring> ShellNames(std::wstring_view value);

} // namespace vantor
