#include "inspect/run_reader.h"

#include "platform/text/lower_case.h"
#include "run/log/log_texts.h"
#include "telemetry/winhttp/code_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <iterator>
#include <utility>

namespace vantor::inspect {
namespace {

constexpr std::size_t kMaxScopes = 100; ///< far more than the program nests, but the file is untrusted

/// Nested operations that count as stages because they take time. Outermost operations always do.
constexpr std::string_view kInnerStages[] = {
    texts::kRestTelemetryConstructor,  texts::kRestTelemetrySend, texts::kHttpConnectionReset,
    texts::kHttpConnectionSendRequest, texts::kHttpRequestSend,   texts::kProxyManagerInitRequest,
    texts::kHttpRequestReadResponse,
};

/// A message of the HTTP and proxy layers begins with the operation that wrote it.
struct OperationText {
    std::string_view operation; ///< empty if there is none
    std::string_view text;
};

OperationText SplitOperation(std::string_view message)
{
    constexpr std::string_view kBetween = ": ", kScope = "::";
    const std::size_t end = message.find(kBetween);
    const std::string_view operation = message.substr(0, end);
    if (end == std::string_view::npos || operation.find(kScope) == std::string_view::npos ||
        operation.find(' ') != std::string_view::npos) {
        return {{}, message};
    }
    return {operation, message.substr(end + kBetween.size())};
}

/// Messages of constructors only say that an object was created, so they are skipped.
bool IsConstructor(std::string_view operation)
{
    const std::size_t name = operation.rfind("::");
    return operation.substr(0, name) == operation.substr(name + 2);
}

constexpr std::uint32_t kResendRequest = 12032; // ERROR_WINHTTP_RESEND_REQUEST: a step of a logon

/// What a warning or an error means for the run's outcome. The text starts after the operation's name.
struct Trouble {
    LogLevel level;
    std::string_view beginning;
    void (*note)(RunFacts& facts, std::string_view text, std::string_view rest);
};

constexpr Trouble kTroubles[] = {
    {LogLevel::warning, texts::kUsingProxyFallback, [](auto& facts, auto, auto) { facts.fellBack = true; }},
    {LogLevel::warning, texts::kUnableToParseCertificate, [](auto& facts, auto, auto) { ++facts.logonWarningCount; }},
    {LogLevel::warning, texts::kSendFailedRetrying, [](auto& facts, auto, auto) { ++facts.logonWarningCount; }},
    {LogLevel::error, texts::kProxyDidNotBuildTunnel, [](auto& facts, auto, auto) { facts.isTunnelRefused = true; }},
    {LogLevel::error, texts::kChainTrustedButNotPinned, [](auto& facts, auto, auto) { facts.isInspected = true; }},
    {LogLevel::error, texts::kInitialiseFailed, [](auto& facts, auto, auto rest) { facts.setUpFailure = rest; }},
    {LogLevel::error, texts::kSendTelemetryFailed, [](auto& facts, auto text, auto) { facts.sendFailure = text; }},
    {LogLevel::error, texts::kRevertToSelfFailed,
     [](auto& facts, auto text, auto) {
         facts.fatalError = text;
         facts.exitCode = 3;
     }},
    // These three start like the error that ends a run.
    {LogLevel::error, texts::kPopulateGuidFailed, [](auto&, auto, auto) {}},
    {LogLevel::error, texts::kStartLoggingFailed, [](auto&, auto, auto) {}},
    {LogLevel::error, texts::kStopLoggingFailed, [](auto&, auto, auto) {}},
    {LogLevel::error, texts::kError, [](auto& facts, auto, auto rest) { facts.fatalError = rest; }},
};

/// Parses the record that the log shows as `{ "key": value ... }`; std::nullopt if a field is missing or not a number
/// of its size.
std::optional<HealthRecord> ParseRecord(std::string_view text)
{
    std::array<std::uint8_t, HealthRecord::kWireSize> bytes{};
    for (const HealthRecordField& field : HealthRecordFields()) {
        const std::string name = '"' + std::string(field.key) + "\": ";
        const std::size_t found = text.find(name);
        if (found == std::string_view::npos) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        const std::string_view digits = text.substr(found + name.size());
        const bool isNumber = std::from_chars(digits.data(), digits.data() + digits.size(), value).ec == std::errc();
        if (!isNumber || (field.size < sizeof value && value >> (8 * field.size) != 0)) {
            return std::nullopt;
        }
        std::memcpy(bytes.data() + field.offset, &value, field.size);
    }
    return DecodeHealthRecord(bytes);
}

} // namespace

/// The first matching rule applies.
const RunReader::Rule RunReader::kRules[] = {
    {texts::kEntering, &RunReader::OpenScope},
    {texts::kEnter, &RunReader::OpenScope},
    {texts::kLeaving, &RunReader::CloseScope},
    {texts::kExit, &RunReader::CloseScope},
    {texts::kHandlingArgument, &RunReader::TakeArgument},
    {texts::kBodyBegins, &RunReader::TakeBody},
    {texts::kSendingRecord, &RunReader::TakeRecord},
    // The classes that decide about proxies.
    {"CHTTPProxy", &RunReader::TakeProxy},
    {"CHTTPSession", &RunReader::TakeProxy},
    {"C_HTTPProxyAuth", &RunReader::TakeProxy},
    // Notes that explain a run. Those of the HTTP layer start with the operation's name.
    {texts::kDelayWaitingFor, &RunReader::TakeNote},
    {texts::kFailedInInitializationOfExclusion, &RunReader::TakeNote},
    {texts::kFailedOnInitializationOfExclusion, &RunReader::TakeNote},
    {texts::kFailedOnCallGetRegistryKeyAccess, &RunReader::TakeNote},
    {texts::kFailedOnCallGetRegistryValueAccess, &RunReader::TakeNote},
    {texts::kShouldStartEtlTracing, &RunReader::TakeNote},
    {texts::kStartLogging, &RunReader::TakeNote},
    {texts::kStopLogging, &RunReader::TakeNote},
    {texts::kGetvxediskStartValue, &RunReader::TakeNote},
    {texts::kIsvxediskInUpperFilters, &RunReader::TakeNote},
    {texts::kToleratedNoNewerProtocol, &RunReader::TakeNote},
    {texts::kResponseHeaders, &RunReader::TakeNote},
    {texts::kVerified, &RunReader::TakeNote},
    {texts::kSendingBytes, &RunReader::TakeNote},
    {texts::kLoggingSessionAlreadyExists, &RunReader::TakeNote},
    {texts::kNowLogging, &RunReader::TakeNote},
    {texts::kStartingEtlTracing, &RunReader::TakeNote},
    {texts::kStoppingEtlTracing, &RunReader::TakeNote},
    {texts::kStoppedLogging, &RunReader::TakeNote},
    {texts::kCannotStopAsNoRunningInstance, &RunReader::TakeNote},
    {texts::kSuccess, &RunReader::TakeNote},
};

void RunReader::Take(const LogMessage& message)
{
    if (IsEmpty()) {
        m_run.firstLine = message.firstLine;
        m_run.begin = message.time;
    }
    m_run.lastLine = message.lastLine;
    m_run.end = message.time ? message.time : m_run.end;
    if (message.level != LogLevel::trace) {
        TakeTrouble(message);
        return;
    }
    const std::string_view text = message.text;
    const auto* const rule = std::ranges::find_if(kRules, [&](const Rule& one) {
        return text.starts_with(one.beginning) ||
               (one.take == &RunReader::TakeNote && SplitOperation(text).text.starts_with(one.beginning));
    });
    if (rule != std::end(kRules)) {
        (this->*rule->take)(message, text.substr(std::min(rule->beginning.size(), text.size())));
    }
}

Run RunReader::Finish()
{
    m_facts.innermostScope = m_open.empty() ? "" : m_open.back().name;
    m_facts.hasMode |= m_run.pulse.has_value();
    ConcludeRun(m_run, m_facts);
    m_run.bytes += sizeof m_run + m_run.outcome.size();
    return std::move(m_run);
}

bool RunReader::HasRoomFor(std::size_t bytes)
{
    if (m_run.bytes + bytes > m_limitBytes) {
        ++m_run.leftOutCount;
        return false;
    }
    m_run.bytes += bytes;
    return true;
}

void RunReader::AddEvent(EventKind kind, const LogMessage& message, std::string_view text)
{
    m_facts.warningCount += kind == EventKind::warning;
    m_facts.errorCount += kind == EventKind::error;
    if (m_open.empty() && (kind == EventKind::stage || kind == EventKind::note)) {
        m_facts.lastStep = text;
    }
    if (HasRoomFor(sizeof(RunEvent) + text.size())) {
        const auto depth = std::ranges::count_if(m_open, [](const Scope& scope) { return scope.event.has_value(); });
        m_run.events.push_back({kind, message.firstLine, message.time, std::string(text), static_cast<int>(depth)});
    }
}

void RunReader::TakeTrouble(const LogMessage& message)
{
    AddEvent(message.level == LogLevel::error ? EventKind::error : EventKind::warning, message, message.text);
    const std::string_view text = SplitOperation(message.text).text;
    m_facts.logonErrorCount += message.level == LogLevel::error && text.ends_with(NamedWinHttpError(kResendRequest));
    for (const Trouble& trouble : kTroubles) {
        if (message.level == trouble.level && text.starts_with(trouble.beginning)) {
            trouble.note(m_facts, text, text.substr(trouble.beginning.size()));
            return;
        }
    }
}

void RunReader::OpenScope(const LogMessage& message, std::string_view name)
{
    std::optional<std::size_t> event;
    if (m_open.empty() || std::ranges::find(kInnerStages, name) != std::end(kInnerStages)) {
        const std::size_t count = m_run.events.size();
        AddEvent(EventKind::stage, message, name);
        event = m_run.events.size() > count ? std::optional(count) : std::nullopt;
    }
    if (m_open.size() < kMaxScopes) {
        m_open.push_back({std::string(name), message.time, event});
    }
    m_facts.reachedSending |= name == texts::kSendTelemetry;
}

void RunReader::CloseScope(const LogMessage& message, std::string_view name)
{
    const auto scope = std::find_if(m_open.rbegin(), m_open.rend(), [&](const Scope& one) { return one.name == name; });
    if (scope == m_open.rend()) {
        return;
    }
    const bool isTimed = scope->begun && message.time && *message.time >= *scope->begun; // the clock may be set back
    if (scope->event && isTimed) {
        m_run.events[*scope->event].duration = *message.time - *scope->begun;
    }
    m_open.erase(std::prev(scope.base()), m_open.end());
    m_facts.leftSending |= name == texts::kRestTelemetrySend;
}

void RunReader::TakeArgument(const LogMessage&, std::string_view argument)
{
    m_facts.hasMode |= LowerCase(std::string(argument)).starts_with(texts::kHcmodeOption + std::string("="));
    if (HasRoomFor(sizeof(std::string) + argument.size())) {
        m_run.arguments.emplace_back(argument);
    }
}

void RunReader::TakeBody(const LogMessage& message, std::string_view)
{
    if (m_run.pulseLine != 0) {
        return; // the program logs it once; anything else that looks like it comes from a reply
    }
    m_run.pulseLine = message.firstLine;
    try {
        m_run.pulse = DecodePulse(message.text);
        m_run.bytes += 4 * message.text.size();
    } catch (const PulseError& error) {
        m_run.pulseProblem = error.what();
    }
}

void RunReader::TakeRecord(const LogMessage&, std::string_view record)
{
    const auto parsed = m_run.pulse ? std::nullopt : ParseRecord(record);
    if (parsed) {
        m_run.pulse = Pulse{nlohmann::ordered_json::object(), {*parsed, {}}, {}};
    }
}

void RunReader::TakeProxy(const LogMessage& message, std::string_view)
{
    constexpr std::string_view kDetected = texts::kAutoproxyLpszProxy;
    const auto [operation, text] = SplitOperation(message.text);
    if (operation.empty() || IsConstructor(operation)) {
        return;
    }
    AddEvent(EventKind::proxy, message, text);
    m_facts.hasNamedProxy |= text == texts::kSessionTypeToNamedSessionProxy;
    if (text.starts_with(kDetected)) {
        const std::string_view proxy = text.substr(kDetected.size());
        m_facts.proxy = proxy == texts::kNull ? "" : proxy;
    }
}

void RunReader::TakeNote(const LogMessage& message, std::string_view)
{
    AddEvent(EventKind::note, message, message.text);
}

} // namespace vantor::inspect
