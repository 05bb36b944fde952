// The command line of vantor-service.
#pragma once

#include "service/reputation_service.h"

#include <span>
#include <stdexcept>
#include <string>

namespace vantor::service {

struct ServiceOptions {
    ServiceConfig config;
    std::string pulsesFile; ///< empty: pulses are only printed
    Behaviour behaviour;
    bool help = false;
};

/// what() says what is wrong with the command line.
class ServiceOptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The text of --help.
std::string ServiceHelpText();

/// Reads the arguments behind the program's name. Throws ServiceOptionError.
ServiceOptions ParseServiceOptions(std::span<const char* const> arguments);

} // namespace vantor::service
