#include "run/log/operation_log.h"

#include "run/log/log_texts.h"

#include <utility>

namespace vantor {

OperationLog::OperationLog(std::shared_ptr<ILogger> logger, std::string_view operation)
    : m_logger(std::move(logger)), m_operation(operation)
{
}

void OperationLog::WriteRaw(LogLevel level, std::string_view line) const
{
    if (m_logger) {
        m_logger->Log(level, line);
    }
}

void OperationLog::Write(LogLevel level, std::string_view message) const
{
    if (m_logger) {
        m_logger->Log(level, m_operation + ": " + std::string(message));
    }
}

TracedOperation::TracedOperation(std::shared_ptr<ILogger> logger, std::string_view operation)
    : OperationLog(std::move(logger), operation)
{
    WriteRaw(LogLevel::trace, texts::kEnter + Operation());
}

TracedOperation::~TracedOperation()
{
    WriteRaw(LogLevel::trace, texts::kExit + Operation());
}

} // namespace vantor
