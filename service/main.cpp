// vantor-service: the local reputation service as a program.
#include "service/printable_text.h"
#include "service/pulse_text.h"
#include "service/reputation_service.h"
#include "service/service_options.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <span>

namespace {

using namespace vantor::service;

constexpr int kExitCannotStart = 1;
constexpr int kExitWrongOptions = 2;

int Complain(const std::string& message, int exitCode)
{
    std::cerr << "vantor-service: " << PrintableText(message) << std::endl;
    return exitCode;
}

/// The signals that end the service, withheld from every thread so that one call waits for them.
sigset_t WithholdEndingSignals()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGINT);
    ::sigaddset(&signals, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void ShowPulse(const ReceivedPulse& received, std::ofstream& pulses)
{
    std::cout << PulseBlock(received.pulse, received.received) << std::endl;
    if (!pulses.is_open()) {
        return;
    }
    pulses << PulseJson(received.pulse, received.received) << std::endl;
    if (!pulses) {
        Complain("a pulse could not be written to the --pulses file", kExitCannotStart);
        pulses.clear();
    }
}

int Serve(const ServiceOptions& options)
{
    std::ofstream pulses;
    if (!options.pulsesFile.empty()) {
        pulses.open(options.pulsesFile, std::ios::app);
        if (!pulses) {
            return Complain("cannot write to \"" + options.pulsesFile + '"', kExitCannotStart);
        }
    }
    const sigset_t signals = WithholdEndingSignals();
    ReputationService service(options.config);
    service.SetBehaviour(options.behaviour);
    service.SetCallbacks([&](const ReceivedPulse& received) { ShowPulse(received, pulses); },
                         [](const std::string& line) { std::cout << line << std::endl; });
    try {
        service.Start();
    } catch (const ServiceError& error) {
        return Complain(error.what(), kExitCannotStart);
    }
    std::cout << "listening on https://localhost:" << service.Port() << std::endl;
    int signal = 0;
    ::sigwait(&signals, &signal);
    service.Stop();
    return EXIT_SUCCESS;
}

} // namespace

int main(int count, char** arguments)
{
    try {
        const std::span all(arguments, static_cast<std::size_t>(count));
        const ServiceOptions options = ParseServiceOptions(all.subspan(count > 0 ? 1 : 0));
        if (options.help) {
            std::cout << ServiceHelpText();
            return EXIT_SUCCESS;
        }
        return Serve(options);
    } catch (const ServiceOptionError& error) {
        return Complain(std::string(error.what()) + " (--help lists the options)", kExitWrongOptions);
    }
}
