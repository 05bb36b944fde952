#include "proxy/user/shell_names.h"

#include "support/proxy_test.h"
#include "support/scratch_registry.h"

namespace vantor {

TEST_F(ImpersonationTest, TheShellIsTheOneOfTheRegistry)
{
    m_tokens->processes = {{{5, 0, "explorer.exe"}, {6, 0, "kiosk.exe"}}, "Process32Next", 8};
    ScratchRegistry registry;
    EXPECT_THAT(Impersonate(), ::testing::HasSubstr("OpenProcess 1040 5;"));
    EXPECT_TRUE(AutoLogged("IsAnyProcessRunning: Process32Next() returns unexpected code 8"));
    registry.Set(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", L"Shell", L"C:\\Shop\\Kiosk.EXE /full");
    EXPECT_THAT(Impersonate(), ::testing::HasSubstr("OpenProcess 1040 6;"));

    using Names = std::vector<std::wstring>;
    EXPECT_EQ(ShellNames(L"explorer.exe,Kiosk.EXE ,, C:\\A b\\s.exe"),
              (Names{L"explorer.exe", L"kiosk.exe", L"s.exe"}));
    EXPECT_EQ(ShellNames(L"\"C:\\Program Files\\x,y\\my shell.exe\" /y,b.exe"), (Names{L"my shell.exe", L"b.exe"}));
    EXPECT_EQ(ShellNames(L"C:\\Program Files\\a.exes\\s.exe C:\\other\\z.exe /x"), Names{L"s.exe"});
    EXPECT_EQ(ShellNames(L"%SystemRoot%/explorer /n"), Names{L"explorer"});
    EXPECT_EQ(ShellNames(L"\"open"), Names{L"open"});
    EXPECT_EQ(ShellNames(L" , \"\""), Names{L"explorer.exe"});
}

} // namespace vantor
