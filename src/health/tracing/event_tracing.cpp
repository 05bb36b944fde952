#include "health/tracing/event_tracing.h"

namespace vantor {

ULONG WindowsEventTracing::Start(TRACEHANDLE& session, TraceProperties& trace)
{
    return ::StartTraceW(&session, kTraceLoggerName, &trace.properties);
}

ULONG WindowsEventTracing::Query(TraceProperties& trace)
{
    return ::ControlTraceW(0, kTraceLoggerName, &trace.properties, EVENT_TRACE_CONTROL_QUERY);
}

ULONG WindowsEventTracing::Stop(TraceProperties& trace)
{
    return ::ControlTraceW(0, kTraceLoggerName, &trace.properties, EVENT_TRACE_CONTROL_STOP);
}

ULONG WindowsEventTracing::Enable(TRACEHANDLE session, const GUID& provider, ULONG level)
{
    constexpr ULONG kAllFlags = 0xFFFFFFFF;
    return ::EnableTrace(TRUE, kAllFlags, level, &provider, session);
}

ULONG WindowsEventTracing::Enumerate(std::vector<GUID>& providers)
{
    constexpr ULONG kMaxProviders = 8192;

    ULONG count = 256;
    for (ULONG error = ERROR_MORE_DATA; error == ERROR_MORE_DATA && count <= kMaxProviders; count *= 2) {
        std::vector<TRACE_GUID_PROPERTIES> properties(count);
        std::vector<TRACE_GUID_PROPERTIES*> pointers;
        pointers.reserve(count);
        for (TRACE_GUID_PROPERTIES& entry : properties) {
            pointers.push_back(&entry);
        }
        ULONG found = 0;
        error = ::EnumerateTraceGuids(pointers.data(), count, &found);
        if (error != ERROR_MORE_DATA) {
            for (ULONG index = 0; error == ERROR_SUCCESS && index < found; ++index) {
                providers.push_back(properties[index].Guid);
            }
            return error;
        }
    }
    return ERROR_MORE_DATA;
}

std::optional<std::uint64_t> WindowsEventTracing::FreeBytes(const std::wstring& folder)
{
    ULARGE_INTEGER free{};
    if (!::GetDiskFreeSpaceExW(folder.c_str(), &free, nullptr, nullptr)) {
        return std::nullopt;
    }
    return free.QuadPart;
}

} // namespace vantor
