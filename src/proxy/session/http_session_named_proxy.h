// The session through a proxy that the configuration names.
#pragma once

#include "proxy/session/http_session.h"

namespace vantor {

/// Opens with the configured proxy, whose name is first resolved through the configured DNS server when there is one.
class CHTTPSessionNamedProxy : public CHTTPSessionProxy {
public:
    explicit CHTTPSessionNamedProxy(const ProxyHost& host);

    /// Sets *timeout also when opening fails. A proxy that cannot be resolved is ERROR_WINHTTP_NAME_NOT_RESOLVED.
    HINTERNET Open(std::uint32_t* timeout, std::uint32_t proxyTimeout) override;

    /// Stores the proxy to use in *name: the configured address as it is, or, with a DNS server, the IPv4 address that
    /// this server knows for it, without a port. False, with nothing stored, when name is null or a lookup fails.
    bool DetermineProxyName(std::wstring* name) const;
};

} // namespace vantor
