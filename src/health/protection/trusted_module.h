// Loading the product's own modules, after their signature was checked.
#pragma once

#include "platform/owner.h"

#include <string>

namespace vantor {

struct ModulePolicy {
    using Value = HMODULE;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { ::FreeLibrary(value); }
};
using Module = Owner<ModulePolicy>;

/// Looks for a module in the product's installation directory (szInstallDir64, then szInstallDir32), in the program's
/// directory and in the current directory, and loads the first whose signature Windows trusts (WinVerifyTrust). Only
/// absolute paths are loaded; nobody can write or replace the file between check and load; the module's own imports
/// come from System32. Where it looks beyond the installation directory, and what it refuses, goes to
/// OutputDebugStringW. On failure nothing is loaded and error holds the Windows error, or 0 when there was none.
Module NCPrivateLoadAndValidateVPTDll(const std::wstring& fileName, DWORD& error);

/// Asks a module of the product for an interface through its export NotComDllGetInterface. When the module or the
/// named version fails and fallback is allowed, the older versions are tried in turn, down to "AacControl". The module
/// itself is let go of right after each call. Returns 0 and fills the pointer, or the Windows error.
DWORD GetModuleInterface(const std::wstring& fileName, const wchar_t* interfaceName, bool allowFallback,
                         void** interfacePointer);

} // namespace vantor
