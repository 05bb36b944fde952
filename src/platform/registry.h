// Reading the registry, and the few single values that are written.
#pragma once

#include "platform/owner.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantor {

/// Where a value is: a key under HKEY_LOCAL_MACHINE, and its name there.
struct RegistryValue {
    const wchar_t* key;
    const wchar_t* name;
};

/// Reading in the 64-bit view.
inline constexpr REGSAM kReadAccess = KEY_READ | KEY_WOW64_64KEY;

/// An open key under HKEY_LOCAL_MACHINE.
class RegistryKey {
public:
    /// Opens a key with exactly these access rights, the view among them (RegOpenKeyExW); nothing when Windows refuses.
    static std::optional<RegistryKey> Open(const wchar_t* path, REGSAM access);

    /// The same with kReadAccess.
    static std::optional<RegistryKey> OpenForReading(const wchar_t* path);

    /// Opens a key, creating it if absent (RegCreateKeyExW); nothing when Windows refuses.
    static std::optional<RegistryKey> OpenOrCreate(const wchar_t* path, REGSAM access);

    /// RegQueryValueExW: size is the room in bytes at buffer, then what Windows returned; type may be null.
    LSTATUS Query(const wchar_t* value, void* buffer, DWORD& size, DWORD* type = nullptr) const;

    /// A value that fits in 4 bytes, whatever its type; bytes that it lacks keep those of preset. Nothing when the
    /// query fails, a longer value included.
    std::optional<std::uint32_t> QueryDword(const wchar_t* value, std::uint32_t preset = 0) const;

    /// A value of at most bufferBytes bytes as text up to its first NUL, or up to its end, whatever its type; an odd
    /// last byte is dropped. Nothing when the query fails, a longer value included.
    std::optional<std::wstring> QueryText(const wchar_t* value, std::size_t bufferBytes) const;

    /// The same for a value of any length up to 1 MiB: its size is asked for first.
    std::optional<std::wstring> QueryWholeText(const wchar_t* value) const;

    /// The data of a value of any length up to 1 MiB as it is, if it has this type; its size is asked for first.
    std::optional<std::vector<std::uint8_t>> QueryData(const wchar_t* value, DWORD type) const;

    /// Writes a REG_DWORD (RegSetValueExW).
    LSTATUS SetDword(const wchar_t* value, std::uint32_t data) const;

    /// Removes a value (RegDeleteValueW).
    LSTATUS DeleteValue(const wchar_t* value) const;

    /// The names of the key's subkeys in Windows' order (RegEnumKeyExW).
    std::vector<std::wstring> SubkeyNames() const;

private:
    explicit RegistryKey(RegistryHandle handle) : m_handle(std::move(handle)) {}

    RegistryHandle m_handle;
};

/// RegistryKey::QueryDword on a key that is opened for it with these rights. Nothing also when it does not open.
std::optional<std::uint32_t> ReadDword(const RegistryValue& value, std::uint32_t preset = 0,
                                       REGSAM access = kReadAccess);

/// RegistryKey::QueryText in the same way.
std::optional<std::wstring> ReadText(const RegistryValue& value, std::size_t bufferBytes);

/// RegistryKey::QueryWholeText in the same way.
std::optional<std::wstring> ReadWholeText(const RegistryValue& value, REGSAM access = kReadAccess);

} // namespace vantor
