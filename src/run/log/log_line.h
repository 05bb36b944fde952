// Formats log lines: "26/11/21 08:41:36: TRACE: message\r\n".
#pragma once

#include "run/log/logger.h"

#include <chrono>
#include <string>
#include <string_view>

namespace vantor {

/// The level's prefix, always seven characters so that messages line up.
std::string_view LevelPrefix(LogLevel level);

/// UTC time as "%y/%m/%d %H:%M:%S".
std::string FormatTimestamp(std::chrono::sys_seconds time);

/// A complete line with its line end. Messages quote untrusted text, such as replies, proxy settings and arguments, so
/// a blank is inserted after each line end in the message: no part of it can be mistaken for a log line.
std::string FormatLogLine(std::chrono::sys_seconds time, LogLevel level, std::string_view message);

} // namespace vantor
