// A call layer that follows a script and records what it is asked.
#pragma once

#include "telemetry/http_interface.h"

#include <wincrypt.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace vantor {

/// Every call succeeds unless the script says otherwise. Handles are small numbers; what is open is counted.
class ScriptedHttp : public IHTTP {
public:
    /// Errors of an operation's next calls, front first; 0 lets that call succeed.
    std::map<std::string, std::deque<DWORD>> errors;
    std::deque<DWORD> statuses; ///< of the answers to the sends, one each; the last one stays
    std::wstring headerBlock = L"HTTP/1.1 200 OK\r\n\r\n";
    std::deque<std::string> bodyPieces;         ///< of the reply, one a read
    PCCERT_CONTEXT serverCertificate = nullptr; ///< of the server; null: option 78 cannot be queried
    DWORD offeredSchemes = 0;

    /// Each call as its name with the arguments that matter.
    std::vector<std::string> calls;
    int openHandles = 0;

    std::ptrdiff_t Count(const std::string& call) const { return std::count(calls.begin(), calls.end(), call); }

    bool IsReady() override { return true; }
    BOOL CloseHandle(HINTERNET handle) override
    {
        openHandles -= 1;
        return Call("CloseHandle", Number(handle));
    }
    BOOL QueryOption(HINTERNET, DWORD option, void* buffer, DWORD*) override
    {
        const std::string name = "QueryOption " + std::to_string(option);
        if (option == WINHTTP_OPTION_SERVER_CERT_CONTEXT) {
            if (!serverCertificate) {
                return FALSE; // as WinHTTP does it: the last error stays
            }
            *static_cast<PCCERT_CONTEXT*>(buffer) = ::CertDuplicateCertificateContext(serverCertificate);
        }
        return Call(name);
    }
    HINTERNET Open(const wchar_t*, DWORD accessType, const wchar_t*, const wchar_t*, DWORD) override
    {
        return OpenHandle("Open", std::to_string(accessType));
    }
    BOOL SetTimeouts(HINTERNET, int resolve, int connect, int send, int receive) override
    {
        return Call("SetTimeouts", std::to_string(resolve) + " " + std::to_string(connect) + " " +
                                       std::to_string(send) + " " + std::to_string(receive));
    }
    HINTERNET Connect(HINTERNET, const wchar_t* server, INTERNET_PORT port, DWORD) override
    {
        return OpenHandle("Connect", Narrow(server) + " " + std::to_string(port));
    }
    BOOL SetOption(HINTERNET, DWORD option, void* buffer, DWORD length) override
    {
        const bool isNumber = length == sizeof(DWORD);
        return Call("SetOption " + std::to_string(option),
                    isNumber ? std::to_string(*static_cast<DWORD*>(buffer)) : "size " + std::to_string(length));
    }
    HINTERNET OpenRequest(HINTERNET, const wchar_t* verb, const wchar_t* object, const wchar_t*, const wchar_t*,
                          const wchar_t**, DWORD flags) override
    {
        return OpenHandle("OpenRequest", Narrow(verb) + " " + Narrow(object) + " " + std::to_string(flags));
    }
    BOOL AddRequestHeaders(HINTERNET, const wchar_t* headers, DWORD, DWORD) override
    {
        return Call("AddRequestHeaders", Narrow(headers));
    }
    BOOL SendRequest(HINTERNET, const wchar_t*, DWORD, void* data, DWORD length, DWORD, DWORD_PTR) override
    {
        return Call("SendRequest", data ? std::string(static_cast<char*>(data), length) : "");
    }
    BOOL ReceiveResponse(HINTERNET, void*) override { return Call("ReceiveResponse"); }
    BOOL QueryDataAvailable(HINTERNET, DWORD* available) override
    {
        *available = bodyPieces.empty() ? 0 : static_cast<DWORD>(bodyPieces.front().size());
        return Call("QueryDataAvailable");
    }
    BOOL ReadData(HINTERNET, void* buffer, DWORD toRead, DWORD* read) override
    {
        std::memcpy(buffer, bodyPieces.front().data(), toRead);
        *read = toRead;
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
        *supported = offeredSchemes;
        *first = offeredSchemes & (~offeredSchemes + 1);
        *target = WINHTTP_AUTH_TARGET_PROXY;
        return Call("QueryAuthSchemes");
    }
    BOOL SetCredentials(HINTERNET, DWORD target, DWORD scheme, const wchar_t* user, const wchar_t* password,
                        void*) override
    {
        return Call("SetCredentials", std::to_string(target) + " " + std::to_string(scheme) + " " + Narrow(user) + " " +
                                          Narrow(password));
    }
    BOOL QueryHeaders(HINTERNET, DWORD level, const wchar_t*, void* buffer, DWORD* length, DWORD*) override
    {
        if (level == (WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER)) {
            *static_cast<DWORD*>(buffer) = statuses.empty() ? 200 : statuses.front();
            return Call("QueryHeaders status");
        }
        const auto size = static_cast<DWORD>(headerBlock.size() * sizeof(wchar_t));
        if (!buffer) {
            *length = size + sizeof(wchar_t);
            Call("QueryHeaders size");
            ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        std::memcpy(buffer, headerBlock.c_str(), size + sizeof(wchar_t));
        *length = size;
        return Call("QueryHeaders block");
    }

private:
    static std::string Number(HINTERNET handle) { return std::to_string(reinterpret_cast<std::uintptr_t>(handle)); }
    static std::string Narrow(const wchar_t* text)
    {
        std::string narrow;
        for (; text && *text; ++text) {
            narrow += static_cast<char>(*text);
        }
        return narrow;
    }

    BOOL Call(const std::string& name, const std::string& arguments = {})
    {
        calls.push_back(arguments.empty() ? name : name + " " + arguments);
        auto& script = errors[name];
        DWORD error = ERROR_SUCCESS;
        if (!script.empty()) {
            error = script.front();
            script.pop_front();
        }
        if (name == "SendRequest" && m_sent++ > 0 && statuses.size() > 1) {
            statuses.pop_front(); // the next attempt's answer
        }
        if (error != ERROR_SUCCESS) {
            ::SetLastError(error);
        }
        return error == ERROR_SUCCESS;
    }

    HINTERNET OpenHandle(const std::string& name, const std::string& arguments)
    {
        if (!Call(name, arguments)) {
            return nullptr;
        }
        openHandles += 1;
        return reinterpret_cast<HINTERNET>(static_cast<std::uintptr_t>(++m_lastHandle));
    }

    int m_lastHandle = 0;
    int m_sent = 0;
};

} // namespace vantor
