// DLLs loaded on first use rather than by the loader, which runs before main can restrict the search path.
#pragma once

#include <windows.h>

#include <bit>
#include <string>

namespace vantor {

class ModuleEntry;

/// A System32 DLL and the functions that the program calls in it; the other headers in this folder list them.
/// Objects are global, and the program has one thread.
class SystemModule {
public:
    constexpr explicit SystemModule(const wchar_t* name) noexcept : m_name(name) {}
    SystemModule(const SystemModule&) = delete;
    SystemModule& operator=(const SystemModule&) = delete;

    /// Loads the DLL from System32 and binds each function (LoadLibraryExW, GetProcAddress), unless already done.
    /// Returns what is missing, with the Windows error code, or an empty string. The DLL stays loaded. Check this
    /// before the first call to the DLL, because calling a missing function ends the process.
    std::string FindMissing();

private:
    friend class ModuleEntry;

    const wchar_t* m_name;
    ModuleEntry* m_entries = nullptr;
    bool m_bound = false;
};

/// One function of a module, bound by name.
class ModuleEntry {
public:
    ModuleEntry(const ModuleEntry&) = delete;
    ModuleEntry& operator=(const ModuleEntry&) = delete;

protected:
    ModuleEntry(SystemModule& module, const char* name) noexcept;
    ~ModuleEntry() = default;

    /// Binds the module on first use; null when the function is missing. Keeps the last error.
    FARPROC Address() const;

private:
    friend class SystemModule;

    SystemModule& m_module;
    const char* m_name;
    ModuleEntry* m_next;
    FARPROC m_address = nullptr;
};

/// Can be called like the Windows function whose type it is given.
template <typename Function>
class ModuleFunction : public ModuleEntry {
public:
    ModuleFunction(SystemModule& module, const char* name) noexcept : ModuleEntry(module, name) {}

    operator Function*() const { return std::bit_cast<Function*>(Address()); }
};

/// Loads a DLL from System32 by its full path and leaves it loaded (LoadLibraryExW). Null on failure; the last error
/// says why.
HMODULE LoadSystemModule(const wchar_t* name);

} // namespace vantor
