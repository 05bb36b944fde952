// Loading the product's own modules after checking their signatures.
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
    Module module;   ///< empty if nothing was loaded
    DWORD error = 0; ///< why not: the Windows error code; 0 if no file was found
};

/// Looks for a module in the product's installation directory (szInstallDir64, then szInstallDir32), in the program's
/// directory and in the current directory, and loads the first trusted one. It is trusted if Windows trusts its
/// signature (WinVerifyTrust), its publisher is that of the program (if the program is signed), and it is on a drive of
/// this host; in the current directory it must also belong to SYSTEM, Administrators, TrustedInstaller or the program's
/// own user. Only absolute paths are opened. Nobody can write or replace the file between check and load; it is loaded
/// by its final path, and its imports come from System32. A search outside the installation directory and a rejected
/// signature are reported to OutputDebugStringW, other rejections in the log.
LoadedModule NCPrivateLoadAndValidateVPTDll(const std::wstring& fileName);

struct ModuleInterface {
    DWORD error = 0;         ///< 0 or the Windows error code
    void* pointer = nullptr; ///< the object that the module returned; its type depends on the interface's name
};

/// Asks a module of the product for an interface through its export NotComDllGetInterface. If the named version fails
/// and fallback is allowed, tries the older versions in turn, down to "AacControl". Frees the module right after each
/// call.
ModuleInterface GetModuleInterface(const std::wstring& fileName, const wchar_t* interfaceName, bool allowFallback);

} // namespace vantor
