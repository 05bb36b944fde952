// The client's connection over scripted calls, and the local authority's certificates.
#pragma once

#include "support/scripted_http.h"
#include "telemetry/http/http_connection.h"

#include <fstream>
#include <functional>
#include <iterator>

namespace vantor {

class HttpConnectionTest : public HttpTest {
protected:
    using Change = std::function<void(HttpConnectionSettings&)>;

    HttpConnectionTest() { m_discovery->errors["Detect"].assign(100, ERROR_WINHTTP_AUTODETECTION_FAILED); }

    /// The certificates of a PEM file of the local authority, such as "issuer-a".
    static std::vector<Certificate> LoadCertificates(const std::string& name)
    {
        std::ifstream file(std::string(VANTOR_PKI_DIRECTORY "/") + name + ".pem", std::ios::binary);
        const std::string pem(std::istreambuf_iterator<char>(file), {});
        std::vector<Certificate> certificates = ParseCertificates(pem, OperationLog(nullptr, ""));
        EXPECT_FALSE(certificates.empty()) << name;
        return certificates;
    }

    static void Pin(HttpConnectionSettings& settings)
    {
        settings.pinCertificates = true;
        settings.pinnedCertificates = LoadCertificates("issuers");
    }

    static void ForbidFallback(HttpConnectionSettings& settings)
    {
        settings.proxy.m_proxyTimeoutFallbackToDirect = false;
    }

    HttpConnection Connect(const Change& change = {})
    {
        HttpConnectionSettings settings;
        settings.http = {L"service.example", 443, L"Agent", 100};
        settings.timeouts = {1, 2, 3, 4};
        settings.proxy.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        settings.proxy.m_wpadDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DNS_A;
        settings.proxy.m_proxyTimeoutFallbackToDirect = true;
        settings.pinCertificates = false;
        settings.proxyCalls = Windows();
        if (change) {
            change(settings);
        }
        return HttpConnection(std::move(settings), m_http, m_log);
    }

    /// Queries over a new connection; the calls are those of the query and the closing.
    HttpResponse Query(const Change& change = {}, std::optional<std::string_view> body = "body")
    {
        HttpResponse response;
        HttpConnection connection = Connect(change);
        m_http->calls.clear();
        connection.Query({L"/1", L"POST"}, {}, body, response);
        return response;
    }
};

} // namespace vantor
