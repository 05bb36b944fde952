#include "proxy/user/user_impersonation.h"

#include "support/proxy_test.h"

namespace vantor {

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

} // namespace vantor
