// A log of the program as messages. Whoever wrote the file is a stranger: nothing in it is trusted.
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
    std::string text; ///< without stamp, level and line end; further lines of the message follow behind '\n'
    /// The first message of the log. Another one follows where the lines before the first time stamp turn out to be the
    /// rest of a message that was cut: what was read before it does not count.
    bool beginsLog = false;
};

/// Reads a log piece by piece and hands on each message when it is whole. Lines without a level belong to the message
/// before them; what precedes the first message, because the file was cut there, is dropped. Where no message has a time
/// stamp, none needs one. Of a longer message only the first kLimitBytes bytes are kept.
class LogMessageReader {
public:
    static constexpr std::size_t kLimitBytes = 1U << 17; ///< a body has half of that at the most

    explicit LogMessageReader(std::function<void(LogMessage message)> take) : m_take(std::move(take)) {}

    void Read(std::string_view piece);

    /// Call it behind the last piece.
    void Finish();

    /// Whether there was a message, so that the file is a log.
    bool HasFoundAny() const { return m_message.has_value(); }

private:
    void EndLine();
    void EndMessage();

    std::function<void(LogMessage message)> m_take;
    std::string m_line; ///< the one that is being read
    std::size_t m_lineNumber = 1;
    std::optional<LogMessage> m_message; ///< the one whose lines are being read
    bool m_isStamped = false;
};

} // namespace vantor::inspect
