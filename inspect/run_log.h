// Reads the runs in a log.
#pragma once

#include "inspect/log_messages.h"
#include "inspect/password_mask.h"
#include "inspect/pulse_text.h"
#include "inspect/run_reader.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace vantor::inspect {

/// Descriptions of malformed parts, in printable text. Only the first ones are kept.
class Problems {
public:
    void Add(std::string problem);
    const std::vector<std::string>& Texts() const { return m_texts; }

private:
    std::vector<std::string> m_texts;
};

struct RunLog {
    std::deque<Run> runs;  ///< the latest ones, in the order of their messages
    std::size_t count = 0; ///< of all runs in the log
    Problems problems;
};

/// Reads a log of any size, piece by piece. Keeps the latest runs, at most keptRuns and at most keptBytes in total, and
/// adds a problem if that second limit leaves runs out.
class RunLogReader {
public:
    explicit RunLogReader(std::size_t keptRuns, std::size_t keptBytes = 32U << 20)
        : m_keptRuns(keptRuns), m_keptBytes(keptBytes)
    {
    }
    RunLogReader(const RunLogReader&) = delete;
    RunLogReader& operator=(const RunLogReader&) = delete;

    void Read(std::string_view piece) { m_messages.Read(piece); }

    /// Whether a message was found, so that the file is a log.
    bool HasFoundAny() const { return m_messages.HasFoundAny(); }

    /// Returns the runs. Call this once, after the last piece.
    RunLog Finish();

private:
    void Take(LogMessage message);
    void EndRun();

    const std::size_t m_keptRuns;
    const std::size_t m_keptBytes;
    LogMessageReader m_messages{[this](LogMessage message) { Take(std::move(message)); }};
    PasswordMask m_mask;
    RunReader m_run{m_keptBytes / 2};
    RunLog m_log;
    std::size_t m_bytes = 0; ///< of the kept runs
    bool m_isFull = false;
};

} // namespace vantor::inspect
