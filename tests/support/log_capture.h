// The program's log while a test runs.
#pragma once

#include "run/config/run_config.h"
#include "run/log/vantor_logging.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace vantor {

/// Takes the place of the program's log; what is written to it can be read back.
class LogCapture {
public:
    LogCapture() { m_logging.Configure({.logFile = m_file.path}); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The lines so far, without time stamps and line ends.
    std::vector<std::string> Lines() const
    {
        std::ifstream file(m_file.path, std::ios::binary);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line.substr(kStampLength, line.size() - kStampLength - 1));
        }
        return lines;
    }

    /// The lines since the last call.
    std::vector<std::string> Take()
    {
        std::vector<std::string> lines = Lines();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::exchange(m_taken, lines.size())));
        return lines;
    }

    bool Has(const std::string& line) const { return std::ranges::count(Lines(), line) != 0; }

private:
    static constexpr std::size_t kStampLength = 19;

    /// Removed after the log let go of it: members go in the reverse of their order.
    struct File {
        ~File() { std::remove(path.c_str()); }
        std::string path = "log_capture_" + std::to_string(::GetCurrentProcessId()) + ".log";
    };

    std::size_t m_taken = 0;
    File m_file;
    VantorLogging m_logging;
};

} // namespace vantor
