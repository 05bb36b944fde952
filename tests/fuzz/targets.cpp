// What the fuzzers feed: every reader of bytes that others write. A promise that is not kept ends the program, as what
// a sanitizer finds does. One program has all targets; the name that it is started under chooses one.
#include "health/record/content_version.h"
#include "health/record/dotted_version.h"
#include "inspect/fleet/fleet_command.h"
#include "inspect/fleet/pulse_csv.h"
#include "inspect/fleet/pulse_line.h"
#include "inspect/fleet/report_text.h"
#include "inspect/inspect_command.h"
#include "inspect/pulse_text.h"
#include "platform/text/multi_string.h"
#include "run/options/options.h"
#include "support/password_log.h"
#include "support/words.h"
#include "telemetry/request/pem.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace vantor::fuzz {

void Promise(bool kept)
{
    if (!kept) {
        std::abort();
    }
}

void options(const std::string& input)
{
    RunConfig config;
    RecordingLogger log;
    try {
        ParseArguments(Words(input), config, log);
        Validate(config);
    } catch (const OptionError&) {
        return;
    }
    Promise((ModeOf(config) == Mode::none) == config.hcmode.empty());
}

void dotted_version(const std::string& input)
{
    const auto parts = ParseDottedVersion(input);
    Promise(!parts || std::ranges::count(input, '.') + 1 == std::ssize(*parts));
    ParseContentVersion(input);
}

void multi_string(const std::string& input)
{
    using namespace std::string_literals;
    std::u16string text(input.size() / 2, u'\0');
    std::memcpy(text.data(), input.data(), 2 * text.size());
    const bool found = MultiStringContains({reinterpret_cast<const std::uint8_t*>(input.data()), input.size()}, u"ab");
    Promise(found == ((u'\0' + text + u'\0').find(u"\0ab\0"s) != std::u16string::npos));
}

void pem(const std::string& input)
{
    std::size_t size = 0;
    for (const std::string_view certificate : SplitPem(input)) {
        size += certificate.size();
    }
    Promise(size <= input.size());
}

/// What is decoded becomes the same bytes again.
void report(const std::string& input)
{
    const ReportBytes bytes(input.begin(), input.end());
    try {
        const Report report = DecodeReport(bytes);
        Promise(bytes == (bytes.size() == HealthRecord::kWireSize
                              ? EncodeReport(report.record)
                              : EncodeReport(report.record, BuildTextBlock(report.textItems))));
    } catch (const ReportError&) {
    }
}

/// An item a word, again and again until there is no room; those that have room are read back.
void text_block(const std::string& input)
{
    const std::vector<std::string> words = Words(input);
    std::vector<std::string> items;
    for (std::size_t bytes = 0; !words.empty() && bytes < 2 * kReportLimitBytes; bytes += input.size()) {
        items.insert(items.end(), words.begin(), words.end());
    }
    const TextBlock block = BuildTextBlock(items);
    HealthRecord record;
    record.mode = Mode::preUpdate;
    Promise(DecodeReport(EncodeReport(record, block)).textItems.size() + block.leftOut.size() == items.size());
}

/// The body of a request to the service, and the pulse as it is shown.
void pulse(const std::string& input)
{
    try {
        const inspect::DatedPulse pulse{{}, inspect::DecodePulse(input)};
        Promise(!inspect::JsonLine(inspect::PulseJson(pulse)).empty() && !inspect::PulseBlock(pulse).empty());
    } catch (const inspect::PulseError&) {
    }
}

/// The input, and among it what a run logs of a password that begins as the input does, but is of a character that stands
/// nowhere else.
std::string WithPlantedPassword(const std::string& input)
{
    std::string password, others;
    for (const char c : input) {
        password += password.size() < 30 ? std::string(1, std::strchr(" \t\"\\/=:\r\n{", c) ? c : '\x7F') : "";
        others += c == '\x7F' || c == '7' ? '.' : c;
    }
    return others + '\n' + LogOfOptions("/server=s /port=1 /username=u /password=" + password) + others;
}

bool IsSafe(const std::string& shown)
{
    return std::ranges::all_of(shown, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); });
}

/// What vantor-inspect is given, logs above all: whatever it shows is safe to show and without passwords, and it complains
/// in words.
void inspected(const std::string& input)
{
    for (const std::string option : {"", "--json"}) {
        std::istringstream text(WithPlantedPassword(input));
        std::ostringstream shown;
        inspect::RunInspect(std::vector<std::string>(option.empty() ? 0 : 1, option), text, shown, shown);
        Promise(shown.str().find("\\x7F") == std::string::npos && shown.str().find("\\u007f") == std::string::npos);
    }
    for (const std::string option : {"", "--json", "--diff"}) {
        std::istringstream text(input);
        std::ostringstream output, errors;
        const std::vector<std::string> arguments(option.empty() ? 0 : 1, option);
        const int exitCode = inspect::RunInspect(arguments, text, output, errors);
        Promise(exitCode == (errors.str().empty() ? 0 : 1) && (exitCode == 1 || !output.str().empty()));
        Promise(IsSafe(output.str() + errors.str()));
    }
}

/// The pulses of a fleet: whatever is said of them is safe to show, and both readers make the same of a line that the
/// general one takes.
void fleet_lines(const std::string& input)
{
    using Output = fleet::FleetOptions::Output;
    for (const Output kind : {Output::text, Output::json, Output::csv}) {
        std::istringstream text(input);
        std::ostringstream output, errors;
        const int exitCode = fleet::RunFleet({kind, {}, {"-"}, {3, 2}}, text, output, errors);
        Promise(exitCode == (errors.str().empty() ? 0 : 1) && IsSafe(output.str() + errors.str()));
    }
    const std::string padded = input + std::string(fleet::kLinePadding, '"');
    fleet::PulseLineReader reader;
    fleet::Fleet gathered;
    for (std::size_t begin = 0; begin < input.size();) {
        const std::size_t end = std::min(input.find('\n', begin), input.size());
        const std::string_view line = std::string_view(padded).substr(begin, end - begin);
        begin = end + 1;
        fleet::FleetPulse general, fast;
        try {
            fleet::ReadPulseLine(line, general);
        } catch (const inspect::PulseError&) {
            continue;
        }
        reader.Read(line, fast);
        std::string one, other;
        fleet::AppendCsvLine(general, 1, one);
        fleet::AppendCsvLine(fast, 1, other);
        Promise(one == other && general.isTest == fast.isTest);
        gathered.Add(fast);
    }
    const std::string page = fleet::ReportPage(gathered.Finish());
    Promise(IsSafe(page) && page.find("<script") == std::string::npos);
}

struct Target {
    std::string_view name; ///< what the program's name ends with
    void (*run)(const std::string& input);
};

constexpr Target kTargets[] = {
    {"fuzz_options", options},
    {"fuzz_dotted_version", dotted_version},
    {"fuzz_multi_string", multi_string},
    {"fuzz_pem", pem},
    {"fuzz_report", report},
    {"fuzz_text_block", text_block},
    {"fuzz_pulse", pulse},
    {"fuzz_inspected", inspected},
    {"fuzz_fleet_lines", fleet_lines},
};

void (*run)(const std::string& input) = nullptr;

} // namespace vantor::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char*** arguments)
{
    const std::string_view program = **arguments;
    for (const vantor::fuzz::Target& target : vantor::fuzz::kTargets) {
        if (program.ends_with(target.name)) {
            vantor::fuzz::run = target.run;
        }
    }
    vantor::fuzz::Promise(vantor::fuzz::run != nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vantor::fuzz::run({data, data + size});
    return 0;
}
