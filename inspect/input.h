// What a file for inspection turns out to hold.
#pragma once

#include "inspect/pulse_text.h"
#include "inspect/run_log.h"

#include <deque>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantor::inspect {

/// Pulses from a report, from bodies or from a receiver's lines; or runs from a log.
struct Input {
    std::deque<DatedPulse> pulses; ///< the latest
    RunLog log;
    Problems problems; ///< what is malformed beside that
};

/// what() says why the text is none of these, in printable text.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Finds out what the rest of the stream is and reads it; of runs or pulses only the last `kept`. Line breaks around and
/// within a Base64 report are passed over, as they come with a mail. A log may be of any size. Throws InputError when it
/// is nothing that holds a pulse, when it is no log and larger than 256 MiB, or when reading fails.
Input ReadInput(std::istream& stream, std::size_t kept);

/// The last pulses of the input, in order, at most `count`; those of a log with the time of their run.
std::vector<DatedPulse> LastPulses(const Input& input, std::size_t count);

} // namespace vantor::inspect
