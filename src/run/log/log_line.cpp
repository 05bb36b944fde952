#include "run/log/log_line.h"

namespace vantor {
namespace {

void AppendTwoDigits(std::string& text, unsigned value)
{
    text += static_cast<char>('0' + value / 10 % 10);
    text += static_cast<char>('0' + value % 10);
}

/// The text with a blank behind each of its line ends: CR LF, LF, or a CR alone.
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
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{time - day};

    std::string text;
    AppendTwoDigits(text, static_cast<unsigned>(static_cast<int>(date.year()) % 100));
    text += '/';
    AppendTwoDigits(text, static_cast<unsigned>(date.month()));
    text += '/';
    AppendTwoDigits(text, static_cast<unsigned>(date.day()));
    text += ' ';
    AppendTwoDigits(text, static_cast<unsigned>(clock.hours().count()));
    text += ':';
    AppendTwoDigits(text, static_cast<unsigned>(clock.minutes().count()));
    text += ':';
    AppendTwoDigits(text, static_cast<unsigned>(clock.seconds().count()));
    return text;
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
