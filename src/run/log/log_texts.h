// Texts of log lines that vantor-inspect reads back. Writer and reader share them, so that changing a line cannot break
// the tool.
#pragma once

namespace vantor::texts {

// Start and end of an operation, followed by its name.
inline constexpr char kEntering[] = "Entering ";
inline constexpr char kLeaving[] = "Leaving ";
inline constexpr char kEnter[] = "Enter: ";
inline constexpr char kExit[] = "Exit : ";

// Operations.
inline constexpr char kGetConfig[] = "GetConfig";
inline constexpr char kSendTelemetry[] = "SendTelemetry";
inline constexpr char kRestTelemetryConstructor[] = "RESTTelemetry::RESTTelemetry";
inline constexpr char kRestTelemetrySend[] = "RESTTelemetry::Send";
inline constexpr char kHttpConnectionReset[] = "HttpConnection::Reset";
inline constexpr char kHttpConnectionSendRequest[] = "HttpConnection::SendRequest";
inline constexpr char kHttpRequestSend[] = "HttpRequest::Send";
inline constexpr char kHttpRequestReadResponse[] = "HttpRequest::ReadResponse";
inline constexpr char kShouldStartEtlTracing[] = "ShouldStartETLTracing";
inline constexpr char kStartLogging[] = "StartLogging";
inline constexpr char kStopLogging[] = "StopLogging";
inline constexpr char kProxyManagerInitRequest[] = "CHTTPProxyManager::InitRequest";

// Options and how they are logged.
inline constexpr char kHcmodeOption[] = "/hcmode";
inline constexpr char kPasswordOption[] = "/password";
inline constexpr char kHandlingArgument[] = "Handling argument ";
inline constexpr char kPasswordField[] = "m_password";
inline constexpr char kPasswordArgument[] = "pwszPassword";
inline constexpr char kPassword[] = " password: ";
inline constexpr char kAuthenticationSchemes[] = " authentication schemes: ";

// The report and its body.
inline constexpr char kSendingRecord[] = "Sending: ";
inline constexpr char kBodyBegins[] = R"({"ci":)";
inline constexpr char kSendingBytes[] = "RESTTelemetry::Send: Sending ";

// Proxies.
inline constexpr char kSessionTypeToNamedSessionProxy[] = "setting current session type to NamedSessionProxy";
inline constexpr char kAutoproxyLpszProxy[] = "Autoproxy lpszProxy: ";
inline constexpr char kNull[] = "<null>";

// Notes that explain a run.
inline constexpr char kDelayWaitingFor[] = "/delaypostdat waiting for ";
inline constexpr char kFailedInInitializationOfExclusion[] =
    "Failed in initialization of ScopedAccessProtectionExclusionObject.Error code :";
inline constexpr char kFailedOnInitializationOfExclusion[] =
    "Failed on initialization scoped access protection exclusion object.";
inline constexpr char kFailedOnCallGetRegistryKeyAccess[] = "Failed on call GetRegistryKeyAccessToProcess().";
inline constexpr char kFailedOnCallGetRegistryValueAccess[] = "Failed on call GetRegistryValueAccessToProcess().";
inline constexpr char kGetvxediskStartValue[] = "GetvxediskStartValue: ";
inline constexpr char kIsvxediskInUpperFilters[] = "IsvxediskInUpperFilters: ";
inline constexpr char kToleratedNoNewerProtocol[] =
    "Tolerated: this Windows knows no newer HTTP protocol that would have to be switched off.";
inline constexpr char kResponseHeaders[] = "Response headers: ";
inline constexpr char kVerified[] = "Verified: ";
inline constexpr char kLoggingSessionAlreadyExists[] = "Logging session already exists. Reusing existing session.";
inline constexpr char kNowLogging[] = "Now Logging.";
inline constexpr char kStartingEtlTracing[] = "Starting etl tracing...";
inline constexpr char kStoppingEtlTracing[] = "Stopping etl tracing...";
inline constexpr char kStoppedLogging[] = "Stopped logging";
inline constexpr char kCannotStopAsNoRunningInstance[] = "Cannot stop as no running instance exist with logger name:";
inline constexpr char kSuccess[] = "Success! ";

// Warnings and errors.
inline constexpr char kUnexpectedArgument[] = "Unexpected command line argument - ";
inline constexpr char kError[] = "Error: ";
inline constexpr char kPopulateGuidFailed[] = "Error: populateGUID FAILED!!: ";
inline constexpr char kStartLoggingFailed[] = "Error: StartLogging FAILED!!: ";
inline constexpr char kStopLoggingFailed[] = "Error: StopLogging FAILED!!: ";
inline constexpr char kUnableToParseCertificate[] = "Unable to parse certificate data from connection: ";
inline constexpr char kSendFailedRetrying[] = "HTTPRequest::Send() failed, retrying, retry count=";
inline constexpr char kProxyDidNotBuildTunnel[] =
    "The proxy did not build the tunnel to the service: it answered with status ";
inline constexpr char kUsingProxyFallback[] = "Using proxy fallback";
inline constexpr char kChainTrustedButNotPinned[] =
    "The server's certificate chain is trusted, but none of the pinned issuers signed the certificate: an inspecting "
    "proxy between this host and the service is the likely cause.";
inline constexpr char kInitialiseFailed[] = "Initialise failed: ";
inline constexpr char kSendTelemetryFailed[] = "Send telemetry failed";
inline constexpr char kHttpNotInitialised[] = ": http not initialised";
inline constexpr char kInvalidArguments[] = ": invalid arguments: data=";
inline constexpr char kThisWindowsLacks[] = ": this Windows lacks ";
inline constexpr char kWinHttpError[] = ". WinHTTP error: ";
inline constexpr char kWinHttpStatus[] = ". WinHTTP status: ";
inline constexpr char kRevertToSelfFailed[] = "RevertToSelf() failed. Windows error: ";

} // namespace vantor::texts
