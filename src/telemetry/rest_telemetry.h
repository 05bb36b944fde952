// The telemetry client. Its report is the only data that leaves the machine.
#pragma once

#include "health/record/report.h"
#include "run/config/run_config.h"

#include <cstdint>
#include <memory>
#include <span>

namespace vantor {

class IHTTP;

/// Posts the report to the reputation service, once, and logs the outcome. A failure does not end the run. Sends through
/// http, or through WinHTTP if it is null.
void SendTelemetry(std::span<const std::uint8_t> report, const RunConfig& config,
                   std::shared_ptr<IHTTP> http = nullptr);

} // namespace vantor
