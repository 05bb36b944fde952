// A call layer that follows a script and records what it is asked, and the tests that share it.
#pragma once

#include "platform/text.h"
#include "proxy/proxy_discovery.h"
#include "recording_logger.h"
#include "telemetry/http_interface.h"

#include <wincrypt.h>

#include <gmock/gmock.h>

#include <deque>
#include <map>
#include <memory>
#include <sstream>

namespace vantor {

/// Every call succeeds unless the script says otherwise. Handles are small numbers; what is open is counted.
class ScriptedHttp : public IHTTP {
public:
    /// Errors of an operation's next calls, front first; 0 lets that call succeed.
    std::map<std::string, std::deque<DWORD>> errors;
    DWORD status = 200;                         ///< of every reply
    std::deque<std::string> bodyPieces;         ///< of the reply, one a read
    PCCERT_CONTEXT serverCertificate = nullptr; ///< of the server; null: option 78 cannot be queried

    /// Each call as its name with the arguments that matter, and a semicolon.
    std::string calls;
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
    HINTERNET Open(const wchar_t*, DWORD accessType, const wchar_t*, const wchar_t*, DWORD) override
    {
        return OpenHandle(Call("Open", accessType));
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
        return length == sizeof(DWORD) ? Call(name, *static_cast<DWORD*>(buffer)) : Call(name, "size", length);
    }
    HINTERNET OpenRequest(HINTERNET, const wchar_t* verb, const wchar_t* object, const wchar_t*, const wchar_t*,
                          const wchar_t**, DWORD flags) override
    {
        return OpenHandle(Call("OpenRequest", ToNarrow(verb), ToNarrow(object), flags));
    }
    BOOL AddRequestHeaders(HINTERNET, const wchar_t* headers, DWORD, DWORD) override
    {
        return Call("AddRequestHeaders", ToNarrow(headers));
    }
    BOOL SendRequest(HINTERNET, const wchar_t*, DWORD, void* data, DWORD length, DWORD, DWORD_PTR) override
    {
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
    BOOL QueryAuthSchemes(HINTERNET, DWORD*, DWORD*, DWORD*) override { return Call("QueryAuthSchemes"); }
    BOOL SetCredentials(HINTERNET, DWORD, DWORD, const wchar_t*, const wchar_t*, void*) override
    {
        return Call("SetCredentials");
    }
    BOOL QueryHeaders(HINTERNET, DWORD level, const wchar_t*, void* buffer, DWORD* length, DWORD*) override
    {
        constexpr wchar_t kBlock[] = L"HTTP/1.1 200 OK\r\n\r\n";
        if (level == (WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER)) {
            *static_cast<DWORD*>(buffer) = status;
            return Call("QueryHeaders status");
        }
        *length = static_cast<DWORD>(sizeof(kBlock));
        if (!buffer) {
            ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        std::copy(std::begin(kBlock), std::end(kBlock), static_cast<wchar_t*>(buffer));
        *length = static_cast<DWORD>(sizeof(kBlock) - sizeof(wchar_t));
        return Call("QueryHeaders block");
    }

private:
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
        ::SetLastError(error);
        return error == ERROR_SUCCESS;
    }

    HINTERNET OpenHandle(BOOL succeeds)
    {
        openHandles += succeeds;
        return succeeds ? reinterpret_cast<HINTERNET>(++m_lastHandle) : nullptr;
    }

    std::uintptr_t m_lastHandle = 0;
};

/// Finds the proxy "p", allocated as WinHTTP does it, or fails.
class ScriptedDiscovery : public IProxyDiscovery {
public:
    BOOL GetProxyForUrl(HINTERNET, const wchar_t* url, WINHTTP_AUTOPROXY_OPTIONS& options,
                        WINHTTP_PROXY_INFO& info) override
    {
        asked.push_back(url);
        lastOptions = options;
        if (error != ERROR_SUCCESS) {
            ::SetLastError(error);
            return FALSE;
        }
        info.dwAccessType = WINHTTP_ACCESS_TYPE_NAMED_PROXY;
        info.lpszProxy = static_cast<LPWSTR>(::GlobalAlloc(GPTR, 2 * sizeof(wchar_t)));
        info.lpszProxy[0] = L'p';
        return TRUE;
    }

    std::vector<std::wstring> asked;
    WINHTTP_AUTOPROXY_OPTIONS lastOptions{};
    DWORD error = ERROR_SUCCESS;
};

/// The world of a test: a network that does what the test says, and the log.
class HttpTest : public ::testing::Test {
protected:
    using Lines = std::vector<std::string>;

    bool Logged(std::string_view line) const { return m_log->Has(line); }

    /// How often exactly this call was made.
    int Calls(const std::string& call) const
    {
        std::istringstream made(m_http->calls);
        int count = 0;
        for (std::string one; std::getline(made, one, ';');) {
            count += one == call;
        }
        return count;
    }

    std::shared_ptr<ScriptedHttp> m_http = std::make_shared<ScriptedHttp>();
    std::shared_ptr<ScriptedDiscovery> m_discovery = std::make_shared<ScriptedDiscovery>();
    std::shared_ptr<RecordingLogger> m_log = std::make_shared<RecordingLogger>();
};

} // namespace vantor
