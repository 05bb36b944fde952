#include "inspect/run_log.h"

#include "inspect/run_outcome.h"
#include "platform/lower_case.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <span>
#include <string_view>

namespace vantor::inspect {
namespace {

constexpr std::string_view kRunBegins = "Entering GetConfig";
constexpr std::string_view kScopeBegins[] = {"Entering ", "Enter: "};
constexpr std::string_view kScopeEnds[] = {"Leaving ", "Exit : "};
constexpr std::size_t kDeepestScope = 100; ///< far beyond the program's own; a stranger's file may have more

/// Operations inside others that are stages of their own, because they take time. Outermost ones always are.
constexpr std::string_view kInnerStages[] = {
    "RESTTelemetry::RESTTelemetry", "RESTTelemetry::Send", "HttpConnection::Reset",
    "HttpConnection::SendRequest",  "HttpRequest::Send",   "CHTTPProxyManager::InitRequest",
    "HttpRequest::ReadResponse",
};

/// Who decides about proxies.
constexpr std::string_view kProxyOrigins[] = {"CHTTPProxy", "CHTTPSession", "C_HTTPProxyAuth"};

/// Trace messages that explain a run, by how they begin.
constexpr std::string_view kNotes[] = {
    "/delaypostdat waiting",
    "Failed in initialization",
    "Failed on ",
    "GetvxediskStartValue: ",
    "HttpConnection::Reset: Tolerated",
    "HttpRequest::ReadHeaders: Response headers: ",
    "HttpRequest::ValidateServerCert: Verified: ",
    "IsvxediskInUpperFilters: ",
    "Logging session already exists",
    "Now Logging.",
    "RESTTelemetry::Send: Sending ",
    "Starting etl tracing",
    "Stopped logging",
    "Stopping etl tracing",
    "Success! ",
    "Cannot stop as ",
    "ShouldStartETLTracing: ",
    "StartLogging: ",
    "StopLogging: ",
};

/// What `text` goes on with behind one of these beginnings; nothing when it has none of them.
std::optional<std::string_view> Behind(std::string_view text, std::span<const std::string_view> beginnings)
{
    for (const std::string_view beginning : beginnings) {
        if (text.starts_with(beginning)) {
            return text.substr(beginning.size());
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> Behind(std::string_view text, std::string_view beginning)
{
    return Behind(text, std::span(&beginning, 1));
}

bool Contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

/// The record that the log shows as `{ "key": value ... }`; nothing when a field is missing or holds
/// no number of its size.
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

/// Takes the messages of one run.
class RunReader {
public:
    void Take(const LogMessage& message)
    {
        if (m_run.firstLine == 0) {
            m_run.firstLine = message.line;
            m_run.begin = message.time;
        }
        m_run.lastLine = message.line + static_cast<std::size_t>(std::ranges::count(message.text, '\n'));
        m_run.end = message.time ? message.time : m_run.end;
        if (message.level != LogLevel::trace) {
            TakeTrouble(message);
        } else if (const auto begun = Behind(message.text, kScopeBegins)) {
            Open(message, *begun);
        } else if (const auto ended = Behind(message.text, kScopeEnds)) {
            Close(message, *ended);
        } else {
            TakeTrace(message);
        }
    }

    Run Finish()
    {
        m_facts.innermostScope = m_open.empty() ? "" : m_open.back().name;
        m_facts.hasMode |= m_run.pulse.has_value();
        ConcludeRun(m_run, m_facts);
        return std::move(m_run);
    }

private:
    struct Scope {
        std::string name;
        std::optional<std::chrono::sys_seconds> begun;
        std::optional<std::size_t> event; ///< of a stage
    };

    void AddEvent(EventKind kind, const LogMessage& message, std::string_view text)
    {
        const auto depth = std::ranges::count_if(m_open, [](const Scope& scope) { return scope.event.has_value(); });
        m_run.events.push_back({kind, message.line, message.time, WithoutPasswords(text), static_cast<int>(depth)});
        if (m_open.empty() && (kind == EventKind::stage || kind == EventKind::note)) {
            m_facts.lastStep = m_run.events.back().text;
        }
    }

    void Open(const LogMessage& message, std::string_view name)
    {
        std::optional<std::size_t> event;
        if (m_open.empty() || std::ranges::find(kInnerStages, name) != std::end(kInnerStages)) {
            event = m_run.events.size();
            AddEvent(EventKind::stage, message, name);
        }
        if (m_open.size() < kDeepestScope) {
            m_open.push_back({std::string(name), message.time, event});
        }
        m_facts.reachedSending |= name == "SendTelemetry";
    }

    void Close(const LogMessage& message, std::string_view name)
    {
        const auto scope =
            std::find_if(m_open.rbegin(), m_open.rend(), [&](const Scope& one) { return one.name == name; });
        if (scope == m_open.rend()) {
            return;
        }
        if (scope->event && scope->begun && message.time &&
            *message.time >= *scope->begun) { // the clock may be set back
            m_run.events[*scope->event].duration = *message.time - *scope->begun;
        }
        m_open.erase(std::prev(scope.base()), m_open.end());
        m_facts.leftSending |= name == "RESTTelemetry::Send";
    }

    void TakeTrouble(const LogMessage& message)
    {
        const bool isError = message.level == LogLevel::error;
        AddEvent(isError ? EventKind::error : EventKind::warning, message, message.text);
        m_facts.fellBack |= message.text == "HttpConnection::Query: Using proxy fallback";
        m_facts.isInspected |= Contains(message.text, "an inspecting proxy");
        if (const auto setUp = Behind(message.text, "Initialise failed: "); setUp && isError) {
            m_facts.setUpFailure = *setUp;
        }
        if (const std::size_t found = message.text.find("Send telemetry failed");
            found != std::string::npos && isError) {
            m_facts.sendFailure = message.text.substr(found);
        }
        if (const auto fatal = Behind(message.text, "Error: "); fatal && isError && !Contains(*fatal, " FAILED!!: ")) {
            m_facts.fatalError = WithoutPasswords(*fatal);
        } else if (isError && Contains(message.text, "RevertToSelf() failed")) {
            m_facts.fatalError = message.text;
            m_facts.exitCode = 3;
        }
    }

    void TakeTrace(const LogMessage& message)
    {
        const std::string_view text = message.text;
        if (const auto argument = Behind(text, "Handling argument ")) {
            m_run.arguments.push_back(WithoutPasswords(*argument));
            m_facts.hasMode |= LowerCase(std::string(*argument)).starts_with("/hcmode=");
        } else if (text.starts_with(R"({"ci":)")) {
            TakeBody(message);
        } else if (const auto record = Behind(text, "Sending: "); record && !m_run.pulse) {
            if (const auto parsed = ParseRecord(*record)) {
                m_run.pulse = Pulse{nlohmann::ordered_json::object(), {*parsed, {}}, {}};
            }
        } else if (Behind(text, kProxyOrigins)) {
            TakeProxy(message);
        } else if (Behind(text, kNotes)) {
            AddEvent(EventKind::note, message, text);
        }
    }

    void TakeBody(const LogMessage& message)
    {
        if (m_run.pulseLine != 0) {
            return; // logged once by its builder; whatever else looks like it is a reply's
        }
        m_run.pulseLine = message.line;
        try {
            m_run.pulse = DecodePulse(message.text);
        } catch (const PulseError& error) {
            m_run.pulseProblem = error.what();
        }
    }

    void TakeProxy(const LogMessage& message)
    {
        const std::string text = WithoutPasswords(message.text); // before it is cut: what it hides may lie anywhere
        const std::size_t colon = text.find(": ");
        const std::string_view origin = std::string_view(text).substr(0, colon);
        const std::size_t name = origin.rfind("::");
        if (colon == std::string::npos || name == std::string_view::npos ||
            origin.substr(0, name) == origin.substr(name + 2)) {
            return; // a constructor says that it is there, and decides nothing
        }
        AddEvent(EventKind::proxy, message, std::string_view(text).substr(colon + 2));
        m_facts.hasNamedProxy |= Contains(message.text, "session type to NamedSessionProxy");
        if (const auto proxy = Behind(message.text, "CHTTPSessionAutoProxy::InitProxy: Autoproxy lpszProxy: ")) {
            m_facts.proxy = *proxy == "<null>" ? "" : *proxy;
        }
    }

    Run m_run;
    RunFacts m_facts;
    std::vector<Scope> m_open;
};

} // namespace

std::vector<Run> ReadRuns(const std::vector<LogMessage>& messages)
{
    std::vector<Run> runs;
    RunReader reader;
    for (std::size_t index = 0; index < messages.size(); ++index) {
        if (index != 0 && messages[index].level == LogLevel::trace && messages[index].text == kRunBegins) {
            runs.push_back(reader.Finish());
            reader = RunReader();
        }
        reader.Take(messages[index]);
    }
    if (!messages.empty()) {
        runs.push_back(reader.Finish());
    }
    return runs;
}

} // namespace vantor::inspect
