// The command line: its options, their values, and which options may be combined.
#pragma once

#include "run/config/run_config.h"
#include "run/log/logger.h"
#include "run/options/option_error.h"

#include <span>
#include <string>
#include <string_view>

namespace vantor {

/// Logs every argument, including the program's own path at index 0, and applies it to the configuration. Option names
/// are not case-sensitive; values are unchanged. Unknown arguments only cause a warning.
/// Throws OptionError for a missing value or an invalid number.
void ParseArguments(std::span<const std::string> arguments, RunConfig& config, ILogger& log);

/// Whether the argument is one of the program's options, with or without a value.
bool IsOption(std::string_view argument);

/// Checks that the options may be combined. Throws OptionError with the message of the first violated rule.
void Validate(const RunConfig& config);

} // namespace vantor
