#include "run/product/file_version_info.h"
#include "platform/program.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace vantor {
namespace {

/// A module that was built beside this test, with a version resource of its own.
std::wstring Module(const wchar_t* name)
{
    return std::filesystem::path(*ProgramPath()).replace_filename(name + std::wstring(L".dll")).wstring();
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
    const std::pair<std::wstring, DWORD> kCases[] = {
        {Module(L"versioned_none"), ERROR_INVALID_DATA},  // a resource without a translation table
        {Module(L"versioned_lying"), ERROR_INVALID_DATA}, // a table that is longer than the resource
        {Module(L"there is no such module"), ERROR_FILE_NOT_FOUND},
        {Module(L"unversioned"), ERROR_RESOURCE_DATA_NOT_FOUND},
        {L".", ERROR_BAD_PATHNAME},
    };
    for (const auto& [path, error] : kCases) {
        auto* const untouched = reinterpret_cast<FileVersionInfo*>(1);
        FileVersionInfo* info = untouched;
        const DWORD result = NewFileVersionInfo(path.c_str(), &info);
        EXPECT_TRUE(result == error || (error == ERROR_BAD_PATHNAME && result != 0)); // Wine has its own for a folder
        EXPECT_EQ(info, untouched);
        EXPECT_EQ(ReadFileVersion(path), std::nullopt);
    }
}

TEST(FileVersionInfo, AFixedPartThatIsBrokenIsNamed)
{
    EXPECT_THAT([] { ReadFileVersion(Module(L"versioned_short")); },
                testing::ThrowsMessage<std::runtime_error>("Failed to get file info, unexpected size"));
}

} // namespace
} // namespace vantor
