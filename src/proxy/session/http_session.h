// Sessions: one for each way of reaching the service.
#pragma once

#include "proxy/auth/proxy_auth_scheme.h"
#include "run/log/operation_log.h"

#include <cstdint>
#include <memory>
#include <string>

namespace vantor {

using ProxyAuthSchemePtr = std::shared_ptr<CHTTPProxyAuthScheme>;

/// The direct session, and the interface of all.
class CHTTPSession {
public:
    /// The host outlives the session.
    explicit CHTTPSession(const ProxyHost& host) : m_host(host) {}
    virtual ~CHTTPSession() = default;
    CHTTPSession(const CHTTPSession&) = delete;
    CHTTPSession& operator=(const CHTTPSession&) = delete;

    /// Opens a WinHTTP session and returns its handle, null on failure. A session through a named proxy overwrites
    /// *timeout (milliseconds) with proxyTimeout when both the pointer and that value are there.
    virtual HINTERNET Open(std::uint32_t* timeout, std::uint32_t proxyTimeout);

    /// Prepares a request to the URL for one attempt with the scheme, which may be null. False on failure.
    virtual bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                             const ProxyAuthSchemePtr& scheme);

    /// Cleans up after the attempt. False on failure.
    virtual bool CleanRequest(const ProxyAuthSchemePtr& scheme);

protected:
    const ProxyHost& Host() const { return m_host; }
    OperationLog Log(const char* operation) const { return {m_host.logger, operation}; }

    /// Logs a class's own name, as constructors do.
    void LogName(const char* constructor) const;

private:
    const ProxyHost& m_host;
};

/// Base of the sessions through a proxy: requests are prepared by the authentication scheme.
class CHTTPSessionProxy : public CHTTPSession {
public:
    explicit CHTTPSessionProxy(const ProxyHost& host);

    /// Fails without a scheme.
    bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                     const ProxyAuthSchemePtr& scheme) override;
    bool CleanRequest(const ProxyAuthSchemePtr& scheme) override;

protected:
    /// CleanRequest under the name of the class that answers for it.
    bool CleanWith(const ProxyAuthSchemePtr& scheme, const OperationLog& log) const;
};

} // namespace vantor
