#include "proxy/session/http_session_named_proxy.h"

#include "platform/owner.h"
#include "platform/text/encoding.h"
#include "proxy/calls/name_resolver.h"

#include <optional>

namespace vantor {
namespace {

/// The IPv4 address of a name; std::nullopt if the query finds none, which is logged.
std::optional<std::uint32_t> Query(INameResolver& resolver, const std::wstring& name,
                                   std::optional<std::uint32_t> server, const OperationLog& log)
{
    const NameAnswer answer = resolver.QueryAddress(name, server);
    if (!answer.address) {
        log.Trace("DnsQuery_W found no address of " + ToNarrow(name) + ", status=" + std::to_string(answer.status));
    }
    return answer.address;
}

} // namespace

CHTTPSessionNamedProxy::CHTTPSessionNamedProxy(const ProxyHost& host) : CHTTPSessionProxy(host)
{
    LogName("CHTTPSessionNamedProxy::CHTTPSessionNamedProxy");
}

HINTERNET CHTTPSessionNamedProxy::Open(std::uint32_t* timeout, std::uint32_t proxyTimeout)
{
    std::wstring name;
    HINTERNET session = nullptr;
    if (DetermineProxyName(&name)) {
        session = Host().http->Open(Host().userAgent.c_str(), WINHTTP_ACCESS_TYPE_NAMED_PROXY, name.c_str(),
                                    WINHTTP_NO_PROXY_BYPASS, 0);
        if (!session) {
            const LastErrorKeeper error;
            Log("CHTTPSessionNamedProxy::Open")
                .Error("Failed to open named proxy " + ToNarrow(name) + ", err=" + std::to_string(error.Error()));
        }
    } else {
        ::SetLastError(ERROR_WINHTTP_NAME_NOT_RESOLVED);
    }
    if (timeout && proxyTimeout != 0) {
        *timeout = proxyTimeout;
    }
    return session;
}

bool CHTTPSessionNamedProxy::DetermineProxyName(std::wstring* name) const
{
    const OperationLog log = Log("CHTTPSessionNamedProxy::DetermineProxyName");
    const ProxyConfig& config = Host().config;
    if (!name) {
        log.Trace("False, proxy address empty");
        return false;
    }
    if (config.m_dnsServer.empty()) {
        log.Trace("No DNS server provided, use configured proxy address as-is = " + ToNarrow(config.m_address));
        *name = config.m_address;
        return true;
    }

    INameResolver& resolver = *Host().calls.resolver;
    if (const std::string missing = resolver.Missing(); !missing.empty()) {
        log.Error("The proxy's name cannot be resolved: this Windows lacks " + missing);
        return false;
    }
    const std::optional<std::uint32_t> server = Query(resolver, config.m_dnsServer, std::nullopt, log);
    if (!server) {
        log.Trace("False, failed to obtain IP address for the DNS server itself.");
    }
    const std::optional<std::uint32_t> proxy = server ? Query(resolver, config.m_address, server, log) : std::nullopt;
    if (!proxy) {
        log.Trace("False, Failed to lookup proxyname via DNS server.");
        return false;
    }
    const std::optional<std::wstring> text = resolver.ToText(*proxy);
    if (!text) {
        log.Trace("False, Failed to convert IPv4  Internet network address into a string in Internet standard "
                  "format.");
        return false;
    }
    log.Trace("ProxyName = " + ToNarrow(*text));
    *name = *text;
    return true;
}

} // namespace vantor
