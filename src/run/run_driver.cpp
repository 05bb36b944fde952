#include "run/run_driver.h"

#include "health/collectors.h"
#include "health/repair/integrity_checks.h"
#include "health/tracing/updater_tracing.h"
#include "platform/program.h"
#include "platform/standard_output.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "run/log/vantor_logging.h"
#include "run/options/get_config.h"
#include "run/options/usage.h"
#include "run/post_update_delay.h"
#include "run/task/scheduling.h"
#include "telemetry/rest_telemetry.h"

#include <windows.h>

#include <cstddef>
#include <exception>
#include <string>

namespace vantor {
namespace {

void SleepFor(std::chrono::milliseconds duration)
{
    ::Sleep(static_cast<DWORD>(duration.count()));
}

/// Starts the updater's trace before an update and stops it after one.
void Trace(const RunConfig& config)
{
    if (ModeOf(config) != Mode::preUpdate && ModeOf(config) != Mode::postUpdate) {
        return; // before TraceFolder loads shell32.dll, which only a trace needs
    }
    WindowsEventTracing tracing;
    TraceFolder folder; // held until the session is running
    if (ShouldStartETLTracing(config, tracing, folder)) {
        StartTracing(tracing, folder);
    }
    if (ModeOf(config) == Mode::postUpdate) {
        StopTracing(tracing, folder);
    }
}

void RunStages(VantorLogging& logging, int argc, const char* const* argv)
{
    RunConfig config;
    GetConfig(config, argc, argv);
    logging.Configure(config);

    LoggerImpl log;
    DelayAfterUpdate(config, log, SleepFor);

    if (ModeOf(config) == Mode::postUpdate) {
        EnsureQualityCompat();
    } else {
        DoScheduling(config);
    }
    if (ModeOf(config) != Mode::none) {
        CheckVxediskDeleteFlag(config);
        CheckVxediskStartValue(config);
        const ReportBytes report = ModeOf(config) == Mode::preUpdate ? GetPreUpdateInfo(config) : GetOSInfo(config);
        SendTelemetry(report, config);
    }

    Trace(config);
}

} // namespace

int RunPulse(int argc, const char* const* argv)
{
    if (AsksForUsage({argv, static_cast<std::size_t>(argc)})) {
        WriteToStandard(STD_OUTPUT_HANDLE, UsageText());
        return 0;
    }
    RestrictDllSearchPath();
    SetProcessDefences();
    VantorLogging logging;
    try {
        RunStages(logging, argc, argv);
    } catch (const std::exception& error) {
        const std::string message = std::string(texts::kError) + error.what();
        LogError(message);
        WriteToStandard(STD_ERROR_HANDLE, message + "\r\n");
        return 1;
    }
    return 0;
}

} // namespace vantor
