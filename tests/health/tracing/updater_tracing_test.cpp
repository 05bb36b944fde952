#include "health/tracing/updater_tracing.h"

#include "platform/process_list.h"
#include "support/log_capture.h"
#include "support/trace_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vantor {
namespace {

/// Answers as its members say and records what it is asked.
class ScriptedTracing : public IEventTracing {
public:
    ULONG Start(TRACEHANDLE& session, TraceProperties& given) override
    {
        session = 7;
        trace = given;
        return startError;
    }
    ULONG Query(TraceProperties& given) override
    {
        given.properties.Wnode.HistoricalContext = 9;
        return queryError;
    }
    ULONG Stop(TraceProperties& given) override
    {
        trace = given;
        return stopError;
    }
    ULONG Enable(TRACEHANDLE session, const GUID& provider, ULONG level) override
    {
        enabled.push_back({session, provider.Data1, level});
        return enableError;
    }
    ULONG Enumerate(std::vector<GUID>& providers) override
    {
        providers = registered;
        return enumerateError;
    }
    std::optional<std::uint64_t> FreeBytes(const std::wstring&) override { return freeBytes; }

    ULONG startError = 0, queryError = 0, stopError = 0, enableError = 0, enumerateError = 0;
    std::optional<std::uint64_t> freeBytes;
    std::vector<GUID> registered;
    TraceProperties trace{};
    std::vector<std::tuple<TRACEHANDLE, unsigned long, ULONG>> enabled;
};

std::wstring NameForNow()
{
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return TraceFileName(now);
}

const TraceProviders kProviders = {{4, {1, 0, 0, {}}}, {5, {2, 0, 0, {}}}};

TEST(UpdaterTracing, StartsOrReusesASessionAndEnablesWhatIsNotRegistered)
{
    const struct {
        ULONG start, query, enumerate, enable;
        DWORD result;
        decltype(ScriptedTracing::enabled) enabled;
        std::string line;
    } kCases[] = {
        {0, 0, 0, 0, 0, {{7, 2, 5}}, "TRACE: Now Logging."},
        {183, 0, 0, 0, 0, {{9, 2, 5}}, "TRACE: Logging session already exists. Reusing existing session."},
        {183, 5, 0, 0, 5, {}, "ERROR: The running session cannot be queried. Error:5"},
        {5, 0, 0, 0, 5, {}, "ERROR: Failed to start logging. exitCode:5"},
        {0, 0, 87, 0, 0, {{7, 1, 4}, {7, 2, 5}}, " WARN: The registered trace providers cannot be listed. Error:87"},
        {0, 0, 0, 8, 0, {{7, 2, 5}}, " WARN: A trace provider cannot be enabled. Error:8"},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.line);
        ScriptedTracing tracing;
        tracing.registered = {{1, 0, 0, {}}};
        tracing.startError = row.start;
        tracing.queryError = row.query;
        tracing.enumerateError = row.enumerate;
        tracing.enableError = row.enable;
        ScratchFolder scratch;
        LogCapture log;
        const std::wstring before = NameForNow();
        EXPECT_EQ(StartLogging(kProviders, tracing, scratch.folder), row.result);
        const std::wstring file = tracing.trace.logFileName, folder = scratch.path.wstring() + L"\\";
        EXPECT_TRUE(folder + before <= file && file <= folder + NameForNow());
        EXPECT_EQ(std::filesystem::exists(file), row.start == 0);
        EXPECT_EQ(scratch.Count(), row.start == 0 ? 1 : 0); // a session's own file
        EXPECT_EQ(tracing.enabled, row.enabled);
        EXPECT_TRUE(log.Has(row.line));
        EXPECT_TRUE(
            log.Has("TRACE: StartLogging: Failed on initialization scoped access protection exclusion object."));
        EXPECT_EQ(log.Has("TRACE: Now Logging."), row.result == 0);
    }
    ScriptedTracing tracing;
    ScratchFolder scratch;
    EXPECT_EQ(StartLogging({}, tracing, scratch.folder), 0xFFFFFFFF);
    TraceFolder missing(scratch.path.wstring() + L"\\none\\");
    EXPECT_EQ(StartLogging(kProviders, tracing, missing), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(tracing.trace.properties.Wnode.BufferSize, 0u); // nothing was started
}

TEST(UpdaterTracing, DoesNotFillADisk)
{
    ScriptedTracing tracing;
    ScratchFolder scratch;
    const LogCapture log;
    EXPECT_TRUE(IsReadyForTrace(tracing, scratch.folder)); // it is not known
    tracing.freeBytes = 7 << 20;
    EXPECT_FALSE(IsReadyForTrace(tracing, scratch.folder));
    EXPECT_TRUE(log.Has("ERROR: Error, cannot start etl tracing as disk space is low:7MB only"));
}

TEST(UpdaterTracing, OverwritesNothingThatWasPlantedUnderAComingName)
{
    ScratchFolder scratch;
    const auto victim = scratch.path / "another's.txt";
    std::ofstream(victim) << "kept";
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    std::uint64_t ticks = std::uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    for (int second = 0; second < 60; ++second, ticks += 10'000'000) {
        const FILETIME time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
        SYSTEMTIME universal{}, local{};
        ::FileTimeToSystemTime(&time, &universal);
        ::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local);
        std::filesystem::create_hard_link(victim, scratch.path / TraceFileName(local));
    }
    ScriptedTracing tracing;
    const LogCapture log;
    EXPECT_EQ(StartLogging(kProviders, tracing, scratch.folder), DWORD{ERROR_FILE_EXISTS});
    EXPECT_EQ(tracing.trace.properties.Wnode.BufferSize, 0u);
    EXPECT_TRUE(log.Has("ERROR: Failed to start logging. exitCode:80"));
    EXPECT_EQ(std::filesystem::file_size(victim), 4u);
    EXPECT_EQ(scratch.Count(), 61); // nor was anything deleted
}

TEST(UpdaterTracing, StartingAndStoppingSayHowTheyWent)
{
    const struct {
        ULONG error;
        std::string start, stop, stopped;
    } kCases[] = {
        {0, "TRACE: Starting etl tracing...", "TRACE: Stopped logging", "TRACE: Stopping etl tracing..."},
        {4201, "ERROR: Error: StartLogging FAILED!!: 4201",
         "TRACE: Cannot stop as no running instance exist with logger name:scupdateLogger",
         "ERROR: Error: StopLogging FAILED!!: 4201"},
        {5, "ERROR: Error: StartLogging FAILED!!: 5", "ERROR: Errors/warnings during stop logging request Error:5",
         "ERROR: Error: StopLogging FAILED!!: 5"},
    };
    for (const auto& [error, start, stop, stopped] : kCases) {
        ScriptedTracing tracing;
        tracing.startError = tracing.stopError = error;
        ScratchFolder scratch;
        const LogCapture log;
        StartTracing(tracing, scratch.folder);
        EXPECT_EQ(log.Lines().back(), start);
        tracing.trace = {};
        StopTracing(tracing, scratch.folder);
        EXPECT_TRUE(log.Has(stop));
        EXPECT_EQ(log.Lines().back(), stopped);
        EXPECT_EQ(tracing.trace.properties.Wnode.BufferSize, 4224u);
    }
}

TEST(UpdaterTracing, KnowsItsParentItsProvidersItsFilesAndTheRoomTheyNeed)
{
    const std::vector<ProcessEntry> processes = {{1, 0, "first"}, {2, 1, "second"}, {3, 99, "orphan"}};
    EXPECT_EQ(ParentName(processes, 2), "first");
    EXPECT_EQ(ParentName(processes, 3), std::nullopt);
    TraceProviders providers;
    EXPECT_EQ(populateGUID(providers), 0u);
    EXPECT_TRUE(providers.size() == 1 && providers[0].level == 4 && providers[0].id.Data1 == 0x3E8C7A52);
    const SYSTEMTIME time{2026, 2, 0, 3, 4, 5, 6, 0};
    EXPECT_EQ(TraceFileName(time), L"scupdateETL_20260203.040506.log");
    EXPECT_FALSE(HasRoomForTrace(151 * 1048576ULL - 1));
    EXPECT_TRUE(HasRoomForTrace(151 * 1048576ULL));
}

} // namespace
} // namespace vantor
