// The one-operation logging interface.
#pragma once

#include <cstdint>
#include <string_view>

namespace vantor {

/// Any value other than trace and warning is written as an error line.
enum class LogLevel : std::uint32_t { trace = 1, warning = 2, error = 3 };

/// Where layers that do not know the program's log write to. The HTTP layer holds it as a shared reference that may
/// be empty, in which case nothing is written.
class ILogger {
public:
    virtual ~ILogger() = default;

    /// Writes one line. The message is narrow text without a line end. Never throws, and leaves the thread's
    /// last-error value as it was.
    virtual void Log(LogLevel level, std::string_view message) noexcept = 0;
};

} // namespace vantor
