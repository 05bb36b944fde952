// The text of a log line: "26/11/21 08:41:36: TRACE: message\r\n".
#pragma once

#include "run/log/logger.h"

#include <chrono>
#include <string>
#include <string_view>

namespace vantor {

/// The level's prefix, seven characters for every level so that messages line up.
std::string_view LevelPrefix(LogLevel level);

/// UTC time as "%y/%m/%d %H:%M:%S".
std::string FormatTimestamp(std::chrono::sys_seconds time);

/// A whole line, its end included. Messages quote what strangers wrote: replies, proxy settings, arguments. A blank
/// follows each line end inside the message, so that no part of it can pass for a line of the log.
std::string FormatLogLine(std::chrono::sys_seconds time, LogLevel level, std::string_view message);

} // namespace vantor
