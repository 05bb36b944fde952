// make-fleet: writes the pulses of a made fleet as the receiver would, to try vantor-inspect --fleet on.
#include "bench/made_fleet.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using vantor::bench::FleetSettings;
using vantor::bench::PlantedHarm;
using vantor::fleet::kHarms;

/// KIND:VERSION:SHARE. Throws CLI::ValidationError.
PlantedHarm ParseHarm(const std::string& text)
{
    std::istringstream parts(text);
    std::string kind;
    char colon = 0;
    PlantedHarm planted;
    std::getline(parts, kind, ':');
    const auto* const harm = std::ranges::find(kHarms, kind, [](const auto& one) { return std::string(one.key); });
    if (harm == kHarms.end() || !(parts >> planted.version >> colon >> planted.share) || colon != ':' || !parts.eof() ||
        planted.share < 0 || planted.share > 1) {
        throw CLI::ValidationError("--harm", '"' + text + "\" is no KIND:VERSION:SHARE");
    }
    planted.harm = static_cast<std::size_t>(harm - kHarms.begin());
    return planted;
}

std::string KindsOfHarm()
{
    std::string text = "Kinds of harm:";
    for (const auto& harm : kHarms) {
        text += ' ' + std::string(harm.key);
    }
    return text;
}

} // namespace

int main(int count, char** arguments)
{
    try {
        FleetSettings settings;
        CLI::App app("Writes the pulses of a made fleet, as the receiver would, to standard output.", "make-fleet");
        app.footer(KindsOfHarm());
        app.add_option("--hosts", settings.hosts, "how many hosts")->capture_default_str();
        app.add_option("--days", settings.days, "how many days")->check(CLI::Range(1, 3000))->capture_default_str();
        app.add_option("--versions", settings.versions, "how many content versions come in that time")
            ->check(CLI::Range(0, 3000))
            ->capture_default_str();
        app.add_option("--seed", settings.seed, "what else chance is made from")->capture_default_str();
        app.add_option_function<std::vector<std::string>>(
               "--harm",
               [&](const std::vector<std::string>& texts) {
                   for (const std::string& text : texts) {
                       settings.planted.push_back(ParseHarm(text));
                   }
               },
               "harm that a version does to a share of its hosts, such as vxtray_gone:5:0.02")
            ->type_name("KIND:VERSION:SHARE")
            ->allow_extra_args(false);
        CLI11_PARSE(app, count, arguments);
        std::ios::sync_with_stdio(false);
        vantor::bench::MakeFleet(settings, [](const vantor::inspect::DatedPulse& pulse) {
            std::cout << vantor::inspect::JsonLine(vantor::inspect::PulseJson(pulse)) << '\n';
        });
        std::cout.flush();
        return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::cerr << "make-fleet: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
