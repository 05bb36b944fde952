// A log of the program as messages. Whoever wrote the file is a stranger: nothing in it is trusted.
#pragma once

#include "run/log/logger.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantor::inspect {

struct LogMessage {
    std::size_t line = 0; ///< of its first line in the file, from 1
    std::optional<std::chrono::sys_seconds> time;
    LogLevel level = LogLevel::trace;
    std::string text; ///< without stamp, level and line end; further lines of the message follow behind '\n'
};

/// The messages of a log, in order. Lines without a level belong to the message before them; what precedes the first
/// message, because the file was cut there, is dropped. Where the first message has no time stamp, none needs one.
std::vector<LogMessage> ReadLogMessages(std::string_view log);

/// A message without the passwords that the program logs in clear.
std::string WithoutPasswords(std::string_view text);

} // namespace vantor::inspect
