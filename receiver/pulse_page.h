// The page on which the receiver shows its pulses.
#pragma once

#include "inspect/pulse_text.h"

#include <string>
#include <vector>

namespace vantor::receiver {

/// Which pulses the page shows. What is empty, or names no mode or bit, lets every pulse through.
struct PageFilter {
    std::string mode; ///< such as "periodic"
    std::string bit;  ///< a result bit that has to be set, by its name
};

/// The page shows so many pulses at most.
inline constexpr std::size_t kMaxShown = 100;

/// What the browser may do with the page: nothing but show it and send its form back here.
inline constexpr char kPagePolicy[] =
    "default-src 'none'; style-src 'unsafe-inline'; form-action 'self'; frame-ancestors 'none'; base-uri 'none'";

/// A whole HTML document: the pulses that pass the filter, the latest first, each with what changed since the pulse
/// before it of the same host. Pulses come in the order of their arrival. It needs no script, and nothing that came in
/// a pulse gets into it as anything but ASCII text. A host is told by "cid" and "cliid"; a pulse without the latter is
/// compared with no other.
std::string PulsePage(const std::vector<inspect::DatedPulse>& pulses, const PageFilter& filter);

} // namespace vantor::receiver
