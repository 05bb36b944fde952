#include "inspect/shallow_json.h"

#include "inspect/pulse_decoder.h"

namespace vantor::inspect {

using nlohmann::ordered_json;

ordered_json ParseShallow(std::string_view text)
{
    constexpr int kDeepest = 4;
    return ordered_json::parse(
        text.begin(), text.end(),
        [](int depth, ordered_json::parse_event_t, ordered_json&) {
            if (depth > kDeepest) {
                throw PulseError("the JSON is nested too deeply");
            }
            return true;
        },
        false);
}

} // namespace vantor::inspect
