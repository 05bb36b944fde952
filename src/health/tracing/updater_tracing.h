// Tracing of the product's updater: the run before an update starts a trace session, the run after it stops it.
#pragma once

#include "health/tracing/event_tracing.h"
#include "health/tracing/trace_files.h"
#include "run/config/run_config.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantor {

/// A provider that a session records.
struct TraceProvider {
    ULONG level;
    GUID id;
};
using TraceProviders = std::vector<TraceProvider>;

/// Whether a session is to be started: only before an update, when the updater started this program and its volume has
/// room. Holds the folder, and deletes the oldest trace files first where ten or more are there.
bool ShouldStartETLTracing(const RunConfig& config, IEventTracing& tracing, TraceFolder& folder);

/// Whether so many free bytes are enough for a trace: 151 MiB at least.
bool HasRoomForTrace(std::uint64_t freeBytes);

/// Fills the list with the providers of this build. Returns 0, or the error with which one was not understood.
DWORD populateGUID(TraceProviders& providers);

/// Starts the session, or takes the one that runs, and enables every listed provider that is not registered already.
/// A new session records into a new file of the folder, which is held from then on. Returns 0, a Windows error code, or
/// 0xFFFFFFFF when the list is empty.
DWORD StartLogging(const TraceProviders& providers, IEventTracing& tracing, TraceFolder& folder);

/// Stops the session. Returns 0 or a Windows error code, also when none runs.
DWORD StopLogging(IEventTracing& tracing, const TraceFolder& folder);

/// StartLogging with the providers of this build, or StopLogging. Logs how it went; a failure does not end the run.
void StartTracing(IEventTracing& tracing, TraceFolder& folder);
void StopTracing(IEventTracing& tracing, const TraceFolder& folder);

} // namespace vantor
