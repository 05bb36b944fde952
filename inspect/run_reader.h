// From the messages of one run to the run.
#pragma once

#include "inspect/log_messages.h"
#include "inspect/run.h"
#include "inspect/run_outcome.h"

#include <string_view>

namespace vantor::inspect {

/// Takes the messages of one run, without passwords, in order.
class RunReader {
public:
    /// Of a run that takes more memory the rest is counted, and otherwise left out.
    explicit RunReader(std::size_t limitBytes) : m_limitBytes(limitBytes) {}

    void Take(const LogMessage& message);

    bool IsEmpty() const { return m_run.firstLine == 0; }

    /// The run with its outcome. Call it behind the last message, once.
    Run Finish();

private:
    struct Scope {
        std::string name;
        std::optional<std::chrono::sys_seconds> begun;
        std::optional<std::size_t> event; ///< of a stage
    };

    /// What is done with a trace message that begins with a text; `rest` is what follows it.
    struct Rule {
        std::string_view beginning;
        void (RunReader::*take)(const LogMessage& message, std::string_view rest);
    };
    static const Rule kRules[];

    bool HasRoomFor(std::size_t bytes);
    void AddEvent(EventKind kind, const LogMessage& message, std::string_view text);
    void TakeTrouble(const LogMessage& message);
    void OpenScope(const LogMessage& message, std::string_view name);
    void CloseScope(const LogMessage& message, std::string_view name);
    void TakeArgument(const LogMessage& message, std::string_view argument);
    void TakeBody(const LogMessage& message, std::string_view rest);
    void TakeRecord(const LogMessage& message, std::string_view record);
    void TakeProxy(const LogMessage& message, std::string_view rest);
    void TakeNote(const LogMessage& message, std::string_view rest);

    std::size_t m_limitBytes;
    Run m_run;
    RunFacts m_facts;
    std::vector<Scope> m_open;
};

} // namespace vantor::inspect
