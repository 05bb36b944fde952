// Reads a file for inspection, whatever kind it is.
#pragma once

#include "inspect/pulse_text.h"
#include "inspect/run_log.h"

#include <deque>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantor::inspect {

/// Pulses from a report, from bodies or from the receiver's lines, or runs from a log.
struct Input {
    std::deque<DatedPulse> pulses; ///< the latest ones
    RunLog log;
    Problems problems; ///< malformed parts
};

/// what() says, in printable text, why the input is none of these.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Detects what the rest of the stream is and reads it, keeping only the last `kept` runs or pulses. Ignores line
/// breaks around and within a Base64 report, as mail programs insert them. A log may be of any size. Throws InputError
/// if the input holds no pulse, if it is not a log and larger than 256 MiB, or if reading fails.
Input ReadInput(std::istream& stream, std::size_t kept);

/// The last `count` pulses of the input, or fewer, in order. Pulses from a log have the time of their run.
std::vector<DatedPulse> LastPulses(const Input& input, std::size_t count);

} // namespace vantor::inspect
