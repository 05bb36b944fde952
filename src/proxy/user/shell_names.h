// Under which names the logged-on user's shell runs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// The program names in the registry value Shell (Winlogon): several are separated by commas, each may be a path, in
/// quotes, with arguments. Each comes back as its file-name part, lower-cased; "explorer.exe" when there is none.
std::vector<std::wstring> ShellNames(std::wstring_view value);

} // namespace vantor
