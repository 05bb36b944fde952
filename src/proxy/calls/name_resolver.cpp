#include <winsock2.h> // before any other header that brings in windows.h

#include "proxy/calls/name_resolver.h"

#include "platform/modules/dnsapi.h"
#include "platform/modules/ws2_32.h"

#include <ws2tcpip.h>

#include <iterator>

namespace vantor {

std::string WindowsNameResolver::Missing()
{
    for (SystemModule* const module : {&dnsapi::module, &ws2_32::module}) {
        if (std::string missing = module->FindMissing(); !missing.empty()) {
            return missing;
        }
    }
    return {};
}

std::optional<std::uint32_t> FirstAddress(const DNS_RECORD* records)
{
    for (const DNS_RECORD* record = records; record; record = record->pNext) {
        if (record->wType == DNS_TYPE_A) {
            return record->Data.A.IpAddress;
        }
    }
    return std::nullopt;
}

NameAnswer WindowsNameResolver::QueryAddress(const std::wstring& name, std::optional<std::uint32_t> server)
{
    IP4_ARRAY servers{1, {server.value_or(0)}};
    PDNS_RECORD records = nullptr;
    NameAnswer answer;
    answer.status = static_cast<std::uint32_t>(dnsapi::DnsQuery_W(name.c_str(), DNS_TYPE_A, DNS_QUERY_BYPASS_CACHE,
                                                                  server ? &servers : nullptr, &records, nullptr));
    if (answer.status == ERROR_SUCCESS) {
        answer.address = FirstAddress(records);
        dnsapi::DnsFree(records, DnsFreeRecordList);
    }
    return answer;
}

std::optional<std::wstring> WindowsNameResolver::ToText(std::uint32_t address)
{
    wchar_t text[16]; // "255.255.255.255"
    if (!ws2_32::InetNtopW(AF_INET, &address, text, std::size(text))) {
        return std::nullopt;
    }
    return text;
}

} // namespace vantor
