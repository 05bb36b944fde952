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

struct LoadedModule {
    Module module;   ///< empty when nothing was loaded
    DWORD error = 0; ///< the Windows error then, or 0 when there was none
};

/// Looks for a module in the product's installation directory (szInstallDir64, then szInstallDir32), in the program's
/// directory and in the current directory, and loads the first that is trusted: Windows trusts its signature
/// (WinVerifyTrust), its publisher is the program's own when the program is signed, it is on a drive of this host, and
/// in the current directory it belongs to SYSTEM, Administrators, TrustedInstaller or the program's own user. Only
/// absolute paths are opened; nobody can write or replace the file between check and load, and it is loaded by its final
/// path; its own imports come from System32. Where it looks beyond the installation directory, and a signature that is
/// refused, goes to OutputDebugStringW; what else is refused, to the log.
LoadedModule NCPrivateLoadAndValidateVPTDll(const std::wstring& fileName);

struct ModuleInterface {
    DWORD error = 0;         ///< 0 or the Windows error
    void* pointer = nullptr; ///< what the module handed out, of the type that goes with the interface's name
};

/// Asks a module of the product for an interface through its export NotComDllGetInterface. When the named version fails
/// and fallback is allowed, the older versions are tried in turn, down to "AacControl". The module itself is let go of
/// right after each call.
ModuleInterface GetModuleInterface(const std::wstring& fileName, const wchar_t* interfaceName, bool allowFallback);

} // namespace vantor
