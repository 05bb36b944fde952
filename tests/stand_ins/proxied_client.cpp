// The program's own connection over the real Windows calls, with settings that no option of the program gives.
#include "platform/text/encoding.h"
#include "telemetry/http/http_connection.h"
#include "telemetry/winhttp/http_implementation.h"

#include <iostream>

namespace {

using namespace vantor;

/// Leaves out TLS: Wine shows no credentials to a proxy that is to build a tunnel.
class PlainHttp : public HttpImplementation {
public:
    using HttpImplementation::HttpImplementation;
    HINTERNET OpenRequest(HINTERNET connect, const wchar_t* verb, const wchar_t* objectName, const wchar_t*,
                          const wchar_t*, const wchar_t**, DWORD) override
    {
        return HttpImplementation::OpenRequest(connect, verb, objectName, nullptr, nullptr, nullptr, 0);
    }
};

} // namespace

/// proxied_client PORT PROXY DNS-SERVER USER PASSWORD: posts to http://localhost:PORT/1 and prints how that ended.
int main(int, char** argv)
{
    HttpConnectionSettings settings;
    settings.http = {L"localhost", static_cast<std::uint16_t>(std::stoi(argv[1])), L"Agent", 0};
    settings.proxy.m_address = ToWide(argv[2]);
    settings.proxy.m_dnsServer = ToWide(argv[3]);
    settings.proxy.m_username = ToWide(argv[4]);
    settings.proxy.m_password = ToWide(argv[5]);
    settings.proxy.m_repAuthSchemes = {REP_PROXY_AUTH_SCHEME_NTLM, REP_PROXY_AUTH_SCHEME_BASIC};
    settings.pinCertificates = false;
    settings.proxyCalls = WindowsProxyCalls();
    HttpConnection connection(std::move(settings), std::make_shared<PlainHttp>(nullptr), nullptr);
    HttpResponse response;
    connection.Query({L"/1", L"POST"}, {}, "body", response);
    std::cout << "error " << response.result << ", status " << response.status << std::endl;
}
