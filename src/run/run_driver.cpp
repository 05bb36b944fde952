#include "run/run_driver.h"

#include "health/collectors.h"
#include "health/repair/integrity_checks.h"
#include "health/tracing/updater_tracing.h"
#include "platform/program.h"
#include "run/log/logging.h"
#include "run/log/vantor_logging.h"
#include "run/options/get_config.h"
#include "run/post_update_delay.h"
#include "run/task/scheduling.h"
#include "telemetry/rest_telemetry.h"

#include <windows.h>

#include <cstdio>
#include <exception>
#include <string>

namespace vantor {
namespace {

void SleepFor(std::chrono::milliseconds duration)
{
    ::Sleep(static_cast<DWORD>(duration.count()));
}

void StartTracing(IEventTracing& tracing)
{
    TraceProviders providers;
    if (const DWORD error = populateGUID(providers); error != ERROR_SUCCESS) {
        LogError("Error: populateGUID FAILED!!: " + std::to_string(error));
    } else if (const DWORD started = StartLogging(providers, tracing); started != ERROR_SUCCESS) {
        LogError("Error: StartLogging FAILED!!: " + std::to_string(started));
    } else {
        LogTrace("Starting etl tracing...");
    }
}

void StopTracing(IEventTracing& tracing)
{
    if (const DWORD error = StopLogging(tracing); error != ERROR_SUCCESS) {
        LogError("Error: StopLogging FAILED!!: " + std::to_string(error));
    } else {
        LogTrace("Stopping etl tracing...");
    }
}

void RunStages(VantorLogging& logging, int argc, const char* const* argv)
{
    RunConfig config;
    GetConfig(config, argc, argv);
    logging.Configure(config);

    LoggerImpl log;
    DelayAfterUpdate(config, log, SleepFor);

    if (IsPostUpdate(config)) {
        EnsureQualityCompat();
    } else {
        DoScheduling(config);
    }
    if (IsHealthCheck(config)) {
        CheckVxediskDeleteFlag(config);
        CheckVxediskStartValue(config);
        const ReportBytes report = IsPreUpdate(config) ? GetPreUpdateInfo(config) : GetOSInfo(config);
        SendTelemetry(report, config);
    }

    WindowsEventTracing tracing;
    if (ShouldStartETLTracing(config, tracing)) {
        StartTracing(tracing);
    }
    if (IsPostUpdate(config)) {
        StopTracing(tracing);
    }
}

} // namespace

int RunPulse(int argc, const char* const* argv)
{
    RestrictDllSearchPath();
    SetProcessDefences();
    VantorLogging logging;
    try {
        RunStages(logging, argc, argv);
    } catch (const std::exception& error) {
        LogError(std::string("Error: ") + error.what());
        std::fprintf(stderr, "Error: %s\n", error.what());
        return 1;
    }
    return 0;
}

} // namespace vantor
