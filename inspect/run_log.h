// The runs that a log tells of.
#pragma once

#include "inspect/log_messages.h"
#include "inspect/pulse_text.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace vantor::inspect {

enum class EventKind { stage, note, proxy, warning, error };

/// Something in a run that is worth a line.
struct RunEvent {
    EventKind kind = EventKind::note;
    std::size_t line = 0; ///< in the log
    std::optional<std::chrono::sys_seconds> time;
    std::string text;                               ///< as logged, without passwords; of a stage its name
    int depth = 0;                                  ///< how many stages are around it
    std::optional<std::chrono::seconds> duration{}; ///< of a stage that was left, by a clock that went on
};

/// How the sending of the report ended.
enum class Delivery { notTried, delivered, failed, unknown };

/// One run of the program.
struct Run {
    std::size_t firstLine = 0;
    std::size_t lastLine = 0;
    std::optional<std::chrono::sys_seconds> begin;
    std::optional<std::chrono::sys_seconds> end;
    std::vector<std::string> arguments; ///< the program's path first; without passwords
    std::vector<RunEvent> events;       ///< in order
    std::optional<Pulse> pulse;         ///< as posted; of one that was never built only the record, as logged
    std::size_t pulseLine = 0;          ///< where the body was logged; 0 without one
    std::string pulseProblem;           ///< why that body is no pulse
    Delivery delivery = Delivery::notTried;
    std::string outcome; ///< in one sentence
};

/// The runs in the order of their messages. A run begins where the program begins to read its options, so runs that
/// overlapped in time are not told apart.
std::vector<Run> ReadRuns(const std::vector<LogMessage>& messages);

} // namespace vantor::inspect
