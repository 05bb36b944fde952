// The runs that a log tells of.
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

/// What is malformed, in printable text. Of many problems only the first are kept.
class Problems {
public:
    void Add(std::string problem);
    const std::vector<std::string>& Texts() const { return m_texts; }

private:
    std::vector<std::string> m_texts;
};

struct RunLog {
    std::deque<Run> runs;  ///< the latest, in the order of their messages
    std::size_t count = 0; ///< of all runs that the log tells of
    Problems problems;
};

/// Reads a log piece by piece. It may be of any size: at most as many runs are kept as asked for, and of those no more
/// than keptBytes in all, the latest; a problem tells when there would have been more.
class RunLogReader {
public:
    explicit RunLogReader(std::size_t keptRuns, std::size_t keptBytes = 32U << 20)
        : m_keptRuns(keptRuns), m_keptBytes(keptBytes)
    {
    }
    RunLogReader(const RunLogReader&) = delete;
    RunLogReader& operator=(const RunLogReader&) = delete;

    void Read(std::string_view piece) { m_messages.Read(piece); }

    /// Whether there was a message, so that the file is a log.
    bool HasFoundAny() const { return m_messages.HasFoundAny(); }

    /// The runs. Call it behind the last piece, once.
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
    std::size_t m_bytes = 0; ///< of the runs that are kept
    bool m_isFull = false;
};

} // namespace vantor::inspect
