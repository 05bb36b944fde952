// The properties of the trace session that records the updater.
#pragma once

#include <windows.h>

#include <evntrace.h>

#include <optional>
#include <string>

namespace vantor {

/// The session's name, by which a later run finds it: the session outlives the program.
inline constexpr wchar_t kTraceLoggerName[] = L"scupdateLogger";

/// The argument of StartTraceW and ControlTraceW: the properties, followed by room for both names in one block of
/// memory, whose size is Wnode.BufferSize.
struct TraceProperties {
    static constexpr std::size_t kNameChars = 1024;

    EVENT_TRACE_PROPERTIES properties;
    wchar_t logFileName[kNameChars];
    wchar_t loggerName[kNameChars];
    ULONG64 reserved;
};
static_assert(sizeof(EVENT_TRACE_PROPERTIES) == 120 && sizeof(TraceProperties) == 4224);

/// The session's properties for a log file; std::nullopt if its name does not fit. Windows before version 6 supports
/// neither the performance-counter clock nor sizes in kilobytes, so isVersion6 selects both.
std::optional<TraceProperties> MakeTraceProperties(const std::wstring& logFile, bool isVersion6);

/// Whether the OS major version is 6 or higher (VerifyVersionInfoW).
bool IsWindowsVersion6();

} // namespace vantor
