// WinHTTP as its documentation describes it, by a script that records what is asked. Each rule names its source: the page
// on that function or subject in Microsoft's documentation, or an RFC.
#pragma once

#include "platform/text/encoding.h"
#include "proxy/calls/proxy_discovery.h"
#include "telemetry/winhttp/http_interface.h"

#include <wincrypt.h>

#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <cwchar>
#include <deque>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vantor {

/// What all scripted calls of a test share.
struct ScriptedWorld {
    std::string calls;  ///< every call in order, whoever took it
    std::string actsAs; ///< whom the thread impersonates; empty: nobody
};
inline ScriptedWorld g_world;

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
        g_world.calls += call.str() + ";";
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

/// A proxy that may ask for a logon, or refuse to build tunnels.
struct ScriptedProxy {
    DWORD offers = 0;  ///< WINHTTP_AUTH_SCHEME_ bits; 0: it wants no logon
    DWORD accepts = 0; ///< those of them for which the credentials are right
    int legs = 0;      ///< how many sends of a right logon come before the one that gets through
    DWORD refusal = 0; ///< status instead of a tunnel; 0: none
};

class ScriptedHttp : public IHTTP, public CallScript {
public:
    ScriptedProxy proxy;
    DWORD status = 200;                         ///< of the server's replies
    std::deque<std::string> bodyPieces;         ///< of the reply, one a read
    PCCERT_CONTEXT serverCertificate = nullptr; ///< of the server; null: option 78 cannot be queried
    std::string ways;                           ///< of each send: "direct;", or the proxy's name
    int openHandles = 0;

    bool IsReady() override { return true; }
    BOOL CloseHandle(HINTERNET handle) override
    {
        openHandles -= 1;
        m_ways.erase(handle);
        m_requests.erase(handle);
        return Call("CloseHandle", reinterpret_cast<std::uintptr_t>(handle));
    }
    BOOL QueryOption(HINTERNET handle, DWORD option, void* buffer, DWORD*) override
    {
        if (option == WINHTTP_OPTION_SERVER_CERT_CONTEXT) {
            // Whatever but 2xx answers CONNECT, there is no tunnel, so no server shows a certificate (RFC 9110, 9.3.6).
            if (!serverCertificate || m_requests[handle].proxysStatus) {
                return FALSE; // as WinHTTP does it: the last error stays
            }
            *static_cast<PCCERT_CONTEXT*>(buffer) = ::CertDuplicateCertificateContext(serverCertificate);
        }
        return Call("QueryOption " + std::to_string(option));
    }
    HINTERNET Open(const wchar_t*, DWORD accessType, const wchar_t* name, const wchar_t*, DWORD) override
    {
        return name ? OpenHandle(Call("Open", accessType, ToNarrow(name)), ToNarrow(name))
                    : OpenHandle(Call("Open", accessType), {});
    }
    BOOL SetTimeouts(HINTERNET, int resolve, int connect, int send, int receive) override
    {
        return Call("SetTimeouts", resolve, connect, send, receive);
    }
    HINTERNET Connect(HINTERNET session, const wchar_t* server, INTERNET_PORT port, DWORD) override
    {
        return OpenHandle(Call("Connect", ToNarrow(server), port), m_ways[session]);
    }
    BOOL SetOption(HINTERNET handle, DWORD option, void* buffer, DWORD length) override
    {
        const std::string name = "SetOption " + std::to_string(option);
        if (option == WINHTTP_OPTION_PROXY) {
            // The bypass list is NULL or holds something (WinHttpOpen). The option counts on the handle that it is set on
            // and on those opened from it later (Option Flags, WINHTTP_OPTION_PROXY).
            const auto& info = *static_cast<WINHTTP_PROXY_INFO*>(buffer);
            EXPECT_FALSE(info.lpszProxyBypass && !*info.lpszProxyBypass) << "an empty bypass list";
            m_ways[handle] = info.lpszProxy ? ToNarrow(info.lpszProxy) : "";
            return Call(name, info.dwAccessType, TextOrDash(info.lpszProxy), TextOrDash(info.lpszProxyBypass));
        }
        return length == sizeof(DWORD) ? Call(name, *static_cast<DWORD*>(buffer)) : Call(name, "size", length);
    }
    HINTERNET OpenRequest(HINTERNET connection, const wchar_t* verb, const wchar_t* object, const wchar_t*,
                          const wchar_t*, const wchar_t**, DWORD flags) override
    {
        return OpenHandle(Call("OpenRequest", ToNarrow(verb), ToNarrow(object), flags), m_ways[connection]);
    }
    BOOL AddRequestHeaders(HINTERNET, const wchar_t* headers, DWORD, DWORD) override
    {
        return Call("AddRequestHeaders", ToNarrow(headers));
    }
    BOOL SendRequest(HINTERNET handle, const wchar_t*, DWORD, void* data, DWORD length, DWORD, DWORD_PTR) override
    {
        const std::string& way = m_ways[handle];
        ways += (way.empty() ? "direct" : way) + ";";
        calls += g_world.actsAs.empty() ? "" : "As " + g_world.actsAs + ";"; // sends with that user's rights
        Request& request = m_requests[handle];
        // WinHTTP keeps no credentials: they serve one send of their handle (WinHttpSetCredentials).
        const DWORD credentials = std::exchange(request.credentials, 0);
        request.proxysStatus = way.empty() ? std::nullopt : ProxysAnswer(credentials);
        // A logon of several steps asks for the whole request again (WinHttpSendRequest, ERROR_WINHTTP_RESEND_REQUEST).
        const bool isLeg = !way.empty() && proxy.offers && !request.proxysStatus && request.legs++ < proxy.legs;
        BOOL sent = Call("SendRequest", std::string(static_cast<char*>(data), length));
        if (!sent && ::GetLastError() == ERROR_WINHTTP_LOGIN_FAILURE && !way.empty()) {
            request.proxysStatus = 0; // the answer is lost
        } else if (sent && isLeg) {
            ::SetLastError(ERROR_WINHTTP_RESEND_REQUEST);
            sent = FALSE;
        }
        return sent;
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
        *supported = proxy.offers;
        *first = 2;
        *target = WINHTTP_AUTH_TARGET_PROXY;
        return Call("QueryAuthSchemes");
    }
    BOOL SetCredentials(HINTERNET handle, DWORD target, DWORD scheme, const wchar_t* user, const wchar_t* pass,
                        void*) override
    {
        m_requests[handle].credentials = scheme;
        return Call("SetCredentials", target, scheme, ToNarrow(user), ToNarrow(pass));
    }
    BOOL QueryHeaders(HINTERNET handle, DWORD level, const wchar_t*, void* buffer, DWORD* length, DWORD*) override
    {
        if (level == (WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER)) {
            const DWORD answered = m_requests[handle].proxysStatus.value_or(status);
            *static_cast<DWORD*>(buffer) = answered;
            return Call("QueryHeaders status") && (answered != 0 || (::SetLastError(12019), FALSE));
        }
        *length = buffer ? DWORD{0} : DWORD{sizeof(wchar_t)}; // just the end of the text
        ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return buffer && Call("QueryHeaders block");
    }

private:
    struct Request {
        DWORD credentials = 0; ///< scheme of those set for the next send
        int legs = 0;
        std::optional<DWORD> proxysStatus; ///< in the place of the server's; 0: there is none
    };

    HINTERNET OpenHandle(BOOL succeeds, const std::string& way)
    {
        if (!succeeds) {
            return nullptr;
        }
        openHandles += 1;
        const auto handle = reinterpret_cast<HINTERNET>(++m_lastHandle);
        m_ways[handle] = way;
        return handle;
    }

    /// The status with which the proxy answers CONNECT; that of a refusal becomes the request's (RFC 9110, 9.3.6).
    std::optional<DWORD> ProxysAnswer(DWORD credentials) const
    {
        const bool isAsked = proxy.offers && !(credentials & proxy.accepts);
        return proxy.refusal ? std::optional(proxy.refusal) : isAsked ? std::optional<DWORD>(407) : std::nullopt;
    }

    std::uintptr_t m_lastHandle = 0;
    std::map<HINTERNET, std::string> m_ways; ///< the proxy of each handle; empty: none
    std::map<HINTERNET, Request> m_requests;
};

class ScriptedDiscovery : public IProxyDiscovery, public CallScript {
public:
    BOOL GetProxyForUrl(HINTERNET, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                        WINHTTP_PROXY_INFO& info) override
    {
        // A flag that a Windows does not know is refused; means of detection go with detection alone
        // (WinHttpGetProxyForUrl, WINHTTP_AUTOPROXY_OPTIONS).
        const bool isOutside = options.dwFlags & WINHTTP_AUTOPROXY_RUN_OUTPROCESS_ONLY;
        if (isOutside && !knowsOutside) {
            ::SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
        }
        const bool detects = options.dwFlags & WINHTTP_AUTOPROXY_AUTO_DETECT;
        EXPECT_EQ(detects, options.dwAutoDetectFlags != 0);
        inside += !isOutside;
        const BOOL found = Call(detects ? "Detect" : "Script", ToNarrow(url), options.dwAutoDetectFlags,
                                TextOrDash(options.lpszAutoConfigUrl));
        return found && (info = {WINHTTP_ACCESS_TYPE_NAMED_PROXY, Allocate(L"p"), nullptr}, TRUE);
    }
    BOOL GetUserProxyConfig(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG& config) override
    {
        const auto& [script, proxy, bypass] = user.at(0); // throws when the test gives none
        if (!Call("User")) {
            return FALSE;
        }
        // They are those of the user whom the thread acts as; a system account has none
        // (WinHttpGetIEProxyConfigForCurrentUser).
        if (g_world.actsAs.empty()) {
            ::SetLastError(ERROR_FILE_NOT_FOUND);
            return FALSE;
        }
        config = {FALSE, Allocate(script), Allocate(proxy), Allocate(bypass)};
        return TRUE;
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
    bool knowsOutside = true; ///< how to run scripts outside this process
    int inside = 0;           ///< how often this process was to run them

private:
    static LPWSTR Allocate(const wchar_t* text)
    {
        const std::size_t bytes = text ? (std::wcslen(text) + 1) * sizeof(wchar_t) : 0;
        return text ? static_cast<LPWSTR>(std::memcpy(::GlobalAlloc(GMEM_FIXED, bytes), text, bytes)) : nullptr;
    }
};

} // namespace vantor
