// Resolving the named proxy through the configured DNS server.
#pragma once

#include <windows.h>

#include <windns.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vantor {

/// Result of a query for a name's IPv4 address.
struct NameAnswer {
    std::uint32_t status = 0;             ///< DNS_STATUS of DnsQuery_W; 0 for success
    std::optional<std::uint32_t> address; ///< of the first A record, in network byte order; empty if there is none
};

/// The functions of dnsapi.dll and ws2_32.dll, which are bound on first use.
class INameResolver {
public:
    virtual ~INameResolver() = default;

    /// The first of the functions below that this version of Windows lacks; empty if none. Check this before the
    /// others.
    virtual std::string Missing() = 0;

    /// DnsQuery_W for A records, bypassing the resolver's cache. Asks only this server (an IPv4 address in network byte
    /// order), or without one the system's servers.
    virtual NameAnswer QueryAddress(const std::wstring& name, std::optional<std::uint32_t> server) = 0;

    /// InetNtopW: the address in dotted form; std::nullopt on failure.
    virtual std::optional<std::wstring> ToText(std::uint32_t address) = 0;
};

/// The address of the first A record in a list from DnsQuery_W, which may be null. The first record need not be an A
/// record, because an alias comes before the address it stands for.
std::optional<std::uint32_t> FirstAddress(const DNS_RECORD* records);

/// The implementation that calls Windows.
class WindowsNameResolver : public INameResolver {
public:
    std::string Missing() override;
    NameAnswer QueryAddress(const std::wstring& name, std::optional<std::uint32_t> server) override;
    std::optional<std::wstring> ToText(std::uint32_t address) override;
};

} // namespace vantor
