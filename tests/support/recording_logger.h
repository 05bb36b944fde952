// A logger that keeps what it is given.
#pragma once

#include "run/log/logger.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vantor {

class RecordingLogger : public ILogger {
public:
    void Log(LogLevel level, std::string_view message) noexcept override
    {
        const char* const name = level == LogLevel::trace ? "T " : level == LogLevel::warning ? "W " : "E ";
        lines.push_back(name + std::string(message));
    }

    /// Whether a line, level letter and blank before it, was logged.
    bool Has(std::string_view line) const { return std::find(lines.begin(), lines.end(), line) != lines.end(); }

    /// Each line as "T message", "W message" or "E message".
    std::vector<std::string> lines;
};

} // namespace vantor
