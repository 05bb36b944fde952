// Repairs registry states that can leave a host unprotected or unbootable after a content update. None of them can fail
// the run: the outcome is in the result flags of the RunConfig and in the log.
#pragma once

#include "run/config/run_config.h"

#include <cstdint>

namespace vantor {

/// Writes the compatibility value that Windows requires from anti-malware products, a REG_DWORD 0, unless it can be
/// read and is already 0. The key is opened for writing only, so with default permissions the value is written every
/// time.
void EnsureQualityCompat();

/// Removes the DeleteFlag value from the disk filter driver's service. Sets vxediskDeleteFlag if it was present, and
/// vxediskDeleteFlagError if it could not be removed.
void CheckVxediskDeleteFlag(RunConfig& config);

/// On product platforms older than 20.5, makes the driver's Start value agree with the disk class's filter list: a
/// listed driver starts at boot (0); an unlisted one whose Start is disabled or unreadable starts on demand (3). Sets
/// vxediskStartValue if a correction was needed, and vxediskStartValueError if it could not be written.
void CheckVxediskStartValue(RunConfig& config);

/// Result of GetvxediskStartValue if the value cannot be read.
inline constexpr std::uint32_t kUnreadableStart = 0xFFFFFFFF;

/// The Start value of the driver's service. Logged at trace level.
std::uint32_t GetvxediskStartValue();

/// Whether the disk class's UpperFilters, a REG_MULTI_SZ, lists the driver. Logged at trace level.
bool IsvxediskInUpperFilters();

/// Whether the product platform's version, in the 32-bit view, is below 20.5; false if it cannot be read.
bool IsSystemCoreBelow20_5();

} // namespace vantor
