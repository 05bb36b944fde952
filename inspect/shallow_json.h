// JSON from a stranger, parsed without trust in its depth.
#pragma once

#include <nlohmann/json.hpp>

#include <string_view>

namespace vantor::inspect {

/// Parses what is not a pulse's body yet, no deeper than a receiver's lines go, for the parser's own stack is not endless.
/// Gives a discarded value when the text is no JSON. Throws PulseError when it is nested too deeply.
nlohmann::ordered_json ParseShallow(std::string_view text);

} // namespace vantor::inspect
