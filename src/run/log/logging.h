// Writing to the program's log: single lines, scope traces, and the ILogger for other layers.
#pragma once

#include "run/log/logger.h"

#include <string>
#include <string_view>

namespace vantor {

/// Each formats one line (UTC time, level, message) and passes it to VantorLogging. A line that cannot be written is
/// silently dropped, because logging must never end the run. The thread's last-error value is kept.
void LogTrace(std::string_view message) noexcept;
void LogWarning(std::string_view message) noexcept;
void LogError(std::string_view message) noexcept;

/// Logs "Entering " + name on construction and "Leaving " + name at the end of the scope.
class ScopeTrace {
public:
    explicit ScopeTrace(std::string name);
    ~ScopeTrace();
    ScopeTrace(const ScopeTrace&) = delete;
    ScopeTrace& operator=(const ScopeTrace&) = delete;

private:
    std::string m_name;
};

/// The ILogger that writes to the program's log.
class LoggerImpl : public ILogger {
public:
    void Log(LogLevel level, std::string_view message) noexcept override;
};

} // namespace vantor
