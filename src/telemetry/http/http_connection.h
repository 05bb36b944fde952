// The client's connection to the service: sessions, complete queries, retries, and the fallback from a proxy.
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

/// Compresses bodies with gzip. The program has no implementation; without one, bodies are sent uncompressed.
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

/// The object that a query requests, and the HTTP method.
struct HttpTarget {
    std::wstring objectName; ///< path of the URL
    std::wstring verb;
};

/// Owns the WinHTTP session and connection handles. Errors are WinHTTP error codes; 0 means success. Handles one query
/// at a time, from one thread.
class HttpConnection : public IRequestHost {
public:
    /// Opens the connection. Throws std::runtime_error if http is null or opening fails.
    HttpConnection(HttpConnectionSettings settings, std::shared_ptr<IHTTP> http, std::shared_ptr<ILogger> logger);
    ~HttpConnection() override;
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;

    /// Closes and reopens the session and the connection, with TLS 1.2 only. After a failure both are closed.
    DWORD Reset() override;

    /// Sends one request and reads its answer. Falls back from a proxy to a direct connection once, if that is allowed
    /// and the proxy cannot be reached. Stores the error code in response.result.
    void Query(const HttpTarget& target, HttpHeaders headers, std::optional<std::string_view> body,
               HttpResponse& response);

    /// Sends one request, repeating it for each authentication scheme that the proxy offers. On success request holds
    /// the open request, whose answer has been received. Fails with ERROR_WINHTTP_SECURE_FAILURE if no pinned issuer
    /// signed the server's certificate.
    virtual DWORD SendRequest(std::unique_ptr<HttpRequest>& request, const HttpTarget& target,
                              const HttpHeaders& headers, std::optional<std::string_view> body);

    /// 0 while the connection is open, ERROR_WINHTTP_INCORRECT_HANDLE_STATE otherwise.
    DWORD CheckConnection() const;

    /// Closes both handles; false if either fails to close.
    bool Close();

    HINTERNET ConnectionHandle() const override { return m_hConnection; }
    bool IsPinningCertificates() const override { return m_settings.pinCertificates; }
    std::span<const Certificate> PinnedCertificates() const override { return m_settings.pinnedCertificates; }

private:
    /// Result of one attempt to send.
    struct Attempt {
        DWORD result;
        bool again; ///< the proxy offers another scheme that was not tried yet
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
