#include "platform/program.h"

#include "platform/dynamic_function.h"

#include <windows.h>

namespace vantor {

void RestrictDllSearchPath()
{
    constexpr DWORD kSearchSystem32 = 0x800; // LOAD_LIBRARY_SEARCH_SYSTEM32

    const HMODULE kernel = ::GetModuleHandleA("kernel32");
    if (const auto setDirectories = FindFunction<BOOL(WINAPI*)(DWORD)>(kernel, "SetDefaultDllDirectories")) {
        setDirectories(kSearchSystem32);
    }
}

std::optional<std::wstring> ProgramPath()
{
    wchar_t path[MAX_PATH];
    const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return std::nullopt;
    }
    return std::wstring(path, length);
}

} // namespace vantor
