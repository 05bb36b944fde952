// Logging for the HTTP and proxy layers, where every line begins with the qualified name of the operation.
#pragma once

#include "run/log/logger.h"

#include <memory>
#include <string>
#include <string_view>

namespace vantor {

/// Writes an operation's lines to a logger, which may be null.
class OperationLog {
public:
    OperationLog(std::shared_ptr<ILogger> logger, std::string_view operation);

    void Trace(std::string_view message) const { Write(LogLevel::trace, message); }
    void Warning(std::string_view message) const { Write(LogLevel::warning, message); }
    void Error(std::string_view message) const { Write(LogLevel::error, message); }

protected:
    /// Writes a line without the operation's name.
    void WriteRaw(LogLevel level, std::string_view line) const;
    const std::string& Operation() const { return m_operation; }

private:
    void Write(LogLevel level, std::string_view message) const;

    std::shared_ptr<ILogger> m_logger;
    std::string m_operation;
};

/// Also logs "Enter: " and "Exit : " lines at the start and end of the operation.
class TracedOperation : public OperationLog {
public:
    TracedOperation(std::shared_ptr<ILogger> logger, std::string_view operation);
    ~TracedOperation();
    TracedOperation(const TracedOperation&) = delete;
    TracedOperation& operator=(const TracedOperation&) = delete;
};

} // namespace vantor
