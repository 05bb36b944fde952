// Windows' network, proxy and token calls by a script that records what is asked, and the tests that share it.
#pragma once

#include "platform/text.h"
#include "proxy/calls/name_resolver.h"
#include "proxy/calls/proxy_calls.h"
#include "proxy/calls/proxy_discovery.h"
#include "proxy/calls/token_calls.h"
#include "support/recording_logger.h"
#include "telemetry/winhttp/http_interface.h"

#include <wincrypt.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <ranges>
#include <set>
#include <sstream>

extern "C" {
extern decltype(&::GlobalAlloc) __imp_GlobalAlloc; // the test program's import table
extern decltype(&::GlobalFree) __imp_GlobalFree;
}

namespace vantor {

/// Every GlobalAlloc of the test program that it did not free yet. Its imports are redirected at its start.
inline std::set<HGLOBAL> g_globalMemory;
inline const bool g_globalMemoryIsWatched = [] {
    DWORD protection = 0;
    ::VirtualProtect(&__imp_GlobalAlloc, sizeof(void*), PAGE_READWRITE, &protection);
    __imp_GlobalAlloc = [](UINT, SIZE_T bytes) -> HGLOBAL {
        return *g_globalMemory.insert(::HeapAlloc(::GetProcessHeap(), 0, bytes)).first;
    };
    ::VirtualProtect(&__imp_GlobalFree, sizeof(void*), PAGE_READWRITE, &protection);
    __imp_GlobalFree = [](HGLOBAL memory) -> HGLOBAL {
        EXPECT_EQ(g_globalMemory.erase(memory), 1u) << "freed twice, or never given";
        return ::HeapFree(::GetProcessHeap(), 0, memory) ? nullptr : memory;
    };
    return true;
}();

constexpr DWORD kUntold = ~0ul; ///< in a script, a failure that leaves no error

/// Calls that succeed unless the script says otherwise, recorded.
class CallScript {
public:
    /// Errors of an operation's next calls, front first; 0 lets that call succeed.
    std::map<std::string, std::deque<DWORD>> errors;

    /// Each call as its name with the arguments that matter, and a semicolon.
    std::string calls;

protected:
    template <typename... Arguments>
    BOOL Call(const std::string& name, const Arguments&... arguments)
    {
        std::ostringstream call;
        call << name;
        ((call << ' ' << arguments), ...);
        calls += call.str() + ";";
        auto& script = errors[name];
        if (script.empty()) {
            return TRUE;
        }
        const DWORD error = script.front();
        script.pop_front();
        ::SetLastError(error == kUntold ? ERROR_SUCCESS : error);
        return error == ERROR_SUCCESS;
    }

    static std::string TextOrDash(const wchar_t* text) { return text ? ToNarrow(text) : "-"; }
};

class ScriptedHttp : public IHTTP, public CallScript {
public:
    std::deque<DWORD> statuses;                 ///< of the next sends' replies; 0: there is none
    DWORD status = 200;                         ///< of every reply after them
    DWORD proxySchemes = 0;                     ///< that the proxy offers
    std::deque<std::string> bodyPieces;         ///< of the reply, one a read
    PCCERT_CONTEXT serverCertificate = nullptr; ///< of the server; null: option 78 cannot be queried
    int openHandles = 0;

    bool IsReady() override { return true; }
    BOOL CloseHandle(HINTERNET handle) override
    {
        openHandles -= 1;
        return Call("CloseHandle", reinterpret_cast<std::uintptr_t>(handle));
    }
    BOOL QueryOption(HINTERNET, DWORD option, void* buffer, DWORD*) override
    {
        if (option == WINHTTP_OPTION_SERVER_CERT_CONTEXT) {
            if (!serverCertificate) {
                return FALSE; // as WinHTTP does it: the last error stays
            }
            *static_cast<PCCERT_CONTEXT*>(buffer) = ::CertDuplicateCertificateContext(serverCertificate);
        }
        return Call("QueryOption " + std::to_string(option));
    }
    HINTERNET Open(const wchar_t*, DWORD accessType, const wchar_t* proxy, const wchar_t*, DWORD) override
    {
        return OpenHandle(proxy ? Call("Open", accessType, ToNarrow(proxy)) : Call("Open", accessType));
    }
    BOOL SetTimeouts(HINTERNET, int resolve, int connect, int send, int receive) override
    {
        return Call("SetTimeouts", resolve, connect, send, receive);
    }
    HINTERNET Connect(HINTERNET, const wchar_t* server, INTERNET_PORT port, DWORD) override
    {
        return OpenHandle(Call("Connect", ToNarrow(server), port));
    }
    BOOL SetOption(HINTERNET, DWORD option, void* buffer, DWORD length) override
    {
        const std::string name = "SetOption " + std::to_string(option);
        if (option == WINHTTP_OPTION_PROXY) {
            const auto& info = *static_cast<WINHTTP_PROXY_INFO*>(buffer);
            return Call(name, info.dwAccessType, TextOrDash(info.lpszProxy), TextOrDash(info.lpszProxyBypass));
        }
        return length == sizeof(DWORD) ? Call(name, *static_cast<DWORD*>(buffer)) : Call(name, "size", length);
    }
    HINTERNET OpenRequest(HINTERNET, const wchar_t* verb, const wchar_t* object, const wchar_t*, const wchar_t*,
                          const wchar_t**, DWORD flags) override
    {
        status = statuses.empty() ? status : 0;
        return OpenHandle(Call("OpenRequest", ToNarrow(verb), ToNarrow(object), flags));
    }
    BOOL AddRequestHeaders(HINTERNET, const wchar_t* headers, DWORD, DWORD) override
    {
        return Call("AddRequestHeaders", ToNarrow(headers));
    }
    BOOL SendRequest(HINTERNET, const wchar_t*, DWORD, void* data, DWORD length, DWORD, DWORD_PTR) override
    {
        if (!statuses.empty()) {
            status = statuses.front();
            statuses.pop_front();
        }
        return Call("SendRequest", std::string(static_cast<char*>(data), length));
    }
    BOOL ReceiveResponse(HINTERNET, void*) override { return Call("ReceiveResponse"); }
    BOOL QueryDataAvailable(HINTERNET, DWORD* available) override
    {
        *available = bodyPieces.empty() ? 0 : static_cast<DWORD>(bodyPieces.front().size());
        return Call("QueryDataAvailable");
    }
    BOOL ReadData(HINTERNET, void* buffer, DWORD toRead, DWORD* read) override
    {
        *read = static_cast<DWORD>(bodyPieces.front().copy(static_cast<char*>(buffer), toRead));
        bodyPieces.pop_front();
        return Call("ReadData");
    }
    BOOL WriteData(HINTERNET, const void*, DWORD, DWORD*) override { return Call("WriteData"); }
    WINHTTP_STATUS_CALLBACK SetStatusCallback(HINTERNET, WINHTTP_STATUS_CALLBACK, DWORD, DWORD_PTR) override
    {
        return nullptr;
    }
    BOOL QueryAuthSchemes(HINTERNET, DWORD* supported, DWORD* first, DWORD* target) override
    {
        *supported = proxySchemes;
        *first = 2;
        *target = WINHTTP_AUTH_TARGET_PROXY;
        return Call("QueryAuthSchemes");
    }
    BOOL SetCredentials(HINTERNET, DWORD target, DWORD scheme, const wchar_t* user, const wchar_t* pass, void*) override
    {
        return Call("SetCredentials", target, scheme, ToNarrow(user), ToNarrow(pass));
    }
    BOOL QueryHeaders(HINTERNET, DWORD level, const wchar_t*, void* buffer, DWORD* length, DWORD*) override
    {
        if (level == (WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER)) {
            *static_cast<DWORD*>(buffer) = status;
            return Call("QueryHeaders status") && (status != 0 || (::SetLastError(12019), FALSE));
        }
        *length = buffer ? DWORD{0} : DWORD{sizeof(wchar_t)}; // just the end of the text
        ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return buffer && Call("QueryHeaders block");
    }

private:
    HINTERNET OpenHandle(BOOL succeeds)
    {
        openHandles += succeeds;
        return succeeds ? reinterpret_cast<HINTERNET>(++m_lastHandle) : nullptr;
    }

    std::uintptr_t m_lastHandle = 0;
};

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

class ScriptedDiscovery : public IProxyDiscovery, public CallScript {
public:
    BOOL GetProxyForUrl(HINTERNET, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                        WINHTTP_PROXY_INFO& info) override
    {
        const BOOL found = Call(options.dwFlags == WINHTTP_AUTOPROXY_CONFIG_URL ? "Script" : "Detect", ToNarrow(url),
                                options.dwAutoDetectFlags, TextOrDash(options.lpszAutoConfigUrl));
        return found && (info = {WINHTTP_ACCESS_TYPE_NAMED_PROXY, Allocate(L"p"), nullptr}, TRUE);
    }
    BOOL GetUserProxyConfig(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG& config) override
    {
        const auto& [script, proxy, bypass] = user.at(0); // throws when the test gives none
        return Call("User") && (config = {FALSE, Allocate(script), Allocate(proxy), Allocate(bypass)}, TRUE);
    }
    BOOL GetDefaultProxyConfiguration(WINHTTP_PROXY_INFO& info) override
    {
        const DWORD type = machineProxy ? WINHTTP_ACCESS_TYPE_NAMED_PROXY : WINHTTP_ACCESS_TYPE_NO_PROXY;
        return Call("Machine") && (info = {type, Allocate(machineProxy), nullptr}, TRUE);
    }
    std::uint64_t TickCount() override { return ticks; }

    using UserSettings = std::array<const wchar_t*, 3>; ///< script, proxy, bypass
    std::vector<UserSettings> user;
    const wchar_t* machineProxy = nullptr;
    std::uint64_t ticks = 1;

private:
    static LPWSTR Allocate(const wchar_t* text)
    {
        const std::size_t bytes = text ? (std::wcslen(text) + 1) * sizeof(wchar_t) : 0;
        return text ? static_cast<LPWSTR>(std::memcpy(::GlobalAlloc(GMEM_FIXED, bytes), text, bytes)) : nullptr;
    }
};

class ScriptedTokens : public ITokenCalls, public CallScript {
public:
    void LoadModules() override { Call("LoadModules"); }
    KernelHandle OpenThreadToken(DWORD access) override { return Token(Call("OpenThreadToken", access), "previous"); }
    BOOL ImpersonateLoggedOnUser(HANDLE token) override { return Call("Impersonate", names[token]); }
    BOOL RevertToSelf() override { return Call("Revert"); }
    KernelHandle DuplicateHandle(HANDLE) override { return Token(Call("Duplicate"), "supplied"); }
    ProcessList ListProcesses() override { return processes; }
    KernelHandle OpenProcess(DWORD access, DWORD id) override { return Token(Call("OpenProcess", access, id), ""); }
    KernelHandle OpenProcessToken(HANDLE, DWORD access) override { return Token(Call("OpenToken", access), "shell"); }
    BOOL SaferCreateLevel(DWORD scope, DWORD level, DWORD flags, SAFER_LEVEL_HANDLE&) override
    {
        return Call("CreateLevel", scope, level, flags);
    }
    KernelHandle SaferComputeTokenFromLevel(SAFER_LEVEL_HANDLE) override { return Token(Call("Compute"), "safer"); }
    BOOL SaferCloseLevel(SAFER_LEVEL_HANDLE) override { return Call("CloseLevel"); }
    void EndProcess() override { Call("EndProcess"); }

    ProcessList processes{{{4, 0, "system"}, {0x1f, 4, "explorer.exe"}}};
    std::map<HANDLE, std::string> names; ///< of every handle given

private:
    KernelHandle Token(BOOL succeeds, const char* name)
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

    HttpTest() { m_tokens->errors["OpenThreadToken"].assign(100, ERROR_NO_TOKEN); }
    ~HttpTest()
    {
        DWORD flags = 0;
        for (const auto& [handle, name] : m_tokens->names) {
            EXPECT_FALSE(::GetHandleInformation(handle, &flags) && flags == HANDLE_FLAG_INHERIT)
                << "not closed: " << name;
        }
        EXPECT_TRUE(g_globalMemory.empty()) << "not freed";
    }

    ProxyCalls Windows() const { return {m_discovery, m_resolver, m_tokens}; }

    std::shared_ptr<ScriptedHttp> m_http = std::make_shared<ScriptedHttp>();
    std::shared_ptr<ScriptedResolver> m_resolver = std::make_shared<ScriptedResolver>();
    std::shared_ptr<ScriptedTokens> m_tokens = std::make_shared<ScriptedTokens>();
    std::shared_ptr<ScriptedDiscovery> m_discovery = std::make_shared<ScriptedDiscovery>();
    std::shared_ptr<RecordingLogger> m_log = std::make_shared<RecordingLogger>();
};

} // namespace vantor
