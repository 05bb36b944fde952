#include "platform/registry.h"

#include <algorithm>

namespace vantor {

std::optional<RegistryKey> RegistryKey::OpenForReading(const wchar_t* path)
{
    RegistryHandle handle;
    const LSTATUS status = ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ | KEY_WOW64_64KEY, handle.Receive());
    if (status != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return RegistryKey(std::move(handle));
}

LSTATUS RegistryKey::Query(const wchar_t* value, void* buffer, DWORD& size, DWORD* type) const
{
    return ::RegQueryValueExW(m_handle.Get(), value, nullptr, type, static_cast<BYTE*>(buffer), &size);
}

std::optional<std::uint32_t> RegistryKey::QueryDword(const wchar_t* value, std::uint32_t preset) const
{
    std::uint32_t data = preset;
    DWORD size = sizeof(data);
    if (Query(value, &data, size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return data;
}

std::optional<std::wstring> RegistryKey::QueryText(const wchar_t* value, std::size_t bufferBytes) const
{
    std::wstring text(bufferBytes / sizeof(wchar_t), L'\0');
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (Query(value, text.data(), size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    text.resize(std::min<std::size_t>(size / sizeof(wchar_t), text.size()));
    text.resize(std::min(text.find(L'\0'), text.size()));
    return text;
}

std::optional<std::wstring> RegistryKey::QueryWholeText(const wchar_t* value) const
{
    constexpr DWORD kMostBytes = 1024 * 1024;

    DWORD size = 0;
    if (Query(value, nullptr, size) != ERROR_SUCCESS || size > kMostBytes) {
        return std::nullopt;
    }
    return QueryText(value, size + sizeof(wchar_t)); // room for an odd last byte
}

std::vector<std::wstring> RegistryKey::SubkeyNames() const
{
    constexpr DWORD kLongestName = 256; // Windows' limit is 255

    std::vector<std::wstring> names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[kLongestName];
        DWORD length = kLongestName;
        if (::RegEnumKeyExW(m_handle.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

} // namespace vantor
