#include "telemetry/vri_rest.h"

#include "platform/modules/crypt32.h"
#include "platform/owner.h"
#include "platform/text/encoding.h"
#include "run/log/logging.h"
#include "run/product/brand.h"
#include "run/product/ipv6_preference.h"
#include "run/product/registry_values.h"
#include "service_endpoints.h"
#include "telemetry/payload_text.h"
#include "telemetry/winhttp/code_names.h"
#include "vantor_version.h"

#include <windows.h>

#include <wincrypt.h>

#include <cstring>

namespace vantor {
namespace {

struct CryptProviderPolicy {
    using Value = HCRYPTPROV;
    static Value None() noexcept { return 0; }
    static void Release(Value value) noexcept { ::CryptReleaseContext(value, 0); }
};

/// A random request id; 0 if Windows cannot provide random bytes.
std::int64_t GetRandomNextId()
{
    constexpr const char* kFailed = "GetRandomNextId, Query failed. WinHTTP error: ";

    Owner<CryptProviderPolicy> provider;
    if (!::CryptAcquireContextW(provider.Receive(), nullptr, nullptr, PROV_RSA_FULL,
                                CRYPT_VERIFYCONTEXT | CRYPT_SILENT)) {
        LogError(kFailed + NamedWinHttpError(::GetLastError()));
        return 0;
    }
    BYTE bytes[sizeof(std::int64_t)]{};
    if (!::CryptGenRandom(provider.Get(), sizeof(bytes), bytes)) {
        LogError(kFailed + NamedWinHttpError(::GetLastError()));
    }
    std::int64_t id = 0;
    std::memcpy(&id, bytes, sizeof(id)); // little-endian, like all versions of Windows
    return id;
}

/// The bytes in Base64 without line breaks; empty if encoding fails.
std::string ToBase64(std::span<const std::uint8_t> bytes)
{
    const auto size = static_cast<DWORD>(bytes.size());
    DWORD length = 0;
    if (!crypt32::CryptBinaryToStringA(bytes.data(), size, CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, nullptr,
                                       &length)) {
        return {};
    }
    std::string text(length, '\0');
    if (!crypt32::CryptBinaryToStringA(bytes.data(), size, CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, text.data(),
                                       &length)) {
        return {};
    }
    text.resize(length); // the second call does not count the final NUL
    return text;
}

} // namespace

VRIREST::VRIREST()
    : m_prn(IsConsumerProductInstalled() ? L"VANTor-HSQ" : L"VANTor-EPV"), m_pv(ToWide(VANTOR_PRODUCT_VERSION_TEXT)),
      m_sdkv(L"VXCore REST Client"), m_serviceHost(PrefersIpv6() ? kServiceHostIpv6 : kServiceHostIpv4)
{
    const ScopeTrace scope("VRIREST::VRIREST");
    m_rid = std::to_wstring(GetRandomNextId());
    ReadIdentifiers();
}

VRIREST::~VRIREST()
{
    const ScopeTrace scope("VRIREST::~VRIREST");
}

void VRIREST::ReadIdentifiers()
{
    constexpr std::size_t kBufferBytes = 510;

    m_cid = ReadText(registry::kCustomerId, kBufferBytes).value_or(L"");
    m_cliid = ReadText(registry::kClientId, kBufferBytes).value_or(L"");
    m_xpoid = ReadText(registry::kConsoleId, kBufferBytes).value_or(L"");
    m_machineGuid = ReadText(registry::kMachineGuid, kBufferBytes).value_or(L"");
}

std::string VRIREST::CreateCiSection() const
{
    const ScopeTrace scope("VRIREST::CreateCiSection");
    ClientIdentification client;
    client.affid = ToUtf8(m_affid);
    client.cid = ToUtf8(m_cid);
    client.cliid = ToUtf8(m_cliid);
    client.xpoid = ToUtf8(m_xpoid);
    client.prn = ToUtf8(m_prn);
    client.pv = ToUtf8(m_pv);
    client.rid = ToUtf8(m_rid);
    client.readOnlyMarker = ToUtf8(m_readOnlyMarker);
    client.sdkv = ToUtf8(m_sdkv);
    return CiSectionText(client);
}

std::string VRIREST::CreatePostData(std::span<const std::uint8_t> report) const
{
    const ScopeTrace scope("VRIREST::CreatePostData");
    std::string body = PostDataText(CreateCiSection(), ToBase64(report));
    LogTrace(body);
    return body;
}

} // namespace vantor
