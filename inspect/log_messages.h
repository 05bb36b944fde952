// Splits a log of the program into messages. Nothing in the file is trusted.
#pragma once

#include "run/log/logger.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vantor::inspect {

struct LogMessage {
    std::size_t firstLine = 0; ///< in the file, from 1
    std::size_t lastLine = 0;
    std::optional<std::chrono::sys_seconds> time;
    LogLevel level = LogLevel::trace;
    std::string text; ///< without time stamp, level and line end; further lines of the message follow after '\n'
    /// Whether this is the first message of the log. A second one can follow, if the lines before the first time stamp
    /// turn out to be the rest of a truncated message; then everything before it must be discarded.
    bool beginsLog = false;
};

/// Reads a log piece by piece and passes on each complete message. Lines without a level belong to the previous
/// message; lines before the first message, from a file that was cut there, are dropped. If no message has a time
/// stamp, none needs one. Only the first kLimitBytes bytes of a message are kept.
class LogMessageReader {
public:
    static constexpr std::size_t kLimitBytes = 1U << 17; ///< twice the maximum size of a body

    explicit LogMessageReader(std::function<void(LogMessage message)> take) : m_take(std::move(take)) {}

    void Read(std::string_view piece);

    /// Call this after the last piece.
    void Finish();

    /// Whether a message was found, so that the file is a log.
    bool HasFoundAny() const { return m_message.has_value(); }

private:
    void EndLine();
    void EndMessage();

    std::function<void(LogMessage message)> m_take;
    std::string m_line; ///< the line being read
    std::size_t m_lineNumber = 1;
    std::optional<LogMessage> m_message; ///< the message whose lines are being read
    bool m_isStamped = false;
};

} // namespace vantor::inspect
