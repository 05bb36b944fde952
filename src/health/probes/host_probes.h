// Facts about the host that Windows reports.
#pragma once

#include "health/record/health_record.h"

namespace vantor {

/// Reads version, service pack and build from GetVersionExW, which reports 6.2 for a version of Windows that the
/// application manifest does not list. Leaves the record unchanged if the call fails.
void ReadOsVersion(HealthRecord& record);

/// The host's native machine from IsWow64Process2; HealthRecord::kDefaultArch if Windows lacks the function, or if it
/// fails or returns 0.
std::uint16_t NativeMachine();

} // namespace vantor
