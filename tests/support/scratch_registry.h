// A registry of the test's own in the place of HKEY_LOCAL_MACHINE.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace vantor {

/// Redirects HKEY_LOCAL_MACHINE of this process to an empty scratch key while it lives. WinHTTP and the crypto calls
/// read the registry too: use it around the code under test only.
class ScratchRegistry {
public:
    ScratchRegistry()
    {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
        EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, m_path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                    nullptr, &m_key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_key), ERROR_SUCCESS);
    }
    ~ScratchRegistry()
    {
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        ::RegCloseKey(m_key);
        ::RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
    }
    ScratchRegistry(const ScratchRegistry&) = delete;
    ScratchRegistry& operator=(const ScratchRegistry&) = delete;

    /// The bytes of a wide text without a terminator.
    static std::vector<BYTE> Bytes(const std::wstring& text)
    {
        const auto* const data = reinterpret_cast<const BYTE*>(text.data());
        return {data, data + text.size() * sizeof(wchar_t)};
    }

    void Create(const wchar_t* path) { ::RegCloseKey(Open(path)); }

    void Set(const wchar_t* path, const wchar_t* value, DWORD type, const std::vector<BYTE>& data)
    {
        const HKEY key = Open(path);
        EXPECT_EQ(::RegSetValueExW(key, value, 0, type, data.data(), static_cast<DWORD>(data.size())), ERROR_SUCCESS);
        ::RegCloseKey(key);
    }
    void Set(const wchar_t* path, const wchar_t* value, const std::wstring& text)
    {
        Set(path, value, REG_SZ, Bytes(text + L'\0'));
    }
    void Set(const wchar_t* path, const wchar_t* value, DWORD number)
    {
        const auto* const bytes = reinterpret_cast<const BYTE*>(&number);
        Set(path, value, REG_DWORD, {bytes, bytes + sizeof(number)});
    }

    /// Every value, as "key\\value" with "type:data"; numbers in decimal, other data as it is.
    std::map<std::string, std::string> Snapshot() const
    {
        std::map<std::string, std::string> values;
        AddValues(m_key, "", values);
        return values;
    }

private:
    static void AddValues(HKEY key, const std::string& path, std::map<std::string, std::string>& values)
    {
        char name[256];
        std::vector<BYTE> data(64 * 1024);
        DWORD type = 0;
        DWORD length = sizeof(name);
        DWORD size = static_cast<DWORD>(data.size());
        for (DWORD index = 0; ::RegEnumValueA(key, index, name, &length, nullptr, &type, data.data(), &size) == 0;
             ++index, length = sizeof(name), size = static_cast<DWORD>(data.size())) {
            const std::string text = type == REG_DWORD ? std::to_string(*reinterpret_cast<DWORD*>(data.data()))
                                                       : std::string(data.begin(), data.begin() + size);
            values[path + name] = std::to_string(type) + ":" + text;
        }
        length = sizeof(name);
        for (DWORD index = 0; ::RegEnumKeyExA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) == 0;
             ++index, length = sizeof(name)) {
            HKEY child = nullptr;
            ::RegOpenKeyExA(key, name, 0, KEY_READ, &child);
            AddValues(child, path + name + "\\", values);
            ::RegCloseKey(child);
        }
    }

    /// Of this process alone, for tests run at once.
    const std::wstring m_path = L"Software\\VANTorTests" + std::to_wstring(::GetCurrentProcessId());

    HKEY Open(const wchar_t* path)
    {
        HKEY key = nullptr;
        EXPECT_EQ(::RegCreateKeyExW(m_key, path, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS | KEY_WOW64_64KEY,
                                    nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        return key;
    }

    HKEY m_key = nullptr;
};

} // namespace vantor
