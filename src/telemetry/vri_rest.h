// The payload builder: who reports, and the body of the POST.
#pragma once

#include "health/record/report.h"

#include <cstdint>
#include <span>
#include <string>

namespace vantor {

/// Reads the identifiers that a report carries, once, and builds its body. One that cannot be read stays empty.
class VRIREST {
public:
    VRIREST();
    ~VRIREST();
    VRIREST(const VRIREST&) = delete;
    VRIREST& operator=(const VRIREST&) = delete;

    /// Marks the request as a test: it carries "ro":true.
    void SetReadOnly() { m_readOnlyMarker = L"1"; }

    /// The service's host name, over IPv6 when the product prefers it.
    const std::wstring& ServiceHost() const { return m_serviceHost; }
    const std::wstring& UserAgent() const { return m_sdkv; }
    std::uint32_t TimeoutMillisec() const { return m_timeoutMillisec; }

    /// The "ci" object, the outer object opened before it and left open.
    std::string CreateCiSection() const;

    /// The whole body with the report as Base64 text (CryptBinaryToStringA); logs it.
    std::string CreatePostData(std::span<const std::uint8_t> report) const;

private:
    void ReadIdentifiers();

    std::wstring m_affid = L"0";
    std::wstring m_cid;
    std::wstring m_cliid;
    std::wstring m_xpoid; ///< management-console id
    std::wstring m_prn;
    std::wstring m_pv;
    std::wstring m_rid;
    std::wstring m_readOnlyMarker = L"0";
    std::wstring m_sdkv;
    std::wstring m_machineGuid; ///< no request carries it
    std::wstring m_serviceHost;
    std::uint32_t m_timeoutMillisec =
        3000; ///< for each step of a request: an update must not wait for a silent service
};

} // namespace vantor
