// One run of the program, as its log describes it.
#pragma once

#include "inspect/pulse_text.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vantor::inspect {

enum class EventKind { stage, note, proxy, warning, error };

/// Something in a run that gets a line in the time line.
struct RunEvent {
    EventKind kind = EventKind::note;
    std::size_t line = 0; ///< in the log
    std::optional<std::chrono::sys_seconds> time;
    std::string text;                               ///< as logged, without passwords; a stage's name
    int depth = 0;                                  ///< number of enclosing stages
    std::optional<std::chrono::seconds> duration{}; ///< of a completed stage, unless the clock was set back
};

/// What became of the report.
enum class Delivery { notTried, delivered, failed, unknown };

struct Run {
    std::size_t firstLine = 0;
    std::size_t lastLine = 0;
    std::optional<std::chrono::sys_seconds> begin;
    std::optional<std::chrono::sys_seconds> end;
    std::vector<std::string> arguments; ///< the program's path first; without passwords
    std::vector<RunEvent> events;       ///< in order
    std::optional<Pulse> pulse;         ///< as posted; only the logged record if no body was built
    std::size_t pulseLine = 0;          ///< where the body was logged; 0 if it was not
    std::string pulseProblem;           ///< why that body is not a pulse
    Delivery delivery = Delivery::notTried;
    std::string outcome;          ///< in one sentence
    std::size_t bytes = 0;        ///< approximate memory use
    std::size_t leftOutCount = 0; ///< arguments and events for which there was no room
};

} // namespace vantor::inspect
