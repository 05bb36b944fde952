// Facts about the product and the host, from the registry and the product's files.
#pragma once

#include "health/record/health_record.h"
#include "run/config/run_config.h"

namespace vantor {

/// Engine version and package from szVXCoreVersion under HKLM\Software\Vexora\AVSolution\AVS\AVS, a dotted version of
/// five parts; anything else sets all bits of these fields.
void GetVXCoreVersion(HealthRecord& record);

/// Update throttle mode, 0 to 3, from dwUpdateThrottleMode under HKLM\Software\Vexora\AVSolution\DS\DS; unchanged if
/// the value is anything else.
/// The misspelt name is also in the log and is kept for the people who know it.
void GetThottleMode(HealthRecord& record);

/// Content version from dwContentMajorVersion and dwContentMinorVersion under the same key. A value that is missing or
/// not a REG_DWORD gives 65535; without the key both stay unchanged.
void GetDATVersionFromReg(HealthRecord& record);

/// Whether the product type of Windows is "ServerNT".
bool IsServerProduct();

/// Bits 25 and 26: whether the ATP component is enabled, and whether it only observes; 0 if that cannot be read.
void ReadAtpState(TestResultBits& bits);

/// Whether Windows' quality-compatibility value exists and is 0.
bool IsQualityCompatible();

/// Bits 23 and 24: the two low bits of the NTFS per-directory case-sensitivity setting; 0 if it cannot be read.
void ReadCaseSensitivity(TestResultBits& bits);

/// The two counters of the mode, capped at 255: corruptions for predatupdate, restarts for postdatupdate. In other
/// modes, or if they cannot be read, they stay 0.
void ReadCounters(HealthRecord& record, const RunConfig& config);

/// Version of ReputationCommunicator.dll from the first installation directory that has one; 0 if none has.
void ReadRepCommunicatorVersion(HealthRecord& record);

} // namespace vantor
