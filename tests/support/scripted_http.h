// Windows' name and token calls by a script that records what is asked, and the tests that share it.
#pragma once

#include "proxy/calls/name_resolver.h"
#include "proxy/calls/proxy_calls.h"
#include "proxy/calls/token_calls.h"
#include "support/recording_logger.h"
#include "support/scripted_winhttp.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <memory>
#include <ranges>
#include <sstream>

namespace vantor {

/// A name server; addresses become text as Windows does it.
class ScriptedResolver : public WindowsNameResolver {
public:
    std::string Missing() override { return missing; }
    NameAnswer QueryAddress(const std::wstring& name, std::optional<std::uint32_t> server) override
    {
        const auto answer = answers.find(name + (server ? L"@" + std::to_wstring(*server) : L""));
        return answer == answers.end() ? NameAnswer{9003, {}} : NameAnswer{0, answer->second};
    }
    std::optional<std::wstring> ToText(std::uint32_t address) override
    {
        return address ? WindowsNameResolver::ToText(address) : std::nullopt;
    }

    std::string missing;
    std::map<std::wstring, std::uint32_t> answers; ///< by "name" or "name@server"; 0 has no text
};

class ScriptedTokens : public ITokenCalls, public CallScript {
public:
    void LoadModules() override { Call("LoadModules"); }
    KernelHandle OpenThreadToken(DWORD access) override { return Token(Call("OpenThreadToken", access), "previous"); }
    BOOL ImpersonateLoggedOnUser(HANDLE token) override
    {
        const BOOL done = Call("Impersonate", names[token]);
        g_world.actsAs = done ? names[token] : g_world.actsAs;
        return done;
    }
    BOOL RevertToSelf() override { return Call("Revert") && (g_world.actsAs.clear(), TRUE); }
    KernelHandle DuplicateHandle(HANDLE) override { return Token(Call("Duplicate"), "supplied"); }
    ProcessList ListProcesses() override { return processes; }
    KernelHandle OpenProcess(DWORD access, DWORD id) override
    {
        return Token(Call("OpenProcess", access, id), users.contains(id) ? users[id] : "shell");
    }
    KernelHandle OpenProcessToken(HANDLE process, DWORD access) override
    {
        return Token(Call("OpenToken", access), names[process]);
    }
    DWORD ActiveConsoleSession() override { return consoleSession; }
    DWORD SessionOf(DWORD id) override { return sessions[id]; }
    bool IsSystem(HANDLE token) override { return names[token] == "system"; }
    BOOL SaferCreateLevel(DWORD scope, DWORD level, DWORD flags, SAFER_LEVEL_HANDLE&) override
    {
        return Call("CreateLevel", scope, level, flags);
    }
    KernelHandle SaferComputeTokenFromLevel(SAFER_LEVEL_HANDLE) override { return Token(Call("Compute"), "safer"); }
    BOOL SaferCloseLevel(SAFER_LEVEL_HANDLE) override { return Call("CloseLevel"); }
    void EndProcess() override { Call("EndProcess"); }

    ProcessList processes{{{4, 0, "system"}, {0x1f, 4, "explorer.exe"}}};
    std::map<HANDLE, std::string> names; ///< of every handle given
    std::map<DWORD, std::string> users;  ///< whose a process is, unless the shell's
    std::map<DWORD, DWORD> sessions;     ///< of a process, unless 0
    DWORD consoleSession = kNoSession;

private:
    KernelHandle Token(BOOL succeeds, const std::string& name)
    {
        SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE}; // tells it from a later one of its number
        KernelHandle handle(succeeds ? ::CreateEventW(&inherited, FALSE, FALSE, nullptr) : nullptr);
        return names[handle.Get()] = name, std::move(handle);
    }
};

/// The world of a test: a network that does what the test says, and the log.
class HttpTest : public ::testing::Test {
protected:
    bool Logged(std::string_view line) const { return m_log->Has(line); }

    /// How often exactly this call was made.
    auto Calls(const std::string& call) const
    {
        const auto isIt = [&call](const auto& made) { return std::ranges::equal(made, call); };
        return std::ranges::count_if(std::views::split(m_http->calls, ';'), isIt);
    }

    HttpTest()
    {
        g_world = {};
        m_tokens->errors["OpenThreadToken"].assign(100, ERROR_NO_TOKEN);
    }
    ~HttpTest()
    {
        DWORD flags = 0;
        for (const auto& [handle, name] : m_tokens->names) {
            EXPECT_FALSE(::GetHandleInformation(handle, &flags) && flags == HANDLE_FLAG_INHERIT)
                << "not closed: " << name;
        }
    }

    ProxyCalls Windows() const { return {m_discovery, m_resolver, m_tokens}; }

    std::shared_ptr<ScriptedHttp> m_http = std::make_shared<ScriptedHttp>();
    std::shared_ptr<ScriptedResolver> m_resolver = std::make_shared<ScriptedResolver>();
    std::shared_ptr<ScriptedTokens> m_tokens = std::make_shared<ScriptedTokens>();
    std::shared_ptr<ScriptedDiscovery> m_discovery = std::make_shared<ScriptedDiscovery>();
    std::shared_ptr<RecordingLogger> m_log = std::make_shared<RecordingLogger>();
};

} // namespace vantor
