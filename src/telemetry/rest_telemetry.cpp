#include "telemetry/rest_telemetry.h"

#include "platform/modules/crypt32.h"
#include "platform/modules/winhttp.h"
#include "platform/text/encoding.h"
#include "proxy/config/proxy_settings.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "run/log/vantor_logging.h"
#include "run/product/registry_values.h"
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
#include <utility>

namespace vantor {
namespace {

/// The largest body that the connection sends: the largest report in Base64, with room for the identifiers.
constexpr std::uint64_t kBodyLimitBytes = 65536;
constexpr std::uint32_t kSystemProxyLifeTimeMs = 60'000;

HttpConfig MakeHttpConfig(const VRIREST& payload)
{
    HttpConfig config;
    const bool local = RegistryKey::OpenForReading(registry::kLocalReceiverKey).has_value();
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
    proxy.m_proxyTimeoutFallbackToDirect = true; // one direct attempt is better than a lost pulse
    proxy.m_systemProxyLifeTime = kSystemProxyLifeTimeMs;
    if (!HasExplicitProxy(config)) {
        proxy.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        proxy.m_wpadDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
        proxy.m_wpadAutoLogon = true;
        proxy.m_systemProxyDiscovery = true; // used if detection finds nothing
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

/// Logs one line per field, including the password in clear text.
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

HttpConnectionSettings MakeSettings(const VRIREST& payload, const RunConfig& config,
                                    const std::shared_ptr<ILogger>& logger)
{
    HttpConnectionSettings settings;
    settings.http = MakeHttpConfig(payload);
    settings.timeouts = MakeTimeouts(payload.TimeoutMillisec());
    settings.proxy = MakeProxyConfig(config);
    settings.proxyCalls = WindowsProxyCalls();
    settings.pinnedCertificates =
        ParseCertificates(PinnedIssuersPem(), OperationLog(logger, texts::kRestTelemetryConstructor));
    LogConfiguration(settings.http, settings.timeouts, settings.proxy);
    return settings;
}

/// The connection to the service; null if it cannot be opened, which is logged.
std::unique_ptr<HttpConnection> Connect(const VRIREST& payload, const RunConfig& config, std::shared_ptr<IHTTP> http)
{
    try {
        const auto logger = VantorLogging::GetLogger().IsActive() ? std::make_shared<LoggerImpl>() : nullptr;
        if (!http) {
            http = std::make_shared<HttpImplementation>(logger);
        }
        return std::make_unique<HttpConnection>(MakeSettings(payload, config, logger), std::move(http), logger);
    } catch (const std::exception& error) {
        LogError(std::string(texts::kInitialiseFailed) + error.what());
    } catch (...) {
        LogError(texts::kInitialiseFailed + std::string("unknown exception."));
    }
    return nullptr;
}

void LogOutcome(const HttpResponse& response)
{
    const std::string failed = std::string(texts::kRestTelemetrySend) + ": " + texts::kSendTelemetryFailed;
    if (response.result != ERROR_SUCCESS) {
        LogError(failed + texts::kWinHttpError + NamedWinHttpError(response.result));
    } else if (response.status != HTTP_STATUS_OK) {
        LogError(failed + texts::kWinHttpStatus + std::to_string(response.status));
    }
}

/// Everything that one send needs. The payload and the connection are created and destroyed inside the scope traces of
/// the constructor and destructor, where readers of the log expect their lines.
class RESTTelemetry {
public:
    RESTTelemetry(const RunConfig& config, std::shared_ptr<IHTTP> http)
    {
        const ScopeTrace scope(texts::kRestTelemetryConstructor);
        m_payload.emplace();
        m_connection = Connect(*m_payload, config, std::move(http));
        if (config.restTest) {
            m_payload->SetReadOnly();
        }
    }
    ~RESTTelemetry()
    {
        const ScopeTrace scope("RESTTelemetry::~RESTTelemetry");
        m_connection.reset();
        m_payload.reset();
    }
    RESTTelemetry(const RESTTelemetry&) = delete;
    RESTTelemetry& operator=(const RESTTelemetry&) = delete;

    void Send(std::span<const std::uint8_t> report);

private:
    std::optional<VRIREST> m_payload;
    std::unique_ptr<HttpConnection> m_connection;
};

void RESTTelemetry::Send(std::span<const std::uint8_t> report)
{
    const ScopeTrace scope(texts::kRestTelemetrySend);
    if (!m_connection) {
        LogError(texts::kSendTelemetryFailed + std::string(texts::kHttpNotInitialised));
        return;
    }
    if (report.empty() || report.size() > kReportLimitBytes) {
        LogError(texts::kSendTelemetryFailed + (texts::kInvalidArguments + PointerText(report.data())) +
                 ", size=" + std::to_string(report.size()));
        return;
    }
    LogTrace(texts::kSendingBytes + std::to_string(report.size()) + " bytes.");

    HttpResponse response;
    m_connection->Query({kReportPath, L"POST"}, {}, m_payload->CreatePostData(report), response);
    LogOutcome(response);
}

/// Whether all functions that a send calls in late-bound modules are available; logs the first missing one.
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

void SendTelemetry(std::span<const std::uint8_t> report, const RunConfig& config, std::shared_ptr<IHTTP> http)
{
    const ScopeTrace scope(texts::kSendTelemetry);
    if (!HasTransport()) {
        return;
    }
    try {
        RESTTelemetry telemetry(config, std::move(http));
        telemetry.Send(report);
    } catch (const std::exception& error) { // such as no memory for a reply: the run continues without its report
        LogError(texts::kSendTelemetryFailed + (std::string(": ") + error.what()));
    }
}

} // namespace vantor
