#include "platform/delay_import.h"

#include "platform/text.h"

#include <windows.h>

namespace vantor {

std::string FindMissing(const DelayImport& import)
{
    // A full path: the flag for System32 alone is unknown to systems that lack SetDefaultDllDirectories.
    wchar_t directory[MAX_PATH];
    const UINT length = ::GetSystemDirectoryW(directory, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return "system directory: error " + std::to_string(::GetLastError());
    }
    const std::wstring path = std::wstring(directory, length) + L'\\' + import.module;
    const HMODULE module = ::LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module) {
        const DWORD error = ::GetLastError();
        return ToNarrow(import.module) + ": error " + std::to_string(error);
    }
    for (const char* const function : import.functions) {
        if (!::GetProcAddress(module, function)) {
            const DWORD error = ::GetLastError();
            return ToNarrow(import.module) + ", function " + function + ": error " + std::to_string(error);
        }
    }
    return {};
}

} // namespace vantor
