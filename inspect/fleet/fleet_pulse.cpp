#include "inspect/fleet/fleet_pulse.h"

namespace vantor::fleet {

void Flatten(const inspect::DatedPulse& from, FleetPulse& to)
{
    const auto& client = from.pulse.client;
    if (!from.received) {
        throw inspect::PulseError("it is not known when the pulse was received");
    }
    if (client.empty()) {
        throw inspect::PulseError("it is not known which client sent the pulse");
    }
    to.received = *from.received;
    for (const auto& [key, member] : kClientTexts) {
        const auto text = client.find(std::string(key));
        to.*member = text != client.end() ? text->get_ref<const std::string&>() : std::string();
    }
    if (to.cliid.size() > kMaxClientIdBytes) {
        throw inspect::PulseError("the client id has " + std::to_string(to.cliid.size()) + " bytes, at most " +
                                  std::to_string(kMaxClientIdBytes) + " are allowed");
    }
    to.rid = client.at("rid").get<std::int64_t>();
    to.isTest = client.contains("ro");
    to.report = from.pulse.report;
}

} // namespace vantor::fleet
