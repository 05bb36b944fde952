#include "proxy/user/logged_on_user.h"

#include "support/proxy_test.h"

namespace vantor {

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

} // namespace vantor
