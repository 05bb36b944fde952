// The logging interface of the layers below the run.
#pragma once

#include <cstdint>
#include <string_view>

namespace vantor {

/// Any value other than trace and warning is logged as an error.
enum class LogLevel : std::uint32_t { trace = 1, warning = 2, error = 3 };

/// Used by layers that do not know the program's log. The HTTP layer holds it in a shared pointer that may be empty, in
/// which case nothing is logged.
class ILogger {
public:
    virtual ~ILogger() = default;

    /// Writes one line. The message is narrow text without a line end. Never throws, and keeps the thread's last-error
    /// value.
    virtual void Log(LogLevel level, std::string_view message) noexcept = 0;
};

} // namespace vantor
