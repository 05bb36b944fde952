// Tracing of the product's updater: the run before an update starts a trace session, and the run after it stops it.
#pragma once

#include "health/tracing/event_tracing.h"
#include "health/tracing/trace_files.h"
#include "run/config/run_config.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantor {

/// An event provider to record.
struct TraceProvider {
    ULONG level;
    GUID id;
};
using TraceProviders = std::vector<TraceProvider>;

/// Whether a trace may be started in the folder: its volume has enough free space, or how much is not known. Holds the
/// folder, and deletes the oldest trace files if there are ten or more. Says in the log why not.
bool IsReadyForTrace(IEventTracing& tracing, TraceFolder& folder);

/// Whether to start a session: only before an update, if the updater started this program and the folder is ready.
bool ShouldStartETLTracing(const RunConfig& config, IEventTracing& tracing, TraceFolder& folder);

/// Whether there are enough free bytes for a trace: at least 151 MiB.
bool HasRoomForTrace(std::uint64_t freeBytes);

/// Fills the list with the providers of this build. Returns 0, or the error for a GUID that could not be parsed.
DWORD populateGUID(TraceProviders& providers);

/// Starts the session, or reuses a running one, and enables every listed provider that is not already registered. A new
/// session records into a new file in the folder, which is held from then on. Returns 0, a Windows error code, or
/// 0xFFFFFFFF if the list is empty.
DWORD StartLogging(const TraceProviders& providers, IEventTracing& tracing, TraceFolder& folder);

/// Stops the session. Returns 0 or a Windows error code, such as ERROR_WMI_INSTANCE_NOT_FOUND if none is running.
DWORD StopLogging(IEventTracing& tracing, const TraceFolder& folder);

/// Call StartLogging with the providers of this build, or StopLogging. Log the outcome; a failure does not end the run.
void StartTracing(IEventTracing& tracing, TraceFolder& folder);
void StopTracing(IEventTracing& tracing, const TraceFolder& folder);

} // namespace vantor
