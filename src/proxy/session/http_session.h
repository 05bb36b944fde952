// The direct session, and the base of sessions through a proxy.
#pragma once

#include "proxy/auth/proxy_auth_scheme.h"
#include "run/log/operation_log.h"

#include <cstdint>
#include <memory>
#include <string>

namespace vantor {

using ProxyAuthSchemePtr = std::shared_ptr<CHTTPProxyAuthScheme>;

/// The direct session, and the interface of all sessions.
class CHTTPSession {
public:
    /// The host must outlive the session.
    explicit CHTTPSession(const ProxyHost& host) : m_host(host) {}
    virtual ~CHTTPSession() = default;
    CHTTPSession(const CHTTPSession&) = delete;
    CHTTPSession& operator=(const CHTTPSession&) = delete;

    /// Opens a WinHTTP session and returns its handle, null on failure. A session through a named proxy sets *timeout
    /// (milliseconds) to proxyTimeout if the pointer is not null and proxyTimeout is not 0.
    virtual HINTERNET Open(std::uint32_t* timeout, std::uint32_t proxyTimeout);

    /// Prepares a request to the URL for one attempt with the scheme, which may be null. False on failure.
    virtual bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                             const ProxyAuthSchemePtr& scheme);

    /// Cleans up after the attempt. False on failure.
    virtual bool CleanRequest(const ProxyAuthSchemePtr& scheme);

protected:
    const ProxyHost& Host() const { return m_host; }
    OperationLog Log(const char* operation) const { return {m_host.logger, operation}; }

    /// Logs the name of a constructor.
    void LogName(const char* constructor) const;

private:
    const ProxyHost& m_host;
};

/// Base of the sessions through a proxy, which leave preparing requests to the authentication scheme.
class CHTTPSessionProxy : public CHTTPSession {
public:
    explicit CHTTPSessionProxy(const ProxyHost& host);

    /// Fails if scheme is null.
    bool InitRequest(HINTERNET session, HttpRequest& request, const std::wstring& url,
                     const ProxyAuthSchemePtr& scheme) override;
    bool CleanRequest(const ProxyAuthSchemePtr& scheme) override;

protected:
    /// CleanRequest with the derived class's log.
    bool CleanWith(const ProxyAuthSchemePtr& scheme, const OperationLog& log) const;
};

} // namespace vantor
