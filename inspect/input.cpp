#include "inspect/input.h"

#include "inspect/printable_text.h"
#include "inspect/shallow_json.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace vantor::inspect {
namespace {

using nlohmann::ordered_json;

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kInputLimitBytes = 256U << 20; ///< for input that must be in memory as a whole
constexpr std::size_t kPulses = 20'000;              ///< each takes about 5 KiB of memory
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};
constexpr std::string_view kBase64Characters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

std::string_view Trimmed(std::string_view text)
{
    const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

/// Reads a body or a line that the receiver wrote.
DatedPulse ReadJsonPulse(std::string_view text)
{
    const ordered_json json = ParseShallow(text);
    if (json.is_object() && json.contains("report")) {
        return PulseFromJson(json);
    }
    return {{}, DecodePulse(text)}; // its messages are more precise
}

/// Reads a single value, possibly over several lines, or one value per line.
Input ReadJsonInput(std::string_view text, std::size_t kept)
{
    Input input;
    std::size_t count = 0;
    if (const std::string_view value = Trimmed(text); ordered_json::accept(value.begin(), value.end())) {
        try {
            input.pulses.push_back(ReadJsonPulse(value));
        } catch (const PulseError& error) {
            throw InputError(error.what());
        }
        return input;
    }
    std::size_t number = 0;
    while (!text.empty()) {
        const std::string_view whole = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(whole.size() + 1, text.size()));
        const std::string_view line = Trimmed(whole);
        ++number;
        try {
            if (!line.empty()) {
                input.pulses.push_back(ReadJsonPulse(line));
                ++count;
            }
            if (input.pulses.size() > std::min(kept, kPulses)) {
                input.pulses.pop_front();
            }
        } catch (const PulseError& error) {
            input.problems.Add("line " + std::to_string(number) + ": " + error.what());
        }
    }
    if (kept > kPulses && count > kPulses) {
        input.problems.Add("it holds " + std::to_string(count) + " pulses: all but the last " +
                           std::to_string(kPulses) + " are left out");
    }
    return input;
}

/// bytesBefore is the number of bytes before the text in the file, for messages that give a position.
Input ReadReportInput(std::string_view text, std::size_t bytesBefore)
{
    const std::size_t foreign = text.find_first_not_of(std::string(kBase64Characters) + std::string(kBlanks));
    if (foreign != std::string_view::npos) {
        throw InputError("this is no log, no JSON and no Base64 report: byte " +
                         std::to_string(bytesBefore + foreign + 1) + " is \"" + PrintableText(text.substr(foreign, 1)) +
                         '"');
    }
    std::string base64(text);
    std::erase_if(base64, [](char character) { return kBlanks.find(character) != std::string_view::npos; });
    try {
        Input input;
        input.pulses.push_back({{}, DecodeReportText(base64)});
        return input;
    } catch (const PulseError& error) {
        throw InputError(error.what());
    }
}

/// Removes the byte order mark of UTF-8 and returns its size.
std::size_t TakeMark(std::string_view& text)
{
    for (const std::string_view mark : kUtf16Marks) {
        if (text.starts_with(mark)) {
            throw InputError("the text is UTF-16, as PowerShell's \">\" writes it; save it as UTF-8 or ASCII");
        }
    }
    const std::size_t size = text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
    text.remove_prefix(size);
    return size;
}

} // namespace

Input ReadInput(std::istream& stream, std::size_t kept)
{
    RunLogReader log(kept);
    std::string text; // collected while the input may be something other than a log
    std::optional<std::size_t> markSize;
    std::vector<char> buffer(1U << 16);
    while (stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || stream.gcount() > 0) {
        std::string_view piece(buffer.data(), static_cast<std::size_t>(stream.gcount()));
        markSize = markSize ? markSize : TakeMark(piece);
        log.Read(piece);
        if (log.HasFoundAny()) {
            text.clear();
            text.shrink_to_fit();
            continue;
        }
        text.append(piece);
        if (text.size() > kInputLimitBytes) {
            throw InputError("it is no log, and larger than 256 MiB");
        }
    }
    if (stream.bad()) {
        throw InputError("reading fails");
    }
    RunLog runs = log.Finish();
    if (runs.count != 0) {
        Input input;
        input.problems = std::exchange(runs.problems, {});
        input.log = std::move(runs);
        return input;
    }
    const std::string_view trimmed = Trimmed(text);
    if (trimmed.empty()) {
        throw InputError("there is nothing in it");
    }
    // If the first line is cut off, the others may still be JSON.
    const bool isJson = trimmed.front() == '{' || text.find("\n{") != std::string_view::npos;
    return isJson ? ReadJsonInput(text, kept) : ReadReportInput(text, *markSize);
}

std::vector<DatedPulse> LastPulses(const Input& input, std::size_t count)
{
    std::vector<DatedPulse> pulses(input.pulses.begin(), input.pulses.end());
    for (const Run& run : input.log.runs) {
        if (run.pulse) {
            pulses.push_back({run.begin, *run.pulse});
        }
    }
    pulses.erase(pulses.begin(), pulses.end() - static_cast<std::ptrdiff_t>(std::min(count, pulses.size())));
    return pulses;
}

} // namespace vantor::inspect
