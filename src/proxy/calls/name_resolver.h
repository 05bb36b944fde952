// Looking up the named proxy through a name server of the configuration's choice.
#pragma once

#include <windows.h>

#include <windns.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vantor {

/// What came of a query for a name's IPv4 address.
struct NameAnswer {
    std::uint32_t status = 0;             ///< DNS_STATUS of DnsQuery_W; 0 for success
    std::optional<std::uint32_t> address; ///< of the first A record, in network byte order; nothing: there was none
};

/// The calls of dnsapi.dll and ws2_32.dll, which the program binds on first use.
class INameResolver {
public:
    virtual ~INameResolver() = default;

    /// What this Windows lacks of the functions below; empty: nothing. Ask before the first of the other calls.
    virtual std::string Missing() = 0;

    /// DnsQuery_W for A records, past the resolver's cache; from exactly this server (an IPv4 address in network byte
    /// order), or, without one, from those of the system.
    virtual NameAnswer QueryAddress(const std::wstring& name, std::optional<std::uint32_t> server) = 0;

    /// InetNtopW: the address in dotted form; nothing on failure.
    virtual std::optional<std::wstring> ToText(std::uint32_t address) = 0;
};

/// The address of the first A record of DnsQuery_W's list, which may be null. An alias comes before the address that it
/// stands for, so the first record need not be one.
std::optional<std::uint32_t> FirstAddress(const DNS_RECORD* records);

/// The one that asks Windows.
class WindowsNameResolver : public INameResolver {
public:
    std::string Missing() override;
    NameAnswer QueryAddress(const std::wstring& name, std::optional<std::uint32_t> server) override;
    std::optional<std::wstring> ToText(std::uint32_t address) override;
};

} // namespace vantor
