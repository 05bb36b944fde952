// Reading the registry, and writing the few values that the program changes.
#pragma once

#include "platform/owner.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantor {

/// The location of a value: its key under HKEY_LOCAL_MACHINE, and its name.
struct RegistryValue {
    const wchar_t* key;
    const wchar_t* name;
};

/// Read access in the 64-bit view.
inline constexpr REGSAM kReadAccess = KEY_READ | KEY_WOW64_64KEY;

/// An open key under HKEY_LOCAL_MACHINE.
class RegistryKey {
public:
    /// Opens a key with exactly these access rights, which include the view (RegOpenKeyExW); std::nullopt on failure.
    static std::optional<RegistryKey> Open(const wchar_t* path, REGSAM access);

    /// Opens a key with kReadAccess.
    static std::optional<RegistryKey> OpenForReading(const wchar_t* path);

    /// Opens a key, creating it if absent (RegCreateKeyExW); std::nullopt on failure.
    static std::optional<RegistryKey> OpenOrCreate(const wchar_t* path, REGSAM access);

    /// RegQueryValueExW. size is the size of buffer in bytes, and afterwards what Windows returned; type may be null.
    LSTATUS Query(const wchar_t* value, void* buffer, DWORD& size, DWORD* type = nullptr) const;

    /// A value of at most 4 bytes, of any type. A shorter one replaces only the first bytes of preset. std::nullopt if
    /// the query fails, as it does for a longer value.
    std::optional<std::uint32_t> QueryDword(const wchar_t* value, std::uint32_t preset = 0) const;

    /// A value of at most bufferBytes bytes, of any type, as text up to its first NUL or its end; an odd last byte is
    /// dropped. std::nullopt if the query fails, as it does for a longer value.
    std::optional<std::wstring> QueryText(const wchar_t* value, std::size_t bufferBytes) const;

    /// The same for a value of up to 1 MiB, whose size is queried first.
    std::optional<std::wstring> QueryWholeText(const wchar_t* value) const;

    /// The raw data of a value of this type and of up to 1 MiB, whose size is queried first.
    std::optional<std::vector<std::uint8_t>> QueryData(const wchar_t* value, DWORD type) const;

    /// Writes a REG_DWORD (RegSetValueExW).
    LSTATUS SetDword(const wchar_t* value, std::uint32_t data) const;

    /// Removes a value (RegDeleteValueW).
    LSTATUS DeleteValue(const wchar_t* value) const;

    /// The names of the subkeys, in the order of RegEnumKeyExW.
    std::vector<std::wstring> SubkeyNames() const;

private:
    explicit RegistryKey(RegistryHandle handle) : m_handle(std::move(handle)) {}

    RegistryHandle m_handle;
};

/// Opens the key with these access rights and calls RegistryKey::QueryDword. std::nullopt if either fails.
std::optional<std::uint32_t> ReadDword(const RegistryValue& value, std::uint32_t preset = 0,
                                       REGSAM access = kReadAccess);

/// Opens the key with kReadAccess and calls RegistryKey::QueryText. std::nullopt if either fails.
std::optional<std::wstring> ReadText(const RegistryValue& value, std::size_t bufferBytes);

/// Opens the key with these access rights and calls RegistryKey::QueryWholeText. std::nullopt if either fails.
std::optional<std::wstring> ReadWholeText(const RegistryValue& value, REGSAM access = kReadAccess);

} // namespace vantor
