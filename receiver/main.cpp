// vantor-receiver: the local receiver as a program.
#include "inspect/input.h"
#include "inspect/printable_text.h"
#include "inspect/pulse_text.h"
#include "receiver/receiver.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>

namespace {

using namespace vantor::receiver;

constexpr int kExitCannotStart = 1;
constexpr int kExitWrongOptions = 2;
constexpr int kMaxBodyBytes = 256'000'000;
constexpr int kMaxDelayMs = 600'000;

struct Options {
    ReceiverConfig config{{}, {}, 8000};
    std::string pulsesFile; ///< if empty, pulses are only printed
    Behaviour behaviour;
};

/// Declares the command line, whose values are stored in `options`.
void Describe(CLI::App& app, Options& options)
{
    Behaviour& behaviour = options.behaviour;
    const CLI::Range bytes(0, kMaxBodyBytes), delay(0, kMaxDelayMs);

    app.footer("It ends on SIGTERM or SIGINT. Exit code: 0 ended so, 1 could not start, 2 wrong options.");
    app.set_help_flag("--help", "show this text");
    app.option_defaults()->take_last();
    app.add_option("--port", options.config.port, "listen on this port (0: any that is free)")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--certificate", options.config.certificateFile, "the server's certificate, PEM")
        ->type_name("FILE")
        ->required();
    app.add_option("--key", options.config.keyFile, "its private key, PEM")->type_name("FILE")->required();
    app.add_option("--pulses", options.pulsesFile,
                   "append each pulse to this file as a JSON line, and show its pulses on the page")
        ->type_name("FILE");
    app.add_option("--status", behaviour.status, "answer with this status")
        ->type_name("N")
        ->check(CLI::Range(200, 599));
    app.add_option_function<int>(
           "--delay", [&](int ms) { behaviour.delay = std::chrono::milliseconds(ms); },
           "wait this long before the answer")
        ->check(delay)
        ->type_name("MS");
    app.add_option("--body-bytes", behaviour.bodyBytes, "answer with a body of this length")
        ->type_name("N")
        ->check(bytes);
    app.add_flag_callback(
        "--chunked", [&] { behaviour.framing = Framing::chunked; }, "send the body in chunks");
    app.add_option_function<int>(
           "--piece-delay", [&](int ms) { behaviour.fault = SlowBody{std::chrono::milliseconds(ms)}; },
           "wait this long before each byte of the body")
        ->check(delay)
        ->type_name("MS");
    app.add_option_function<std::size_t>(
           "--stall-after", [&](std::size_t after) { behaviour.fault = StalledBody{after}; },
           "stop sending after so many bytes of the body")
        ->type_name("N")
        ->check(bytes);
    app.add_option_function<std::string>(
           "--close",
           [&](const std::string& when) {
               behaviour.fault = when == "in-body" ? Fault(CutInBody()) : Fault(CutBeforeAnswer());
           },
           "cut the connection")
        ->check(CLI::IsMember({"before-answer", "in-body"}))
        ->type_name("WHEN");
    app.add_option("--challenge", behaviour.challenges,
                   "act as a proxy that demands credentials, for example: Basic realm=\"x\"")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->type_name("VALUE")
        ->allow_extra_args(false);
}

int Complain(const std::string& message, int exitCode)
{
    std::cerr << "vantor-receiver: " << vantor::inspect::PrintableText(message) << std::endl;
    return exitCode;
}

/// Blocks the signals that end the receiver in all threads, so that Serve can wait for them.
sigset_t BlockEndingSignals()
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

/// Shows the pulses that an earlier run of the receiver wrote to the file on the page.
void ShowEarlierPulses(const std::string& file, Receiver& receiver)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string place = file + ": ";
    try {
        if (!stream || stream.peek() == std::ifstream::traits_type::eof()) {
            return;
        }
        const vantor::inspect::Input input = vantor::inspect::ReadInput(stream, Receiver::kMaxKept);
        for (const DatedPulse& pulse : LastPulses(input, Receiver::kMaxKept)) {
            receiver.AddPulse(pulse);
        }
        for (const std::string& problem : input.problems.Texts()) {
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
    const sigset_t signals = BlockEndingSignals();
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

int Run(int count, char** arguments)
{
    Options options;
    CLI::App app("Receives pulses on https://localhost, checks, decodes and shows them, here and to a browser.",
                 "vantor-receiver");
    Describe(app, options);
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == EXIT_SUCCESS // --help
                   ? app.exit(error)
                   : Complain(std::string(error.what()) + " (--help lists the options)", kExitWrongOptions);
    }
    return Serve(options);
}

} // namespace

int main(int count, char** arguments)
{
    try {
        return Run(count, arguments);
    } catch (const std::exception& error) { // such as a --pulses file that disappears, or no memory
        return Complain(error.what(), kExitCannotStart);
    }
}
