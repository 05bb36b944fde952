#include "platform/files/file_facts.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

constexpr wchar_t kSelf[] = L"S-1-5-21-1-2-3-1001";

TEST(FileFacts, APlainFileIsOnADiskNoLinkNoFolderAndHasOneName)
{
    EXPECT_TRUE(IsPlainFile({.isDisk = true, .names = 1}));
    EXPECT_FALSE(IsPlainFile({.isDisk = false, .names = 1})); // a pipe or device
    EXPECT_FALSE(IsPlainFile({.isDisk = true, .isDirectory = true, .names = 1}));
    EXPECT_FALSE(IsPlainFile({.isDisk = true, .isLink = true, .names = 1}));
    EXPECT_FALSE(IsPlainFile({.isDisk = true, .names = 2}));
    EXPECT_FALSE(IsPlainFile({.isDisk = true, .names = 0})); // Windows did not tell
}

TEST(FileFacts, OwnersWhoAreTrusted)
{
    const std::pair<const wchar_t*, bool> kCases[] = {
        {L"S-1-5-18", true},
        {L"S-1-5-32-544", true},
        {L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464", true},
        {kSelf, true},
        {L"", false},
        {L"S-1-5-21-1-2-3-1002", false},
        {L"S-1-5-32-545", false}, // Users
        {L"S-1-5-1", false},
        {L"S-1-5-180", false},
        {L"S-1-1-0", false}, // Everyone
    };
    for (const auto& [owner, isTrusted] : kCases) {
        EXPECT_EQ(IsOwnerTrusted({.owner = owner}, kSelf), isTrusted) << owner;
    }
    EXPECT_FALSE(IsOwnerTrusted({}, L"")); // two unknown ones are not the same
}

TEST(FileFacts, OnlyAFileOnADriveOfThisHostHasALocalPath)
{
    EXPECT_EQ(LocalPath({.path = L"\\\\?\\C:\\a\\b.dll"}), L"C:\\a\\b.dll");
    for (const wchar_t* const path : {L"", L"C:\\a", L"\\\\?\\UNC\\host\\share\\b.dll", L"\\\\host\\share\\b.dll",
                                      L"\\\\?\\Volume{0}\\b.dll", L"\\\\?\\C:", L"\\\\?\\GLOBALROOT\\Device\\Mup\\x"}) {
        EXPECT_EQ(LocalPath({.path = path}), std::nullopt) << path;
    }
}

TEST(FileFacts, AFolderIsWhereItSaysAndAFileLiesInIt)
{
    const FileFacts folder{.isDisk = true, .isDirectory = true, .path = L"\\\\?\\C:\\ProgramData\\Logs"};
    EXPECT_TRUE(IsFolderAt(folder, L"c:\\programdata\\logs\\"));
    EXPECT_TRUE(IsFolderAt(folder, L"C:\\ProgramData\\Logs"));
    EXPECT_FALSE(IsFolderAt(folder, L"C:\\ProgramData\\Log"));
    EXPECT_FALSE(IsFolderAt(folder, L""));
    FileFacts link = folder;
    link.isLink = true;
    EXPECT_FALSE(IsFolderAt(link, L"C:\\ProgramData\\Logs"));
    EXPECT_FALSE(IsFolderAt({.isDisk = true, .path = folder.path}, L"C:\\ProgramData\\Logs"));

    EXPECT_TRUE(IsDirectlyIn({.path = folder.path + L"\\a.log"}, folder));
    for (const wchar_t* const path :
         {L"", L"a.log", L"\\\\?\\C:\\ProgramData\\Logs", L"\\\\?\\C:\\ProgramData\\Logs2\\a.log",
          L"\\\\?\\C:\\ProgramData\\Logs\\b\\a.log", L"\\\\?\\C:\\Windows\\a.log"}) {
        EXPECT_FALSE(IsDirectlyIn({.path = path}, folder)) << path;
    }
    EXPECT_FALSE(IsDirectlyIn({.path = L"\\a.log"}, {}));
}

} // namespace
} // namespace vantor
