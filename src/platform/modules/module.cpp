#include "platform/modules/module.h"

#include "platform/last_error.h"
#include "platform/owner.h"
#include "platform/text/encoding.h"

namespace vantor {

ModuleEntry::ModuleEntry(SystemModule& module, const char* name) noexcept
    : m_module(module), m_name(name), m_next(module.m_entries)
{
    module.m_entries = this;
}

FARPROC ModuleEntry::Address() const
{
    if (!m_address) {
        const LastErrorKeeper keeper;
        m_module.FindMissing();
    }
    return m_address;
}

std::string SystemModule::FindMissing()
{
    if (m_bound) {
        return {};
    }
    const HMODULE module = LoadSystemModule(m_name);
    if (!module) {
        const DWORD error = ::GetLastError();
        return ToNarrow(m_name) + ": error " + std::to_string(error);
    }
    for (ModuleEntry* entry = m_entries; entry; entry = entry->m_next) {
        entry->m_address = ::GetProcAddress(module, entry->m_name);
        if (!entry->m_address) {
            const DWORD error = ::GetLastError();
            return ToNarrow(m_name) + ", function " + entry->m_name + ": error " + std::to_string(error);
        }
    }
    m_bound = true;
    return {};
}

HMODULE LoadSystemModule(const wchar_t* name)
{
    // A full path, because systems without SetDefaultDllDirectories do not know LOAD_LIBRARY_SEARCH_SYSTEM32.
    wchar_t directory[MAX_PATH];
    const UINT length = ::GetSystemDirectoryW(directory, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return nullptr;
    }
    const std::wstring path = std::wstring(directory, length) + L'\\' + name;
    return ::LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

} // namespace vantor
