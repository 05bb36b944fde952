// The payload builder: the client's identifiers and the body of the POST.
#pragma once

#include "health/record/report.h"

#include <cstdint>
#include <span>
#include <string>

namespace vantor {

/// Reads the identifiers that a report carries, once, and builds the body. An identifier that cannot be read is empty.
class VRIREST {
public:
    VRIREST();
    ~VRIREST();
    VRIREST(const VRIREST&) = delete;
    VRIREST& operator=(const VRIREST&) = delete;

    /// Marks the request as a test, with "ro":true.
    void SetReadOnly() { m_readOnlyMarker = L"1"; }

    /// The service's host name; the one for IPv6 if the product prefers that.
    const std::wstring& ServiceHost() const { return m_serviceHost; }
    const std::wstring& UserAgent() const { return m_sdkv; }
    std::uint32_t TimeoutMillisec() const { return m_timeoutMillisec; }

    /// See CiSectionText.
    std::string CreateCiSection() const;

    /// The complete body, with the report in Base64 (CryptBinaryToStringA). Also logs it.
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
    std::wstring m_machineGuid; ///< not sent
    std::wstring m_serviceHost;
    std::uint32_t m_timeoutMillisec = 3000; ///< per step: an update must not wait long for a silent service
};

} // namespace vantor
