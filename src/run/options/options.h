// The command line: which options there are, what values they take, and which may stand together.
#pragma once

#include "run/config/run_config.h"
#include "run/log/logger.h"
#include "run/options/option_error.h"

#include <span>
#include <string>
#include <string_view>

namespace vantor {

/// Applies every argument, the program's own path at index 0 included, to the configuration, and logs each one.
/// Option names match without regard to case; values keep theirs. Unknown arguments are only warned about.
/// Throws OptionError for a missing value or a number that does not convert.
void ParseArguments(std::span<const std::string> arguments, RunConfig& config, ILogger& log);

/// Whether the argument is an option of the program, with or without a value.
bool IsOption(std::string_view argument);

/// Checks that the options may stand together. Throws OptionError with the message of the first rule broken.
void Validate(const RunConfig& config);

} // namespace vantor
