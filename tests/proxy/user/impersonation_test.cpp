#include "support/proxy_test.h"
#include "support/scratch_registry.h"

#include "proxy/user/shell_names.h"

namespace vantor {
namespace {

class ImpersonationTest : public ProxyTest {
protected:
    ImpersonationTest() { m_manager.InitConfig({}); }

    std::string Impersonate()
    {
        m_tokens->calls.clear();
        m_manager.Impersonator().Impersonate(nullptr);
        m_manager.Impersonator().UnImpersonate();
        m_manager.Impersonator().UnImpersonate(); // harmless
        return m_tokens->calls;
    }
};

TEST_F(ImpersonationTest, TheThreadIsItselfAgainWhateverFails)
{
    const std::string opens = "LoadModules;OpenThreadToken 12;";
    const std::string process = opens + "OpenProcess 1040 31;";
    const std::string shell = process + "OpenToken 11;Impersonate shell;";
    const std::string level = "CreateLevel 2 131072 1;";
    const std::string noSafer = level + "Compute;CloseLevel;";
    const std::string safer = noSafer + "Impersonate safer;Revert;";
    const struct {
        const char* failing;
        std::deque<DWORD> errors;
        std::string calls;
        bool isAnybodyLoggedOn = true;
    } kCases[] = {
        {"", {}, shell + "Revert;"},
        {"", {}, opens + safer, false},
        {"OpenProcess", {5}, process + safer},
        {"OpenToken", {5}, process + "OpenToken 11;" + safer},
        {"CreateLevel", {87}, opens + level, false},
        {"Compute", {87}, opens + noSafer, false},
        {"Impersonate", {8}, shell},
        {"OpenThreadToken", {5}, opens},
        {"OpenThreadToken", {0}, shell + "Impersonate previous;"},
        {"Revert", {5}, shell + "Revert;EndProcess;"},
    };
    const ProcessList everybody = m_tokens->processes;
    for (const auto& row : kCases) {
        m_tokens->processes = row.isAnybodyLoggedOn ? everybody : ProcessList{};
        m_tokens->errors = {{"OpenThreadToken", {ERROR_NO_TOKEN}}};
        m_tokens->errors[row.failing] = row.errors;
        EXPECT_EQ(Impersonate(), row.calls) << row.failing;
    }
    m_tokens->errors = {{"OpenThreadToken", {0}}, {"Impersonate", {0, 5}}};
    EXPECT_EQ(Impersonate(), shell + "Impersonate previous;Revert;");
    for (const char* const line :
         {"GetExplorersToken: OpenProcess() failed for PID:0x1f Err : 5",
          "GetExplorersToken: OpenProcessToken() failed for PID: 0x1f Err : 5",
          "GetSaferToken: SaferCreateLevel() failed. Err: 87",
          "GetSaferToken: SaferComputeTokenFromLevel() failed. Error: 87",
          "DiscoverUserToImpersonate: Unable to read manual system proxy because failed to get explorer token and "
          "normal user level token",
          "Impersonate: ImpersonateIfRequired: Failed to discover user access token",
          "Impersonate: Currently impersonating. Keeping impersonation token to restore later.",
          "Impersonate: Impersonating logged on user", "UnImpersonate: Impersonating logged on user finished",
          "UnImpersonate: Failed to restore logged on user"}) {
        EXPECT_TRUE(AutoLogged(line)) << line;
    }
    EXPECT_TRUE(Logged("E CHTTPSessionAutoProxy::UnImpersonate: RevertToSelf() failed. Windows error: 5. The process "
                       "ends here: nothing is safe to do as another user."));
}

TEST_F(ImpersonationTest, TheUserAtTheConsoleComesFirstAndSystemNever)
{
    m_tokens->processes = {{{5, 0, "explorer.exe"}, {6, 0, "explorer.exe"}, {7, 0, "explorer.exe"}}};
    m_tokens->users = {{5, "remote"}, {6, "console"}, {7, "system"}};
    m_tokens->sessions = {{5, 1}, {6, 2}, {7, 2}};
    const struct {
        DWORD console;
        std::deque<DWORD> failing; ///< errors of OpenProcess
        const char* impersonated;
    } kCases[] = {{2, {}, "console"},  {1, {}, "remote"},  {kNoSession, {}, "remote"},
                  {3, {5}, "console"}, {2, {5}, "remote"}, {2, {5, 0, 5}, "safer"}};
    for (const auto& [console, failing, impersonated] : kCases) {
        m_tokens->consoleSession = console;
        m_tokens->errors["OpenProcess"] = failing;
        EXPECT_THAT(Impersonate(), ::testing::HasSubstr("Impersonate " + std::string(impersonated) + ";Revert;"));
    }
    EXPECT_TRUE(AutoLogged("GetExplorersToken: Passed over, since SYSTEM is no logged-on user: PID:0x7"));
}

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

} // namespace
} // namespace vantor
