// The telemetry client, which sends the report: nothing else leaves the machine.
#pragma once

#include "health/record/report.h"
#include "run/config/run_config.h"

#include <cstdint>
#include <memory>
#include <span>

namespace vantor {

class IHTTP;

/// Posts the report to the reputation service, once, and logs what came of it. A failure does not end the run. Sends by
/// these calls; by those of WinHTTP itself when http is null.
void SendTelemetry(std::span<const std::uint8_t> report, const RunConfig& config,
                   std::shared_ptr<IHTTP> http = nullptr);

} // namespace vantor
