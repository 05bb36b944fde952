// Facts about the product and the host that the record takes from the registry and from the product's files.
#pragma once

#include "health/record/health_record.h"
#include "run/config/run_config.h"

namespace vantor {

/// Engine version and package from szVXCoreVersion under HKLM\Software\Vexora\AVSolution\AVS\AVS, a dotted version of
/// five parts; all bits set if it is anything else.
void GetVXCoreVersion(HealthRecord& record);

/// Update throttle mode, 0 to 3, from dwUpdateThrottleMode under HKLM\Software\Vexora\AVSolution\DS\DS; unchanged if
/// it is anything else.
/// The misspelt name is also in the log, and kept for the people who know it.
void GetThottleMode(HealthRecord& record);

/// Content version from the DWORDs dwContentMajorVersion and dwContentMinorVersion under the same key. A value that
/// is missing or not a REG_DWORD gives 65535; without the key both stay unchanged.
void GetDATVersionFromReg(HealthRecord& record);

/// Whether Windows' product type is "ServerNT".
bool IsServerProduct();

/// Bits 25 and 26: whether the ATP component is enabled, and whether it only observes; 0 when that cannot be read.
void ReadAtpState(TestResultBits& bits);

/// Whether Windows' quality-compatibility value is there and 0.
bool IsQualityCompatible();

/// Bits 23 and 24: the two low bits of the NTFS per-directory case-sensitivity setting; 0 when it cannot be read.
void ReadCaseSensitivity(TestResultBits& bits);

/// The two counters of the mode, capped at 255: corruptions for predatupdate, restarts for postdatupdate. Counters
/// that cannot be read, and those of any other mode, stay 0.
void ReadCounters(HealthRecord& record, const RunConfig& config);

/// Version of ReputationCommunicator.dll in the first installation directory that has one; 0 otherwise.
void ReadRepCommunicatorVersion(HealthRecord& record);

} // namespace vantor
