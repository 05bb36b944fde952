#include "platform/registry.h"

#include <algorithm>

namespace vantor {

namespace {

/// No value that this program reads is longer than this.
constexpr DWORD kMaxBytes = 1024 * 1024;

} // namespace

std::optional<RegistryKey> RegistryKey::Open(const wchar_t* path, REGSAM access)
{
    RegistryHandle handle;
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, access, handle.Receive()) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return RegistryKey(std::move(handle));
}

std::optional<RegistryKey> RegistryKey::OpenForReading(const wchar_t* path)
{
    return Open(path, kReadAccess);
}

std::optional<RegistryKey> RegistryKey::OpenOrCreate(const wchar_t* path, REGSAM access)
{
    RegistryHandle handle;
    if (::RegCreateKeyExW(HKEY_LOCAL_MACHINE, path, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr,
                          handle.Receive(), nullptr) != ERROR_SUCCESS) {
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
    DWORD size = 0;
    if (Query(value, nullptr, size) != ERROR_SUCCESS || size > kMaxBytes) {
        return std::nullopt;
    }
    return QueryText(value, size + sizeof(wchar_t)); // room for an odd last byte
}

std::optional<std::vector<std::uint8_t>> RegistryKey::QueryData(const wchar_t* value, DWORD type) const
{
    DWORD size = 0;
    if (Query(value, nullptr, size) != ERROR_SUCCESS || size > kMaxBytes) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> data(size);
    DWORD actualType = REG_NONE;
    if (Query(value, data.data(), size, &actualType) != ERROR_SUCCESS || actualType != type) {
        return std::nullopt;
    }
    data.resize(std::min<std::size_t>(size, data.size()));
    return data;
}

LSTATUS RegistryKey::SetDword(const wchar_t* value, std::uint32_t data) const
{
    return ::RegSetValueExW(m_handle.Get(), value, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data), sizeof(data));
}

LSTATUS RegistryKey::DeleteValue(const wchar_t* value) const
{
    return ::RegDeleteValueW(m_handle.Get(), value);
}

std::vector<std::wstring> RegistryKey::SubkeyNames() const
{
    constexpr DWORD kMaxName = 256; // Windows' limit is 255

    std::vector<std::wstring> names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[kMaxName];
        DWORD length = kMaxName;
        if (::RegEnumKeyExW(m_handle.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

std::optional<std::uint32_t> ReadDword(const RegistryValue& value, std::uint32_t preset, REGSAM access)
{
    const auto key = RegistryKey::Open(value.key, access);
    return key ? key->QueryDword(value.name, preset) : std::nullopt;
}

std::optional<std::wstring> ReadText(const RegistryValue& value, std::size_t bufferBytes)
{
    const auto key = RegistryKey::OpenForReading(value.key);
    return key ? key->QueryText(value.name, bufferBytes) : std::nullopt;
}

std::optional<std::wstring> ReadWholeText(const RegistryValue& value, REGSAM access)
{
    const auto key = RegistryKey::Open(value.key, access);
    return key ? key->QueryWholeText(value.name) : std::nullopt;
}

} // namespace vantor
