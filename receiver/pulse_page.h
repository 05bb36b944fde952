// The page on which the receiver shows its pulses.
#pragma once

#include "inspect/pulse_text.h"

#include <string>
#include <vector>

namespace vantor::receiver {

/// Which pulses the page shows. A field that is empty or unknown filters nothing.
struct PageFilter {
    std::string mode; ///< such as "periodic"
    std::string bit;  ///< the name of a result bit that must be set
    std::string host; ///< the client id of the host that sent it
};

/// The maximum number of pulses on the page.
inline constexpr std::size_t kMaxShown = 100;

/// The Content-Security-Policy: the browser may only show the page and send its form back here.
inline constexpr char kPagePolicy[] =
    "default-src 'none'; style-src 'unsafe-inline'; form-action 'self'; frame-ancestors 'none'; base-uri 'none'";

/// A whole HTML document: the pulses that pass the filter, the latest first, each with what changed since the previous
/// pulse of the same host. `pulses` is in order of arrival. The page needs no script, and shows whatever came in a pulse
/// as ASCII text only. "cid" and "cliid" identify a host; a pulse without "cliid" is not compared. The filter stands in the
/// page's address, and in those of its links.
std::string PulsePage(const std::vector<inspect::DatedPulse>& pulses, const PageFilter& filter);

} // namespace vantor::receiver
