#include "run/log/log_line.h"

#include "platform/text/formatting.h"

namespace vantor {
namespace {

/// The text with a blank after each line end: CR LF, LF or a single CR.
std::string Indented(std::string_view text)
{
    std::string indented;
    for (std::size_t index = 0; index < text.size(); ++index) {
        indented += text[index];
        const bool isHalf = text.substr(index, 2) == "\r\n";
        if (!isHalf && (text[index] == '\r' || text[index] == '\n')) {
            indented += ' ';
        }
    }
    return indented;
}

} // namespace

std::string_view LevelPrefix(LogLevel level)
{
    switch (level) {
    case LogLevel::trace:
        return "TRACE: ";
    case LogLevel::warning:
        return " WARN: ";
    case LogLevel::error:
        break;
    }
    return "ERROR: ";
}

std::string FormatTimestamp(std::chrono::sys_seconds time)
{
    return FormatTime(UtcDateTime(time), kLogTime);
}

std::string FormatLogLine(std::chrono::sys_seconds time, LogLevel level, std::string_view message)
{
    std::string line = FormatTimestamp(time);
    line += ": ";
    line += LevelPrefix(level);
    line += Indented(message);
    line += "\r\n";
    return line;
}

} // namespace vantor
