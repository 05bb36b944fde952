// The properties of the trace session that records the updater.
#pragma once

#include <windows.h>

#include <evntrace.h>

#include <optional>
#include <string>

namespace vantor {

/// Name by which the session is found again: it outlives the program.
inline constexpr wchar_t kTraceLoggerName[] = L"scupdateLogger";

/// What StartTraceW and ControlTraceW take: the properties with room for both names behind them. A plain block of
/// memory; Wnode.BufferSize is its size.
struct TraceProperties {
    static constexpr std::size_t kNameChars = 1024;

    EVENT_TRACE_PROPERTIES properties;
    wchar_t logFileName[kNameChars];
    wchar_t loggerName[kNameChars];
    ULONG64 reserved;
};
static_assert(sizeof(EVENT_TRACE_PROPERTIES) == 120 && sizeof(TraceProperties) == 4224);

/// The session's properties for a log file; nothing when its name has no room. Windows before version 6 knows neither
/// the performance-counter clock nor sizes in kilobytes: isVersion6 chooses.
std::optional<TraceProperties> MakeTraceProperties(const std::wstring& logFile, bool isVersion6);

/// Whether the OS major version is 6 or higher (VerifyVersionInfoW).
bool IsWindowsVersion6();

} // namespace vantor
