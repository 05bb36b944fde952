// The program's one log sink.
#pragma once

#include "run/config/run_config.h"

#include <memory>
#include <string>
#include <string_view>

namespace vantor {

class AppendFile;

/// Collects finished lines in memory until the command line has been read, then writes them and all later ones to the
/// log file that the configuration names and, with /verbose, to standard output. The run driver owns the one live
/// object; everything else reaches it through GetLogger.
class VantorLogging {
public:
    VantorLogging();
    ~VantorLogging();
    VantorLogging(const VantorLogging&) = delete;
    VantorLogging& operator=(const VantorLogging&) = delete;

    /// Opens config.logFile for appending, if it is set, and writes what was collected. A file that does not open is
    /// not reported: the run goes on without it. Throws std::logic_error when called a second time.
    void Configure(const RunConfig& config);

    /// The one live object. Throws std::logic_error when there is none.
    static VantorLogging& GetLogger();

    /// Writes a finished line, its line end included.
    void Write(std::string_view line);

    /// Whether lines reach anyone: the file is open or lines are echoed.
    bool IsActive() const { return m_fileOpen || m_echo; }

private:
    bool m_echo = false;
    bool m_fileOpen = false;
    bool m_configured = false;
    std::unique_ptr<AppendFile> m_file;
    std::string m_memory;
};

} // namespace vantor
