// Proxy authentication schemes.
#pragma once

#include "proxy/auth/proxy_host.h"
#include "run/log/logger.h"

#include <memory>

namespace vantor {

/// Base of all schemes, which sets nothing on the request. All messages are at trace level.
class CHTTPProxyAuthScheme {
public:
    virtual ~CHTTPProxyAuthScheme() = default;
    CHTTPProxyAuthScheme(const CHTTPProxyAuthScheme&) = delete;
    CHTTPProxyAuthScheme& operator=(const CHTTPProxyAuthScheme&) = delete;

    /// Prepares the request for one attempt; false on failure.
    virtual bool InitRequest(const ProxyHost& host, HttpRequest& request);

    /// Reverts what InitRequest changed on the thread; false on failure.
    virtual bool CleanRequest();

protected:
    /// Logs the message under the name of the derived class's constructor.
    CHTTPProxyAuthScheme(std::shared_ptr<ILogger> logger, DWORD msScheme, const char* constructor, const char* message);

    /// Sets the configured user name and password on the request for this scheme; false on failure.
    bool SetCredentials(const ProxyHost& host, HttpRequest& request) const;

    const std::shared_ptr<ILogger>& Logger() const { return m_logger; }

private:
    std::shared_ptr<ILogger> m_logger;
    DWORD m_msScheme;
};

/// No authentication: REP_PROXY_AUTH_SCHEME_NONE.
class CHTTPProxyAuthNone : public CHTTPProxyAuthScheme {
public:
    explicit CHTTPProxyAuthNone(std::shared_ptr<ILogger> logger);
};

/// Base of the schemes that set the configured user name and password.
class CHTTPProxyAuthByPassword : public CHTTPProxyAuthScheme {
public:
    bool InitRequest(const ProxyHost& host, HttpRequest& request) override { return SetCredentials(host, request); }

protected:
    using CHTTPProxyAuthScheme::CHTTPProxyAuthScheme;
};

/// REP_PROXY_AUTH_SCHEME_BASIC with the configured credentials.
class CHTTPProxyAuthBasic : public CHTTPProxyAuthByPassword {
public:
    explicit CHTTPProxyAuthBasic(std::shared_ptr<ILogger> logger);
};

/// REP_PROXY_AUTH_SCHEME_NTLM with the configured credentials.
class CHTTPProxyAuthNTLM : public CHTTPProxyAuthByPassword {
public:
    explicit CHTTPProxyAuthNTLM(std::shared_ptr<ILogger> logger);
};

/// REP_PROXY_AUTH_SCHEME_KERBEROS with the configured credentials.
class CHTTPProxyAuthKerberos : public CHTTPProxyAuthByPassword {
public:
    explicit CHTTPProxyAuthKerberos(std::shared_ptr<ILogger> logger);
};

} // namespace vantor
