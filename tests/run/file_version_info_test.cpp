#include "run/file_version_info.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

/// A module that was built beside this test, with a version resource of its own.
std::wstring Module(const wchar_t* name)
{
    wchar_t path[MAX_PATH];
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.rfind(L'\\') + 1) + name + L".dll";
}

TEST(FileVersionInfo, ChoosesTheNeutralTranslationThenUsEnglishThenTheFirst)
{
    const std::pair<const wchar_t*, const wchar_t*> kCases[] = {
        {L"versioned_german_english", L"English"},
        {L"versioned_german_english_neutral", L"neutral"},
        {L"versioned_german", L"deutsch"},
    };
    for (const auto& [name, text] : kCases) {
        FileVersionInfo* info = nullptr;
        ASSERT_EQ(NewFileVersionInfo(Module(name).c_str(), &info), 0u);
        std::wstring value;
        EXPECT_TRUE(info->QueryValue(L"ProductName", value));
        EXPECT_EQ(value, text);
        EXPECT_FALSE(info->QueryValue(L"Comments", value));
        EXPECT_FALSE(info->QueryValue(std::wstring(300, L'x').c_str(), value)); // no path can be formed
        EXPECT_NE(info->VersionBlock(), nullptr);
        info->Release();
    }
}

TEST(FileVersionInfo, FailsWithWindowsErrorAndLeavesTheResultAlone)
{
    wchar_t system[MAX_PATH];
    ::GetSystemDirectoryW(system, MAX_PATH);
    const std::pair<std::wstring, DWORD> kCases[] = {
        {Module(L"versioned_none"), ERROR_INVALID_DATA},  // a resource without a translation table
        {Module(L"versioned_lying"), ERROR_INVALID_DATA}, // a table that is longer than the resource
        {Module(L"there is no such module"), ERROR_FILE_NOT_FOUND},
        {Module(L"unversioned"), ERROR_RESOURCE_DATA_NOT_FOUND},
        {system, ERROR_BAD_PATHNAME},
    };
    for (const auto& [path, error] : kCases) {
        auto* const untouched = reinterpret_cast<FileVersionInfo*>(&system);
        FileVersionInfo* info = untouched;
        const DWORD result = NewFileVersionInfo(path.c_str(), &info);
        EXPECT_NE(result, 0u);
        if (error != ERROR_BAD_PATHNAME) { // for a folder Windows and Wine differ in the number
            EXPECT_EQ(result, error);
        }
        EXPECT_EQ(info, untouched);
        EXPECT_EQ(ReadFileVersion(path), std::nullopt);
    }
}

} // namespace
} // namespace vantor
