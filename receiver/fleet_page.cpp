#include "receiver/fleet_page.h"

#include "inspect/fleet/fleet.h"
#include "inspect/fleet/report_text.h"

namespace vantor::receiver {

std::string FleetPage(const std::vector<inspect::DatedPulse>& pulses)
{
    fleet::Fleet gathered;
    fleet::FleetPulse flat;
    fleet::Skipped malformed;
    for (const inspect::DatedPulse& pulse : pulses) {
        try {
            fleet::Flatten(pulse, flat);
            gathered.Add(flat);
        } catch (const inspect::PulseError& error) {
            malformed.Add(error.what());
        }
    }
    fleet::FleetReport report = gathered.Finish();
    report.malformed = malformed;
    return fleet::ReportPage(report);
}

} // namespace vantor::receiver
