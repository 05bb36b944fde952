#include "telemetry/rest_telemetry.h"

#include "platform/modules/crypt32.h"
#include "platform/modules/winhttp.h"
#include "platform/registry.h"
#include "platform/text.h"
#include "proxy/config/proxy_settings.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "run/log/vantor_logging.h"
#include "service_endpoints.h"
#include "telemetry/http/http_connection.h"
#include "telemetry/request/pinned_issuers.h"
#include "telemetry/vri_rest.h"
#include "telemetry/winhttp/code_names.h"
#include "telemetry/winhttp/http_implementation.h"

#include <winhttp.h>

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace vantor {
namespace {

/// The largest body that the connection sends, in bytes: the largest report in Base64 with room for identifiers.
constexpr std::uint64_t kBodyLimitBytes = 65536;
constexpr std::uint32_t kSystemProxyLifeTimeMs = 60'000;

/// While this key exists, whatever it holds, reports go to a service on this machine.
bool IsLocalHostForced()
{
    return RegistryKey::OpenForReading(L"SOFTWARE\\Vexora\\AVSolution\\SetVriLocalHost").has_value();
}

HttpConfig MakeHttpConfig(const VRIREST& payload)
{
    HttpConfig config;
    const bool local = IsLocalHostForced();
    config.server = local ? L"localhost" : payload.ServiceHost();
    config.port = local ? 8000 : kServicePort;
    config.userAgent = payload.UserAgent();
    config.maxSize = kBodyLimitBytes;
    return config;
}

HttpTimeouts MakeTimeouts(std::uint32_t millisec)
{
    return {millisec, millisec, millisec, millisec};
}

ProxyConfig MakeProxyConfig(const RunConfig& config)
{
    ProxyConfig proxy;
    proxy.m_proxyTimeoutFallbackToDirect = true; // better one direct attempt than a pulse that is lost
    proxy.m_systemProxyLifeTime = kSystemProxyLifeTimeMs;
    if (!HasExplicitProxy(config)) {
        proxy.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        proxy.m_wpadDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
        proxy.m_wpadAutoLogon = true;
        proxy.m_systemProxyDiscovery = true; // where detection finds nothing
        return proxy;
    }
    proxy.m_address = ToWide(ProxyAddress(config));
    proxy.m_username = ToWide(ProxyUserName(config));
    proxy.m_password = ToWide(config.password);
    if (!proxy.m_username.empty()) { // strongest first
        proxy.m_repAuthSchemes = {REP_PROXY_AUTH_SCHEME_KERBEROS, REP_PROXY_AUTH_SCHEME_NTLM,
                                  REP_PROXY_AUTH_SCHEME_BASIC};
    }
    return proxy;
}

void LogField(const char* name, const std::wstring& value)
{
    LogTrace(name + (" = " + ToNarrow(value)));
}

template <typename Number>
    requires std::is_integral_v<Number>
void LogField(const char* name, Number value)
{
    LogTrace(name + (" = " + std::to_string(value)));
}

void LogField(const char* name, bool value)
{
    LogTrace(name + std::string(value ? " = true" : " = false"));
}

/// One line a field; the password as it is, in clear.
void LogConfiguration(const HttpConfig& http, const HttpTimeouts& timeouts, const ProxyConfig& proxy)
{
    LogField("HttpConfig.server", http.server);
    LogField("HttpConfig.port", http.port);
    LogField("HttpConfig.userAgent", http.userAgent);
    LogField("HttpConfig.maxSize", http.maxSize);
    LogField("HttpTimeouts.resolveTimeoutMillisec", timeouts.resolveTimeoutMillisec);
    LogField("HttpTimeouts.connectTimeoutMillisec", timeouts.connectTimeoutMillisec);
    LogField("HttpTimeouts.sendTimeoutMillisec", timeouts.sendTimeoutMillisec);
    LogField("HttpTimeouts.receiveTimeoutMillisec", timeouts.receiveTimeoutMillisec);
    LogField("ProxyConfig.m_address", proxy.m_address);
    LogTrace("ProxyConfig.m_currentUser = " + PointerText(proxy.m_currentUser));
    LogField("ProxyConfig.m_dnsServer", proxy.m_dnsServer);
    LogField((std::string("ProxyConfig.") + texts::kPasswordField).c_str(), proxy.m_password);
    LogField("ProxyConfig.m_proxyTimeout", proxy.m_proxyTimeout);
    LogField("ProxyConfig.m_proxyTimeoutFallbackToDirect", proxy.m_proxyTimeoutFallbackToDirect);
    for (std::size_t index = 0; index < proxy.m_repAuthSchemes.size(); ++index) {
        const std::string name = "ProxyConfig.m_repAuthSchemes[" + std::to_string(index) + "]";
        LogField(name.c_str(), proxy.m_repAuthSchemes[index]);
    }
    LogField("ProxyConfig.m_username", proxy.m_username);
    LogField("ProxyConfig.m_wpadAutoLogon", proxy.m_wpadAutoLogon);
    LogField("ProxyConfig.m_wpadConfigUrl", proxy.m_wpadConfigUrl);
    LogField("ProxyConfig.m_wpadDetectFlags", proxy.m_wpadDetectFlags);
    LogField("ProxyConfig.m_wpadFlags", proxy.m_wpadFlags);
}

/// Everything that one send needs; lives for that send.
class RESTTelemetry {
public:
    RESTTelemetry(bool httpLogging, const RunConfig& config);
    ~RESTTelemetry();
    RESTTelemetry(const RESTTelemetry&) = delete;
    RESTTelemetry& operator=(const RESTTelemetry&) = delete;

    VRIREST& Payload() { return *m_payload; }
    void Send(const std::uint8_t* data, std::size_t size);

private:
    void Configure(bool httpLogging, const RunConfig& config);

    std::optional<VRIREST> m_payload; ///< set by the constructor, inside its scope trace
    std::shared_ptr<HttpConnection> m_connection;
    bool m_initialised = false;
};

RESTTelemetry::RESTTelemetry(bool httpLogging, const RunConfig& config)
{
    const ScopeTrace scope(texts::kRestTelemetryConstructor);
    m_payload.emplace();
    try {
        Configure(httpLogging, config);
        m_initialised = true;
    } catch (const std::exception& error) {
        LogError(std::string(texts::kInitialiseFailed) + error.what());
    } catch (...) {
        LogError(texts::kInitialiseFailed + std::string("unknown exception."));
    }
}

RESTTelemetry::~RESTTelemetry()
{
    const ScopeTrace scope("RESTTelemetry::~RESTTelemetry");
    m_connection.reset();
    m_payload.reset();
}

void RESTTelemetry::Configure(bool httpLogging, const RunConfig& config)
{
    HttpConnectionSettings settings;
    settings.http = MakeHttpConfig(*m_payload);
    settings.timeouts = MakeTimeouts(m_payload->TimeoutMillisec());
    settings.proxy = MakeProxyConfig(config);

    const std::shared_ptr<ILogger> logger = httpLogging ? std::make_shared<LoggerImpl>() : nullptr;
    const auto http = std::make_shared<HttpImplementation>(logger);
    settings.proxyCalls = WindowsProxyCalls();
    settings.pinnedCertificates =
        ParseCertificates(PinnedIssuersPem(), OperationLog(logger, texts::kRestTelemetryConstructor));

    LogConfiguration(settings.http, settings.timeouts, settings.proxy);
    m_connection = std::make_shared<HttpConnection>(std::move(settings), http, logger);
}

void RESTTelemetry::Send(const std::uint8_t* data, std::size_t size)
{
    const ScopeTrace scope(texts::kRestTelemetrySend);
    if (!m_initialised) {
        LogError(texts::kSendTelemetryFailed + std::string(texts::kHttpNotInitialised));
        return;
    }
    if (!data || size == 0 || size > kReportLimitBytes) {
        LogError(texts::kSendTelemetryFailed + (texts::kInvalidArguments + PointerText(data)) +
                 ", size=" + std::to_string(size));
        return;
    }
    LogTrace(texts::kSendingBytes + std::to_string(size) + " bytes.");

    HttpResponse response;
    response.result = ERROR_NOT_READY;
    if (m_connection) {
        const std::string body = m_payload->CreatePostData({data, size});
        m_connection->Query({kReportPath, L"POST"}, {}, body, response);
    }
    const std::string failed = std::string(texts::kRestTelemetrySend) + ": " + texts::kSendTelemetryFailed;
    if (response.result != ERROR_SUCCESS) {
        LogError(failed + texts::kWinHttpError + NamedWinHttpError(response.result));
    } else if (response.status != HTTP_STATUS_OK) {
        LogError(failed + texts::kWinHttpStatus + std::to_string(response.status));
    }
}

/// True when every function that a send calls in delay-loaded modules is there; says what is missing otherwise.
bool HasTransport()
{
    for (SystemModule* const module : {&winhttp::module, &crypt32::module}) {
        if (const std::string missing = module->FindMissing(); !missing.empty()) {
            LogError(texts::kSendTelemetryFailed + (texts::kThisWindowsLacks + missing));
            return false;
        }
    }
    return true;
}

} // namespace

void SendTelemetry(std::span<const std::uint8_t> report, const RunConfig& config)
{
    const ScopeTrace scope(texts::kSendTelemetry);
    if (!HasTransport()) {
        return;
    }
    try {
        RESTTelemetry telemetry(VantorLogging::GetLogger().IsActive(), config);
        if (config.restTest) {
            telemetry.Payload().SetReadOnly();
        }
        telemetry.Send(report.data(), report.size());
    } catch (const std::exception& error) { // such as no memory for a reply: the run goes on without its report
        LogError(texts::kSendTelemetryFailed + (std::string(": ") + error.what()));
    }
}

} // namespace vantor
