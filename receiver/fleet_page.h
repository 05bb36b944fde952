// The page on which the receiver shows what its pulses say of content updates.
#pragma once

#include "inspect/pulse_text.h"

#include <string>
#include <vector>

namespace vantor::receiver {

/// A whole HTML document that needs no script: what vantor-inspect --fleet says of the pulses, which are in order of
/// arrival.
std::string FleetPage(const std::vector<inspect::DatedPulse>& pulses);

} // namespace vantor::receiver
