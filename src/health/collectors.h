// The two collectors, each of which builds the report of one run.
#pragma once

#include "health/record/report.h"
#include "run/config/run_config.h"

namespace vantor {

/// Runs every record probe, logs the record and its result bits, and returns the record's 46 bytes. No probe can fail
/// the collection: a fact that cannot be read keeps its default value.
ReportBytes GetOSInfo(const RunConfig& config);

/// Like GetOSInfo, but also runs the text probes, logs the text block and returns record, block length and block.
ReportBytes GetPreUpdateInfo(const RunConfig& config);

} // namespace vantor
