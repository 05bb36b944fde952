#include "service/service_options.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <sstream>
#include <string_view>

namespace vantor::service {
namespace {

constexpr std::uint16_t kDefaultPort = 8000;
constexpr std::uint64_t kMostBodyBytes = 256'000'000;
constexpr std::uint64_t kLongestDelayMs = 600'000;

using Value = const std::string&;

/// An option, its value's name in the help (none: takes no value), what it does, and how its value is taken.
struct Option {
    const char* name;
    const char* valueName;
    const char* help;
    void (*take)(ServiceOptions& options, Value value);
};

std::uint64_t Number(const char* option, Value text, std::uint64_t least, std::uint64_t most)
{
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most) {
        throw ServiceOptionError(std::string(option) + " needs a number from " + std::to_string(least) + " to " +
                                 std::to_string(most) + ", not \"" + text + '"');
    }
    return number;
}

CutPoint Cut(Value text)
{
    if (text == "before-answer") {
        return CutPoint::beforeAnswer;
    }
    if (text == "in-body") {
        return CutPoint::inBody;
    }
    throw ServiceOptionError("--close needs before-answer or in-body, not \"" + text + '"');
}

constexpr Option kOptions[] = {
    {"--port", "N", "listen on this port (default 8000; 0: any that is free)",
     [](ServiceOptions& options, Value value) {
         options.config.port = static_cast<std::uint16_t>(Number("--port", value, 0, 65535));
     }},
    {"--certificate", "FILE", "the server's certificate, PEM (required)",
     [](ServiceOptions& options, Value value) { options.config.certificateFile = value; }},
    {"--key", "FILE", "its private key, PEM (required)",
     [](ServiceOptions& options, Value value) { options.config.keyFile = value; }},
    {"--pulses", "FILE", "append one JSON line a pulse to this file",
     [](ServiceOptions& options, Value value) { options.pulsesFile = value; }},
    {"--status", "N", "answer with this status",
     [](ServiceOptions& options, Value value) {
         options.behaviour.status = static_cast<int>(Number("--status", value, 200, 599));
     }},
    {"--delay", "MS", "wait so long before the answer",
     [](ServiceOptions& options, Value value) {
         options.behaviour.delay = std::chrono::milliseconds(Number("--delay", value, 0, kLongestDelayMs));
     }},
    {"--body-bytes", "N", "answer with a body of so many bytes",
     [](ServiceOptions& options, Value value) {
         options.behaviour.bodyBytes = Number("--body-bytes", value, 0, kMostBodyBytes);
     }},
    {"--chunked", nullptr, "send the body in chunks",
     [](ServiceOptions& options, Value) { options.behaviour.chunked = true; }},
    {"--stall-after", "BYTES", "stop sending after so many bytes of the body",
     [](ServiceOptions& options, Value value) {
         options.behaviour.stallAfter = Number("--stall-after", value, 0, kMostBodyBytes);
     }},
    {"--close", "WHEN", "cut the connection: before-answer or in-body",
     [](ServiceOptions& options, Value value) { options.behaviour.cut = Cut(value); }},
    {"--help", nullptr, "show this text", [](ServiceOptions& options, Value) { options.help = true; }},
};

const Option& Find(std::string_view name)
{
    const auto found = std::find_if(std::begin(kOptions), std::end(kOptions),
                                    [name](const Option& option) { return option.name == name; });
    if (found == std::end(kOptions)) {
        throw ServiceOptionError("there is no option \"" + std::string(name) + '"');
    }
    return *found;
}

} // namespace

std::string ServiceHelpText()
{
    std::ostringstream text;
    text << "vantor-service receives pulses on https://localhost, checks, decodes and shows them.\n\n"
            "Options:\n";
    for (const Option& option : kOptions) {
        std::string usage = std::string(option.name) + ' ' + (option.valueName ? option.valueName : "");
        usage.resize(std::max<std::size_t>(usage.size(), 22), ' ');
        text << "  " << usage << option.help << '\n';
    }
    text << "\nIt ends on SIGTERM or SIGINT. Exit code: 0 ended so, 1 could not start, 2 wrong options.\n";
    return text.str();
}

ServiceOptions ParseServiceOptions(std::span<const char* const> arguments)
{
    ServiceOptions options;
    options.config.port = kDefaultPort;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const Option& option = Find(arguments[index]);
        std::string value;
        if (option.valueName != nullptr) {
            if (++index == arguments.size()) {
                throw ServiceOptionError(std::string(option.name) + " needs a value: " + option.valueName);
            }
            value = arguments[index];
        }
        option.take(options, value);
    }
    if (!options.help && (options.config.certificateFile.empty() || options.config.keyFile.empty())) {
        throw ServiceOptionError("--certificate and --key are required");
    }
    return options;
}

} // namespace vantor::service
