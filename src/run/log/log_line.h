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

/// A whole line, its end included.
std::string FormatLogLine(std::chrono::sys_seconds time, LogLevel level, std::string_view message);

} // namespace vantor
