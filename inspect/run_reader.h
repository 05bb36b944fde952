// Builds a run from its messages.
#pragma once

#include "inspect/log_messages.h"
#include "inspect/run.h"
#include "inspect/run_outcome.h"

#include <string_view>

namespace vantor::inspect {

/// Takes the messages of one run, without passwords, in order.
class RunReader {
public:
    /// Beyond limitBytes of memory, arguments and events are only counted.
    explicit RunReader(std::size_t limitBytes) : m_limitBytes(limitBytes) {}

    void Take(const LogMessage& message);

    bool IsEmpty() const { return m_run.firstLine == 0; }

    /// Returns the run with its outcome. Call this once, after the last message.
    Run Finish();

private:
    struct Scope {
        std::string name;
        std::optional<std::chrono::sys_seconds> begun;
        std::optional<std::size_t> event; ///< index of the stage's event, if it has one
    };

    /// How to handle a trace message that starts with this text; `rest` is what follows it.
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
