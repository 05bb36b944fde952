// Writing to the program's log: single lines, scope traces, and the logger that other layers are given.
#pragma once

#include "run/log/logger.h"

#include <string>
#include <string_view>

namespace vantor {

/// Each builds one line (UTC time, level, message) and hands it to VantorLogging. A line that cannot be written is
/// lost without a word: logging never ends the run. The thread's last-error value stays as it was.
void LogTrace(std::string_view message) noexcept;
void LogWarning(std::string_view message) noexcept;
void LogError(std::string_view message) noexcept;

/// Logs "Entering " + name at once and "Leaving " + name at the end of the scope.
class ScopeTrace {
public:
    explicit ScopeTrace(std::string name);
    ~ScopeTrace();
    ScopeTrace(const ScopeTrace&) = delete;
    ScopeTrace& operator=(const ScopeTrace&) = delete;

private:
    std::string m_name;
};

/// The logger whose lines land in the program's log.
class LoggerImpl : public ILogger {
public:
    void Log(LogLevel level, std::string_view message) noexcept override;
};

} // namespace vantor
