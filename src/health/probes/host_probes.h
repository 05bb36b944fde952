// Facts about the host that come from Windows itself.
#pragma once

#include "health/record/health_record.h"

namespace vantor {

/// Version, service pack and build from GetVersionExW; a Windows that the application manifest does not list
/// as supported reads as 6.2. Left unchanged if the call fails.
void ReadOsVersion(HealthRecord& record);

/// The host's native machine from IsWow64Process2; HealthRecord::kDefaultArch when Windows lacks the function, when it
/// fails, or when it yields 0.
std::uint16_t NativeMachine();

} // namespace vantor
