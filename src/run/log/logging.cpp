#include "run/log/logging.h"

#include "platform/owner.h"
#include "run/log/log_line.h"
#include "run/log/log_texts.h"
#include "run/log/vantor_logging.h"

#include <chrono>
#include <exception>
#include <utility>

namespace vantor {
namespace {

void WriteLine(LogLevel level, std::string_view message) noexcept
{
    const LastErrorKeeper keeper;
    try {
        const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
        VantorLogging::GetLogger().Write(FormatLogLine(now, level, message));
    } catch (const std::exception&) {
        // There is nowhere left to report it.
    }
}

} // namespace

void LogTrace(std::string_view message) noexcept
{
    WriteLine(LogLevel::trace, message);
}

void LogWarning(std::string_view message) noexcept
{
    WriteLine(LogLevel::warning, message);
}

void LogError(std::string_view message) noexcept
{
    WriteLine(LogLevel::error, message);
}

ScopeTrace::ScopeTrace(std::string name) : m_name(std::move(name))
{
    LogTrace(texts::kEntering + m_name);
}

ScopeTrace::~ScopeTrace()
{
    LogTrace(texts::kLeaving + m_name);
}

void LoggerImpl::Log(LogLevel level, std::string_view message) noexcept
{
    WriteLine(level, message);
}

} // namespace vantor
