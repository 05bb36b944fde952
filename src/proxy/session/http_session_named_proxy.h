// The session through a proxy that the configuration names.
#pragma once

#include "proxy/session/http_session.h"

namespace vantor {

/// Opens with the configured proxy, resolving its name through the configured DNS server if there is one.
class CHTTPSessionNamedProxy : public CHTTPSessionProxy {
public:
    explicit CHTTPSessionNamedProxy(const ProxyHost& host);

    /// Sets *timeout even if opening fails. The last error is ERROR_WINHTTP_NAME_NOT_RESOLVED if the proxy's name
    /// cannot be resolved.
    HINTERNET Open(std::uint32_t* timeout, std::uint32_t proxyTimeout) override;

    /// Stores the proxy to use in *name: the configured address as is, or, with a DNS server, the IPv4 address that the
    /// server gives for it, without a port. False, with *name unchanged, if name is null or a lookup fails.
    bool DetermineProxyName(std::wstring* name) const;
};

} // namespace vantor
