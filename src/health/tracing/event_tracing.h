// Event Tracing for Windows, and the other Windows calls needed to trace the updater.
#pragma once

#include "health/tracing/trace_properties.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantor {

/// Each operation forwards to Windows and returns the error code, 0 for success.
class IEventTracing {
public:
    virtual ~IEventTracing() = default;

    /// StartTraceW under kTraceLoggerName.
    virtual ULONG Start(TRACEHANDLE& session, TraceProperties& trace) = 0;

    /// ControlTraceW, by the session's name: queries its properties, or stops it.
    virtual ULONG Query(TraceProperties& trace) = 0;
    virtual ULONG Stop(TraceProperties& trace) = 0;

    /// EnableTrace with all flags.
    virtual ULONG Enable(TRACEHANDLE session, const GUID& provider, ULONG level) = 0;

    /// The providers that are already registered (EnumerateTraceGuids).
    virtual ULONG Enumerate(std::vector<GUID>& providers) = 0;

    /// Bytes available to the caller on a folder's volume (GetDiskFreeSpaceExW); std::nullopt on failure.
    virtual std::optional<std::uint64_t> FreeBytes(const std::wstring& folder) = 0;
};

/// The implementation that calls Windows.
class WindowsEventTracing : public IEventTracing {
public:
    ULONG Start(TRACEHANDLE& session, TraceProperties& trace) override;
    ULONG Query(TraceProperties& trace) override;
    ULONG Stop(TraceProperties& trace) override;
    ULONG Enable(TRACEHANDLE session, const GUID& provider, ULONG level) override;
    ULONG Enumerate(std::vector<GUID>& providers) override;
    std::optional<std::uint64_t> FreeBytes(const std::wstring& folder) override;
};

} // namespace vantor
