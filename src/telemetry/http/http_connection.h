// The client's one connection to the service: sessions, whole queries, retries, and the fallback from a proxy.
#pragma once

#include "proxy/config/proxy_config.h"
#include "proxy/http_proxy_manager.h"
#include "proxy/proxy_auth_list_manager.h"
#include "telemetry/http/http_config.h"
#include "telemetry/request/certificate.h"
#include "telemetry/request/http_request.h"
#include "telemetry/winhttp/http_interface.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// Turns a body into its compressed bytes. The program has none of its own; without one bodies go out as they are.
class ICompressor {
public:
    virtual ~ICompressor() = default;
    virtual std::string Compress(std::string_view body) = 0;
};

/// Everything that a connection is built from.
struct HttpConnectionSettings {
    HttpConfig http;
    HttpTimeouts timeouts;
    ProxyConfig proxy;
    bool pinCertificates = true;
    std::vector<Certificate> pinnedCertificates;
    std::shared_ptr<ICompressor> compressor; ///< may be empty
    ProxyCalls proxyCalls;
};

/// Which object a query asks for, and how.
struct HttpTarget {
    std::wstring objectName; ///< path of the URL
    std::wstring verb;
};

/// Owns the WinHTTP session and connection handles. Errors are WinHTTP error codes, 0 for success. One query at a
/// time, from one thread.
class HttpConnection : public IRequestHost {
public:
    /// Opens the connection. Throws std::runtime_error when there is no call layer or when opening fails.
    HttpConnection(HttpConnectionSettings settings, std::shared_ptr<IHTTP> http, std::shared_ptr<ILogger> logger);
    ~HttpConnection() override;
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;

    /// Closes what is open, then opens session and connection anew, TLS 1.2 only. After a failure nothing is open.
    DWORD Reset() override;

    /// Sends one request and reads its answer; falls back from a proxy to a direct connection once, when it is
    /// allowed and the proxy cannot be reached. The error code is left in response.result.
    void Query(const HttpTarget& target, HttpHeaders headers, std::optional<std::string_view> body,
               HttpResponse& response);

    /// Sends one request, again for each proxy authentication scheme that the proxy asks to try. On success the
    /// request is left open in request, its answer received; a server whose certificate no pinned issuer signed is
    /// ERROR_WINHTTP_SECURE_FAILURE.
    virtual DWORD SendRequest(std::unique_ptr<HttpRequest>& request, const HttpTarget& target,
                              const HttpHeaders& headers, std::optional<std::string_view> body);

    /// 0 while the connection is open, ERROR_WINHTTP_INCORRECT_HANDLE_STATE otherwise.
    DWORD CheckConnection() const;

    /// Closes both handles; false when one did not close.
    bool Close();

    HINTERNET ConnectionHandle() const override { return m_hConnection; }
    bool IsPinningCertificates() const override { return m_settings.pinCertificates; }
    std::span<const Certificate> PinnedCertificates() const override { return m_settings.pinnedCertificates; }

private:
    /// What came of one attempt to send.
    struct Attempt {
        DWORD result;
        bool again; ///< the proxy asks for another scheme that was not tried yet
    };

    OperationLog Log(const char* operation) const { return {m_logger, operation}; }
    std::unique_ptr<HttpRequest> CreateRequest(const HttpTarget& target);
    DWORD OpenHandles(const OperationLog& log);
    Attempt SendAttempt(std::unique_ptr<HttpRequest>& request, C_HTTPProxyAuthListManager& schemes,
                        const HttpTarget& target, const HttpHeaders& headers, std::optional<std::string_view> body,
                        const OperationLog& log);
    Exchange SendPrepared(HttpRequest& request, const HttpHeaders& headers, std::optional<std::string_view> body,
                          const OperationLog& log);

    std::mutex m_resetMutex;
    HINTERNET m_hSession = nullptr;
    HINTERNET m_hConnection = nullptr;
    HttpConnectionSettings m_settings;
    std::shared_ptr<IHTTP> m_HttpInterface;
    std::shared_ptr<ILogger> m_logger;
    CHTTPProxyManager m_proxyManager;
};

} // namespace vantor
