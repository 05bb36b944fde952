#include "run/run_driver.h"

#include "support/log_capture.h"
#include "support/recording_scheduler.h"

#include <gtest/gtest.h>

#include <iterator>

namespace vantor {
namespace {

TEST(RunPulse, AskedForHelpItDoesNothingElse)
{
    RecordingScheduler scheduler;
    LogCapture log;
    const char* const arguments[] = {"vantor.exe", "/periodicruncount=0", "/HELP"};
    EXPECT_EQ(RunPulse(static_cast<int>(std::size(arguments)), arguments), 0);
    EXPECT_EQ(scheduler.calls, "");
    EXPECT_TRUE(log.Lines().empty());
}

} // namespace
} // namespace vantor
