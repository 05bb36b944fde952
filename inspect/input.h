// What a file for inspection turns out to hold.
#pragma once

#include "inspect/pulse_text.h"
#include "inspect/run_log.h"

#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vantor::inspect {

/// Pulses from a report, from bodies or from a receiver's lines; or runs from a log.
struct Input {
    std::vector<DatedPulse> pulses;
    std::vector<Run> runs;
    std::vector<std::string> problems; ///< what is malformed beside that, each in printable text
};

/// what() says why the text is none of these, in printable text.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// All that is left of the stream. Throws InputError when that is more than 256 MiB, or reading fails.
std::string ReadWhole(std::istream& stream);

/// Finds out what the text is and reads it. Line breaks around and within a Base64 report are passed over, as they come
/// with a mail. Throws InputError when the text is nothing that holds a pulse.
Input ReadInput(std::string_view text);

/// The last pulses of the input, in order, at most so many; those of a log with the time of their run.
std::vector<DatedPulse> LastPulses(const Input& input, std::size_t count);

} // namespace vantor::inspect
