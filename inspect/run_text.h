// Writes a run as a block of text for people or as JSON.
#pragma once

#include "inspect/run.h"

#include <cstddef>
#include <string>

namespace vantor::inspect {

/// A block of lines, each with its line end: outcome, time, command line, and the time line of stages, proxy decisions,
/// warnings and errors; without the pulse. Safe to show on a terminal, whatever the log contains.
std::string RunBlock(const Run& run, std::size_t number, std::size_t count);

/// "run", "lines", "begin", "end", "arguments", "delivery", "outcome", "events", and "pulse" or "problem" if there is
/// one.
nlohmann::ordered_json RunJson(const Run& run, std::size_t number);

} // namespace vantor::inspect
