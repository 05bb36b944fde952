#include "health/tracing/trace_properties.h"

#include <versionhelpers.h>

#include <algorithm>
#include <iterator>

namespace vantor {
namespace {

constexpr GUID kSessionGuid = {0xD67AAF49, 0xA12E, 0x4ACB, {0xA2, 0xB0, 0xF9, 0x23, 0x04, 0x29, 0x5D, 0xE3}};

} // namespace

std::optional<TraceProperties> MakeTraceProperties(const std::wstring& logFile, bool isVersion6)
{
    constexpr ULONG kPerformanceCounterClock = 1;
    constexpr ULONG kSystemTimeClock = 2;

    if (logFile.size() >= TraceProperties::kNameChars) {
        return std::nullopt;
    }
    TraceProperties trace{};
    EVENT_TRACE_PROPERTIES& properties = trace.properties;
    properties.Wnode.BufferSize = sizeof(trace);
    properties.Wnode.Guid = kSessionGuid;
    properties.Wnode.ClientContext = isVersion6 ? kPerformanceCounterClock : kSystemTimeClock;
    properties.Wnode.Flags = WNODE_FLAG_TRACED_GUID;
    properties.BufferSize = 1024;    // KiB
    properties.MinimumBuffers = 256; // so a session takes 256 to 276 MiB of memory
    properties.MaximumBuffers = 276;
    properties.MaximumFileSize = isVersion6 ? 10240 : 10; // 10 MiB, in KiB or in MiB
    properties.LogFileMode = EVENT_TRACE_FILE_MODE_SEQUENTIAL | (isVersion6 ? EVENT_TRACE_USE_KBYTES_FOR_SIZE : 0UL);
    properties.LogFileNameOffset = offsetof(TraceProperties, logFileName);
    properties.LoggerNameOffset = offsetof(TraceProperties, loggerName);
    std::copy(logFile.begin(), logFile.end(), trace.logFileName);
    std::copy(std::begin(kTraceLoggerName), std::end(kTraceLoggerName), trace.loggerName);
    return trace;
}

bool IsWindowsVersion6()
{
    return ::IsWindowsVistaOrGreater();
}

} // namespace vantor
