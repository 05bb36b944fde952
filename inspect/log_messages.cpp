#include "inspect/log_messages.h"

#include "inspect/utc_time.h"
#include "run/log/log_line.h"

#include <algorithm>

namespace vantor::inspect {
namespace {

struct Start {
    std::optional<std::chrono::sys_seconds> time;
    LogLevel level;
    std::size_t size; ///< of stamp and level
};

std::optional<Start> FindStart(std::string_view line)
{
    constexpr std::string_view kBetween = ": ";
    const auto time = ParseUtc(line.substr(0, kLogTime.size()), kLogTime);
    const bool isStamped = time && line.substr(kLogTime.size()).starts_with(kBetween);
    const std::size_t stampSize = isStamped ? kLogTime.size() + kBetween.size() : 0;
    for (const LogLevel level : {LogLevel::trace, LogLevel::warning, LogLevel::error}) {
        if (line.substr(stampSize).starts_with(LevelPrefix(level))) {
            return Start{isStamped ? time : std::nullopt, level, stampSize + LevelPrefix(level).size()};
        }
    }
    return std::nullopt;
}

void AppendUpToLimit(std::string& text, std::string_view more)
{
    text.append(more.substr(0, LogMessageReader::kLimitBytes - std::min(LogMessageReader::kLimitBytes, text.size())));
}

} // namespace

void LogMessageReader::Read(std::string_view piece)
{
    for (std::size_t end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n')) {
        AppendUpToLimit(m_line, piece.substr(0, end));
        EndLine();
        piece.remove_prefix(end + 1);
    }
    AppendUpToLimit(m_line, piece);
}

void LogMessageReader::Finish()
{
    if (!m_line.empty()) {
        EndLine();
    }
    EndMessage();
}

void LogMessageReader::EndLine()
{
    if (m_line.ends_with('\r')) {
        m_line.pop_back();
    }
    const auto start = FindStart(m_line);
    if (start && (start->time || !m_isStamped)) {
        const bool beginsLog = !m_message || (start->time && !m_isStamped);
        EndMessage();
        m_isStamped |= start->time.has_value();
        m_message = {m_lineNumber, m_lineNumber, start->time, start->level, m_line.substr(start->size), beginsLog};
    } else if (m_message) {
        AppendUpToLimit(m_message->text, "\n" + m_line);
        m_message->lastLine = m_lineNumber;
    }
    m_line.clear();
    ++m_lineNumber;
}

void LogMessageReader::EndMessage()
{
    if (m_message) {
        m_take(std::move(*m_message));
    }
}

} // namespace vantor::inspect
