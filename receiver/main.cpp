// vantor-receiver: the local receiver as a program.
#include "inspect/input.h"
#include "inspect/printable_text.h"
#include "inspect/pulse_text.h"
#include "receiver/receiver.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>

namespace {

using namespace vantor::receiver;

constexpr int kExitCannotStart = 1;
constexpr int kExitWrongOptions = 2;
constexpr int kMostBodyBytes = 256'000'000;
constexpr int kLongestDelayMs = 600'000;

struct Options {
    ReceiverConfig config;
    std::string pulsesFile; ///< empty: pulses are only printed
    Behaviour behaviour;
    bool help = false;
};

/// what() says what is wrong with the command line.
class OptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An option with the name of its value, if it takes one; what it does, and how it is taken.
struct Option {
    std::string_view usage;
    const char* help;
    void (*take)(Options& options, const std::string& value);

    std::string_view Name() const { return usage.substr(0, usage.find(' ')); }
    bool HasValue() const { return Name() != usage; }
};

int Number(const std::string& text, int least, int most)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most) {
        throw OptionError('"' + text + "\" is no number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return number;
}

std::size_t Bytes(const std::string& text)
{
    return static_cast<std::size_t>(Number(text, 0, kMostBodyBytes));
}

CutPoint Cut(const std::string& text)
{
    if (text != "before-answer" && text != "in-body") {
        throw OptionError("--close needs before-answer or in-body, not \"" + text + '"');
    }
    return text == "in-body" ? CutPoint::inBody : CutPoint::beforeAnswer;
}

constexpr Option kOptions[] = {
    {"--port N", "listen on this port (default 8000; 0: any that is free)",
     [](auto& options, auto& value) { options.config.port = static_cast<std::uint16_t>(Number(value, 0, 65535)); }},
    {"--certificate FILE", "the server's certificate, PEM (required)",
     [](auto& options, auto& value) { options.config.certificateFile = value; }},
    {"--key FILE", "its private key, PEM (required)",
     [](auto& options, auto& value) { options.config.keyFile = value; }},
    {"--pulses FILE", "append one JSON line a pulse to this file, and show those in it on the page",
     [](auto& options, auto& value) { options.pulsesFile = value; }},
    {"--status N", "answer with this status",
     [](auto& options, auto& value) { options.behaviour.status = Number(value, 200, 599); }},
    {"--delay MS", "wait so long before the answer",
     [](auto& options, auto& value) {
         options.behaviour.delay = std::chrono::milliseconds(Number(value, 0, kLongestDelayMs));
     }},
    {"--body-bytes N", "answer with a body of so many bytes",
     [](auto& options, auto& value) { options.behaviour.bodyBytes = Bytes(value); }},
    {"--chunked", "send the body in chunks", [](auto& options, auto&) { options.behaviour.chunked = true; }},
    {"--piece-delay MS", "wait so long before each byte of the body",
     [](auto& options, auto& value) {
         options.behaviour.pieceDelay = std::chrono::milliseconds(Number(value, 0, kLongestDelayMs));
     }},
    {"--stall-after BYTES", "stop sending after so many bytes of the body",
     [](auto& options, auto& value) { options.behaviour.stallAfter = Bytes(value); }},
    {"--close WHEN", "cut the connection: before-answer or in-body",
     [](auto& options, auto& value) { options.behaviour.cut = Cut(value); }},
    {"--challenge VALUE", "act as a proxy that asks for credentials, such as: Basic realm=\"x\"",
     [](auto& options, auto& value) { options.behaviour.challenges.push_back(value); }},
    {"--help", "show this text", [](auto& options, auto&) { options.help = true; }},
};

void ShowHelp()
{
    std::cout << "vantor-receiver receives pulses on https://localhost, checks, decodes and shows them,\n"
                 "here and to a browser.\n\nOptions:\n";
    for (const Option& option : kOptions) {
        std::cout << "  " << std::left << std::setw(22) << option.usage << option.help << '\n';
    }
    std::cout << "\nIt ends on SIGTERM or SIGINT. Exit code: 0 ended so, 1 could not start, 2 wrong options.\n";
}

/// Reads the arguments behind the program's name. Throws OptionError.
Options ParseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    options.config.port = 8000;
    // cppcheck-suppress StlMissingComparison ; the second step on is compared where it is made
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const auto* const option = std::find_if(std::begin(kOptions), std::end(kOptions),
                                                [&](const Option& one) { return one.Name() == *argument; });
        if (option == std::end(kOptions)) {
            throw OptionError("there is no option \"" + *argument + '"');
        }
        if (option->HasValue() && ++argument == arguments.end()) {
            throw OptionError("a value is missing: " + std::string(option->usage));
        }
        option->take(options, *argument);
    }
    if (!options.help && (options.config.certificateFile.empty() || options.config.keyFile.empty())) {
        throw OptionError("--certificate and --key are required");
    }
    return options;
}

int Complain(const std::string& message, int exitCode)
{
    std::cerr << "vantor-receiver: " << vantor::inspect::PrintableText(message) << std::endl;
    return exitCode;
}

/// The signals that end the receiver, withheld from every thread so that one call waits for them.
sigset_t WithholdEndingSignals()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGINT);
    ::sigaddset(&signals, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void ShowPulse(const DatedPulse& received, std::ofstream& pulses)
{
    std::cout << vantor::inspect::PulseBlock(received) << std::endl;
    if (!pulses.is_open()) {
        return;
    }
    pulses << vantor::inspect::JsonLine(vantor::inspect::PulseJson(received)) << std::endl;
    if (!pulses) {
        Complain("a pulse could not be written to the --pulses file", kExitCannotStart);
        pulses.clear();
    }
}

/// Lets the page show the pulses that an earlier run of the receiver has written.
void ShowEarlierPulses(const std::string& file, Receiver& receiver)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string place = file + ": ";
    try {
        const std::string text = vantor::inspect::ReadWhole(stream);
        if (text.empty()) {
            return;
        }
        const vantor::inspect::Input input = vantor::inspect::ReadInput(text);
        for (const DatedPulse& pulse : LastPulses(input, Receiver::kMostKept)) {
            receiver.AddPulse(pulse);
        }
        for (const std::string& problem : input.problems) {
            Complain(place + problem, kExitCannotStart);
        }
    } catch (const vantor::inspect::InputError& error) {
        Complain(place + error.what(), kExitCannotStart);
    }
}

int Serve(const Options& options)
{
    std::ofstream pulses;
    if (!options.pulsesFile.empty()) {
        pulses.open(options.pulsesFile, std::ios::app);
        if (!pulses) {
            return Complain("cannot write to \"" + options.pulsesFile + '"', kExitCannotStart);
        }
    }
    const sigset_t signals = WithholdEndingSignals();
    Receiver receiver(options.config);
    ShowEarlierPulses(options.pulsesFile, receiver);
    receiver.SetBehaviour(options.behaviour);
    receiver.SetCallbacks([&](const DatedPulse& received) { ShowPulse(received, pulses); },
                          [](const std::string& line) { std::cout << line << std::endl; });
    try {
        receiver.Start();
    } catch (const ReceiverError& error) {
        return Complain(error.what(), kExitCannotStart);
    }
    std::cout << "listening on https://localhost:" << receiver.Port() << "/ (a browser shows the pulses there)"
              << std::endl;
    int signal = 0;
    ::sigwait(&signals, &signal);
    receiver.Stop();
    return EXIT_SUCCESS;
}

} // namespace

int main(int count, char** arguments)
{
    try {
        const Options options = ParseOptions({arguments + 1, arguments + count});
        if (options.help) {
            ShowHelp();
            return EXIT_SUCCESS;
        }
        return Serve(options);
    } catch (const OptionError& error) {
        return Complain(std::string(error.what()) + " (--help lists the options)", kExitWrongOptions);
    } catch (const std::exception& error) { // such as a --pulses file that goes away, or no memory
        return Complain(error.what(), kExitCannotStart);
    }
}
