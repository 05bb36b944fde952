#include "run/run_driver.h"

#include "health/collectors.h"
#include "platform/program.h"
#include "run/get_config.h"
#include "run/logging.h"
#include "run/post_update_delay.h"
#include "run/vantor_logging.h"
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

void RunStages(VantorLogging& logging, int argc, const char* const* argv)
{
    RunConfig config;
    GetConfig(config, argc, argv);
    logging.Configure(config);

    LoggerImpl log;
    DelayAfterUpdate(config, log, SleepFor);

    if (IsHealthCheck(config)) {
        const ReportBytes report = IsPreUpdate(config) ? GetPreUpdateInfo(config) : GetOSInfo(config);
        SendTelemetry(report, config);
    }
}

} // namespace

int RunPulse(int argc, const char* const* argv)
{
    RestrictDllSearchPath();
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
