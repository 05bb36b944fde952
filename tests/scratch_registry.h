// A registry of the test's own in the place of HKEY_LOCAL_MACHINE.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantor {

/// Redirects HKEY_LOCAL_MACHINE of this process to an empty scratch key while it lives. WinHTTP and the crypto calls
/// read the registry too: use it around the code under test only.
class ScratchRegistry {
public:
    ScratchRegistry()
    {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
        EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, kPath, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                    &m_key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_key), ERROR_SUCCESS);
    }
    ~ScratchRegistry()
    {
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        ::RegCloseKey(m_key);
        ::RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
    }
    ScratchRegistry(const ScratchRegistry&) = delete;
    ScratchRegistry& operator=(const ScratchRegistry&) = delete;

    void Create(const wchar_t* path) { ::RegCloseKey(Open(path)); }

    void Set(const wchar_t* path, const wchar_t* value, DWORD type, const std::vector<BYTE>& data)
    {
        const HKEY key = Open(path);
        EXPECT_EQ(::RegSetValueExW(key, value, 0, type, data.data(), static_cast<DWORD>(data.size())), ERROR_SUCCESS);
        ::RegCloseKey(key);
    }
    void Set(const wchar_t* path, const wchar_t* value, const std::wstring& text)
    {
        const auto* const bytes = reinterpret_cast<const BYTE*>(text.c_str());
        Set(path, value, REG_SZ, {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)});
    }
    void Set(const wchar_t* path, const wchar_t* value, DWORD number)
    {
        const auto* const bytes = reinterpret_cast<const BYTE*>(&number);
        Set(path, value, REG_DWORD, {bytes, bytes + sizeof(number)});
    }

private:
    static constexpr const wchar_t* kPath = L"Software\\VANTorTests";

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
