#include "inspect/run_text.h"

#include "inspect/printable_text.h"
#include "inspect/utc_time.h"

#include <iomanip>
#include <sstream>

namespace vantor::inspect {
namespace {

using nlohmann::ordered_json;

/// How much of a message the time line shows, and of a note at most its first line. The rest can be found by the line
/// number.
constexpr std::size_t kShownBytes = 300;

constexpr const char* kKinds[] = {"stage", "note", "proxy", "warning", "error"};
constexpr const char* kLabels[] = {"", "", "proxy", "WARN", "ERROR"};
constexpr const char* kDeliveries[] = {"not tried", "delivered", "failed", "unknown"};

template <typename Value>
std::size_t Index(Value value)
{
    return static_cast<std::size_t>(value);
}

std::string TimeText(const Run& run)
{
    if (!run.begin || !run.end) {
        return "not in the log";
    }
    const auto took = *run.end - *run.begin;
    return FormatUtc(*run.begin, kReadableTime) + " UTC, " +
           (took.count() < 0 ? "then the clock was set back" : std::to_string(took.count()) + " s");
}

std::string PulseText(const Run& run)
{
    if (run.pulseLine != 0 && run.pulseProblem.empty()) {
        return "below, from the body in line " + std::to_string(run.pulseLine);
    }
    const std::string known = run.pulse ? "only its record is known, below" : "none";
    return known +
           (run.pulseProblem.empty() ? "" : "; line " + std::to_string(run.pulseLine) + ": " + run.pulseProblem);
}

void WriteEvent(std::ostream& stream, const RunEvent& event)
{
    const std::string_view text =
        std::string_view(event.text)
            .substr(0, event.kind == EventKind::note ? event.text.find('\n') : std::string::npos);
    const std::string duration = event.duration ? std::to_string(event.duration->count()) + " s" : "";
    stream << std::right << std::setw(8) << event.line << "  " << std::setw(kClockTime.size())
           << (event.time ? FormatUtc(*event.time, kClockTime) : std::string()) << std::setw(7) << duration << "  "
           << std::left << std::setw(7) << kLabels[Index(event.kind)]
           << std::string(2 * static_cast<std::size_t>(event.depth), ' ') << PrintableText(text, kShownBytes) << '\n';
}

} // namespace

std::string RunBlock(const Run& run, std::size_t number, std::size_t count)
{
    std::ostringstream stream;
    stream << "run " << number << " of " << count << ", lines " << run.firstLine << " to " << run.lastLine << '\n'
           << "  outcome  " << PrintableText(run.outcome) << '\n'
           << "  time     " << TimeText(run) << '\n'
           << "  pulse    " << PulseText(run) << '\n'
           << "  command ";
    for (const std::string& argument : run.arguments) {
        stream << ' ' << PrintableText(argument);
    }
    stream << '\n';
    if (!run.events.empty()) {
        stream << "    line  time        took  kind   what happened\n";
    }
    for (const RunEvent& event : run.events) {
        WriteEvent(stream, event);
    }
    return stream.str();
}

ordered_json RunJson(const Run& run, std::size_t number)
{
    ordered_json json = {{"run", number}, {"lines", {run.firstLine, run.lastLine}}};
    if (run.begin && run.end) {
        json["begin"] = FormatUtc(*run.begin, kIsoTime);
        json["end"] = FormatUtc(*run.end, kIsoTime);
    }
    json["arguments"] = run.arguments;
    json["delivery"] = kDeliveries[Index(run.delivery)];
    json["outcome"] = run.outcome;
    json["events"] = ordered_json::array();
    for (const RunEvent& event : run.events) {
        ordered_json& one = json["events"].emplace_back(ordered_json{{"line", event.line}});
        if (event.time) {
            one["time"] = FormatUtc(*event.time, kIsoTime);
        }
        one["kind"] = kKinds[Index(event.kind)];
        one["text"] = event.text;
        one["depth"] = event.depth;
        if (event.duration) {
            one["seconds"] = event.duration->count();
        }
    }
    if (run.pulse) {
        json["pulse"] = PulseJson({{}, *run.pulse});
    }
    if (!run.pulseProblem.empty()) {
        json["problem"] = run.pulseProblem;
    }
    return json;
}

} // namespace vantor::inspect
