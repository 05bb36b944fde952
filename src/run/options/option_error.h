// The exception for an invalid command line.
#pragma once

#include <stdexcept>

namespace vantor {

/// what() is the message for the user; it ends the run with exit code 1.
class OptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace vantor
