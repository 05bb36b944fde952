#include "inspect/run_log.h"

#include "run/log/log_texts.h"

#include <utility>

namespace vantor::inspect {
namespace {

constexpr std::size_t kProblems = 100;

bool BeginsRun(const LogMessage& message)
{
    // Runs that overlap in time cannot be separated, because lines do not identify their process.
    return message.level == LogLevel::trace && message.text == texts::kEntering + std::string(texts::kGetConfig);
}

} // namespace

void Problems::Add(std::string problem)
{
    if (m_texts.size() < kProblems) {
        m_texts.push_back(std::move(problem));
    } else if (m_texts.size() == kProblems) {
        m_texts.emplace_back("there are more problems than these");
    }
}

RunLog RunLogReader::Finish()
{
    m_messages.Finish();
    EndRun();
    if (m_isFull) {
        m_log.problems.Add("it holds more than " + std::to_string(m_keptBytes >> 20) +
                           " MiB that would be shown: earlier runs are left out (--last N shows the last ones)");
    }
    return std::move(m_log);
}

void RunLogReader::Take(LogMessage message)
{
    if (message.beginsLog) {
        m_run = RunReader(m_keptBytes / 2);
        m_log = {};
        m_bytes = 0;
        m_isFull = false;
    } else if (BeginsRun(message)) {
        EndRun();
    }
    if (!message.text.starts_with(texts::kBodyBegins)) { // a body is decoded unchanged
        message.text = m_mask.Apply(message.text);
    }
    m_run.Take(message);
}

void RunLogReader::EndRun()
{
    if (m_run.IsEmpty()) {
        return;
    }
    Run run = m_run.Finish();
    m_run = RunReader(m_keptBytes / 2);
    if (!run.pulseProblem.empty()) {
        m_log.problems.Add("line " + std::to_string(run.pulseLine) +
                           ": the logged body is no pulse: " + run.pulseProblem);
    }
    if (run.leftOutCount != 0) {
        m_log.problems.Add("line " + std::to_string(run.firstLine) + ": the run tells too much: " +
                           std::to_string(run.leftOutCount) + " of its arguments and events are left out");
    }
    ++m_log.count;
    m_bytes += run.bytes;
    m_log.runs.push_back(std::move(run));
    while (m_log.runs.size() > m_keptRuns || (m_bytes > m_keptBytes && m_log.runs.size() > 1)) {
        m_isFull |= m_log.runs.size() <= m_keptRuns;
        m_bytes -= m_log.runs.front().bytes;
        m_log.runs.pop_front();
    }
}

} // namespace vantor::inspect
