#include "health/tracing/updater_tracing.h"

#include "health/protection/access_protection.h"
#include "platform/process_list.h"
#include "platform/text/encoding.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "trace_providers.h"

#include <objbase.h>

#include <algorithm>
#include <optional>

namespace vantor {
namespace {

constexpr std::uint64_t kMinFreeMebibytes = 151;

/// Requests access to the trace folder for the named operation, which continues even if access is refused. Failures are
/// logged.
void RequestFolderAccess(ScopedAccessProtectionExclusionObject& exclusion, const TraceFolder& folder,
                         const std::string& operation)
{
    constexpr std::uint32_t kFileAccess = 0x14201B; // what the product's module expects for this folder

    if (exclusion.InitialisationResult() != ERROR_SUCCESS) {
        LogTrace(operation + ": Failed on initialization scoped access protection exclusion object.");
        return;
    }
    if (!folder.Path()) {
        return;
    }
    const std::wstring path = *folder.Path() + L"*";
    if (!exclusion.AllowFilePathAccessToProcess(path.c_str(), kFileAccess)) {
        LogTrace(operation +
                 ": Failed on call AllowFilePathAccessToProcess().  Access requested for path:" + ToNarrow(path));
    }
}

bool WasStartedByUpdater()
{
    return ParentName(ListProcesses().entries, ::GetCurrentProcessId()) == "scupdate.exe";
}

/// Makes room for one more trace file. Requests access only if there is something to delete.
bool TrimOldTraces(const TraceFolder& folder)
{
    const std::vector<std::wstring> files = folder.List();
    if (files.size() <= kMaxTraceFiles) {
        return true;
    }
    ScopedAccessProtectionExclusionObject exclusion;
    RequestFolderAccess(exclusion, folder, texts::kShouldStartEtlTracing);
    return TrimTraceFiles(folder, files);
}

std::wstring NameForNow()
{
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return TraceFileName(now);
}

/// The properties of a session that records into this file; std::nullopt, with an error logged, on failure.
std::optional<TraceProperties> MakeProperties(const TraceFolder& folder, const std::wstring& name)
{
    auto trace = folder.Path() ? MakeTraceProperties(*folder.Path() + name, IsWindowsVersion6()) : std::nullopt;
    if (!trace) {
        LogError("Failed to create properties instance");
    }
    return trace;
}

/// Starts a session that records into this file. Creates the file first, so that the session cannot overwrite something
/// planted under that name, and deletes it again if the session does not start.
DWORD StartInNewFile(TraceProperties& trace, TRACEHANDLE& session, IEventTracing& tracing, TraceFolder& folder,
                     const std::wstring& name)
{
    if (const DWORD error = folder.Hold(); error != ERROR_SUCCESS) {
        return error;
    }
    if (const DWORD error = folder.Create(name); error != ERROR_SUCCESS) {
        LogWarning("The trace file cannot be created: " + ToNarrow(name) + " Error:" + std::to_string(error));
        return error;
    }
    const DWORD error = tracing.Start(session, trace);
    if (error != ERROR_SUCCESS) {
        folder.Delete(name);
    }
    return error;
}

/// Returns 0 if a session was started or is already running, otherwise the error, which it logs.
DWORD StartOrReuse(TraceProperties& trace, TRACEHANDLE& session, IEventTracing& tracing, TraceFolder& folder,
                   const std::wstring& name)
{
    const DWORD error = StartInNewFile(trace, session, tracing, folder, name);
    if (error != ERROR_ALREADY_EXISTS) {
        if (error != ERROR_SUCCESS) {
            LogError("Failed to start logging. exitCode:" + std::to_string(error));
        }
        return error;
    }
    LogTrace(texts::kLoggingSessionAlreadyExists);
    if (const DWORD queried = tracing.Query(trace); queried != ERROR_SUCCESS) {
        LogError("The running session cannot be queried. Error:" + std::to_string(queried));
        return queried;
    }
    session = trace.properties.Wnode.HistoricalContext; // a query stores the session's handle here
    return ERROR_SUCCESS;
}

void EnableProviders(TRACEHANDLE session, const TraceProviders& providers, IEventTracing& tracing)
{
    std::vector<GUID> registered;
    if (const DWORD error = tracing.Enumerate(registered); error != ERROR_SUCCESS) {
        LogWarning("The registered trace providers cannot be listed. Error:" + std::to_string(error));
        registered.clear();
    }
    for (const TraceProvider& provider : providers) {
        const auto isThis = [&provider](const GUID& id) { return ::IsEqualGUID(id, provider.id) != FALSE; };
        if (std::any_of(registered.begin(), registered.end(), isThis)) {
            continue;
        }
        if (const DWORD error = tracing.Enable(session, provider.id, provider.level); error != ERROR_SUCCESS) {
            LogWarning("A trace provider cannot be enabled. Error:" + std::to_string(error));
        }
    }
}

} // namespace

bool HasRoomForTrace(std::uint64_t freeBytes)
{
    return freeBytes >> 20 >= kMinFreeMebibytes;
}

bool IsReadyForTrace(IEventTracing& tracing, TraceFolder& folder)
{
    if (!folder.Path()) {
        return true; // StartLogging reports that there is no folder
    }
    const DWORD held = folder.Hold(); // a missing folder has no old traces; StartLogging reports it
    if (held == ERROR_CANT_ACCESS_FILE || held == ERROR_INVALID_OWNER || !TrimOldTraces(folder)) {
        LogError("Delete of old log failed, so cannot proceed");
        return false;
    }
    const auto freeBytes = tracing.FreeBytes(*folder.Path());
    if (freeBytes && !HasRoomForTrace(*freeBytes)) {
        LogError("Error, cannot start etl tracing as disk space is low:" + std::to_string(*freeBytes >> 20) +
                 "MB only");
        return false;
    }
    return true;
}

bool ShouldStartETLTracing(const RunConfig& config, IEventTracing& tracing, TraceFolder& folder)
{
    if (ModeOf(config) != Mode::preUpdate) {
        return false;
    }
    if (!WasStartedByUpdater()) {
        LogWarning("This product is not configured for update etl tracing");
        return false;
    }
    return IsReadyForTrace(tracing, folder);
}

DWORD populateGUID(TraceProviders& providers)
{
    for (const auto& [level, text] : kTraceProviderTexts) {
        GUID id{};
        if (const HRESULT converted = ::CLSIDFromString(text, &id); FAILED(converted)) {
            return static_cast<DWORD>(converted);
        }
        providers.push_back({level, id});
    }
    return ERROR_SUCCESS;
}

DWORD StartLogging(const TraceProviders& providers, IEventTracing& tracing, TraceFolder& folder)
{
    constexpr DWORD kNothingToRecord = 0xFFFFFFFF;

    ScopedAccessProtectionExclusionObject exclusion;
    RequestFolderAccess(exclusion, folder, texts::kStartLogging);
    const std::wstring name = NameForNow();
    auto trace = MakeProperties(folder, name);
    if (!trace) {
        return ERROR_INVALID_DATA;
    }
    if (providers.empty()) {
        return kNothingToRecord;
    }
    TRACEHANDLE session = 0;
    if (const DWORD error = StartOrReuse(*trace, session, tracing, folder, name); error != ERROR_SUCCESS) {
        return error;
    }
    EnableProviders(session, providers, tracing);
    LogTrace(texts::kNowLogging);
    return ERROR_SUCCESS;
}

DWORD StopLogging(IEventTracing& tracing, const TraceFolder& folder)
{
    ScopedAccessProtectionExclusionObject exclusion;
    RequestFolderAccess(exclusion, folder, texts::kStopLogging);
    auto trace = MakeProperties(folder, NameForNow());
    if (!trace) {
        return ERROR_INVALID_DATA;
    }
    const DWORD error = tracing.Stop(*trace);
    if (error == ERROR_SUCCESS) {
        LogTrace(texts::kStoppedLogging);
    } else if (error == ERROR_WMI_INSTANCE_NOT_FOUND) {
        LogTrace(texts::kCannotStopAsNoRunningInstance + ToNarrow(kTraceLoggerName));
    } else {
        LogError("Errors/warnings during stop logging request Error:" + std::to_string(error));
    }
    return error;
}

void StartTracing(IEventTracing& tracing, TraceFolder& folder)
{
    TraceProviders providers;
    if (const DWORD error = populateGUID(providers); error != ERROR_SUCCESS) {
        LogError(texts::kPopulateGuidFailed + std::to_string(error));
    } else if (const DWORD started = StartLogging(providers, tracing, folder); started != ERROR_SUCCESS) {
        LogError(texts::kStartLoggingFailed + std::to_string(started));
    } else {
        LogTrace(texts::kStartingEtlTracing);
    }
}

void StopTracing(IEventTracing& tracing, const TraceFolder& folder)
{
    if (const DWORD error = StopLogging(tracing, folder); error != ERROR_SUCCESS) {
        LogError(texts::kStopLoggingFailed + std::to_string(error));
    } else {
        LogTrace(texts::kStoppingEtlTracing);
    }
}

} // namespace vantor
