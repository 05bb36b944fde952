// The program's log.
#pragma once

#include "run/config/run_config.h"

#include <memory>
#include <string>
#include <string_view>

namespace vantor {

class AppendFile;

/// Collects lines in memory until the command line has been read, then writes them and all later ones to the configured
/// log file and, with /verbose, to standard output. The run driver owns the only object; everything else uses
/// GetLogger.
class VantorLogging {
public:
    VantorLogging();
    ~VantorLogging();
    VantorLogging(const VantorLogging&) = delete;
    VantorLogging& operator=(const VantorLogging&) = delete;

    /// Opens config.logFile for appending, if it is set, and writes the collected lines. If the file cannot be opened,
    /// the run continues without it, unreported. Throws std::logic_error if called a second time.
    void Configure(const RunConfig& config);

    /// The live object. Throws std::logic_error if there is none.
    static VantorLogging& GetLogger();

    /// Writes a complete line, which includes its line end.
    void Write(std::string_view line);

    /// Whether lines go anywhere: the file is open or lines are echoed.
    bool IsActive() const { return m_fileOpen || m_echo; }

private:
    bool m_echo = false;
    bool m_fileOpen = false;
    bool m_configured = false;
    std::unique_ptr<AppendFile> m_file;
    std::string m_memory;
};

} // namespace vantor
