// One run of the program, as its log tells of it.
#pragma once

#include "inspect/pulse_text.h"

#include <chrono>
#include <cstddef>
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
    std::string outcome;          ///< in one sentence
    std::size_t bytes = 0;        ///< how much memory it takes, roughly
    std::size_t leftOutCount = 0; ///< arguments and events that there was no room for
};

} // namespace vantor::inspect
