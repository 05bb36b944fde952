// The program's log while a test runs.
#pragma once

#include "run/run_config.h"
#include "run/vantor_logging.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
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
        const std::string text(std::istreambuf_iterator<char>(file), {});
        std::vector<std::string> lines;
        for (std::size_t begin = 0, end; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
            lines.push_back(text.substr(begin + kStampLength, end - begin - kStampLength));
        }
        return lines;
    }

    bool Has(const std::string& line) const
    {
        const auto lines = Lines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

private:
    static constexpr std::size_t kStampLength = 19;

    /// Removed after the log let go of it: members go in the reverse of their order.
    struct File {
        ~File() { std::remove(path.c_str()); }
        std::string path = "log_capture_" + std::to_string(::GetCurrentProcessId()) + ".log";
    };

    File m_file;
    VantorLogging m_logging;
};

} // namespace vantor
