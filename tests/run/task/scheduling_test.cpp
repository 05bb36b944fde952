#include "run/task/scheduling.h"

#include "platform/text/encoding.h"
#include "run/options/option_error.h"
#include "run/run_driver.h"
#include "run/task/task_description.h"
#include "support/log_capture.h"
#include "support/recording_scheduler.h"
#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

using Tasks = std::set<std::wstring>;

constexpr wchar_t kConsumerTask[] = L"\\Vexora\\Vexora DAT Built in test";
constexpr wchar_t kEnterpriseTask[] = L"\\Quillon\\Quillon DAT Built in test";

class Scheduling : public ::testing::Test {
protected:
    RecordingScheduler m_scheduler;
    LogCapture m_log;
    ScratchRegistry m_registry;
};

TEST_F(Scheduling, LeavesTheBrandsOwnTaskOrNone)
{
    const Tasks all = {L"Kestrova DAT Reputation (VXCore) periodic endpoint safety pulse",
                       L"Kestrova DAT Reputation (VXCore) Post DAT update endpoint safety pulse",
                       L"Vexora DAT Built in test", kConsumerTask, kEnterpriseTask};
    for (const wchar_t* const own : {kEnterpriseTask, kConsumerTask}) {
        for (const RunConfig& config : {RunConfig{.continueRun = true}, {.periodicRunCount = 7}, {}}) {
            m_scheduler.tasks = all;
            DoScheduling(config);
            EXPECT_EQ(m_scheduler.tasks, config == RunConfig() ? Tasks() : Tasks{own});
        }
        m_registry.Set(L"Software\\Vexora\\VSC", L"MarketReleaseVer", L"1");
    }
    const std::u16string_view description = TaskDescription(::GetUserDefaultUILanguage());
    const std::string put = "put_Description " + ToUtf8(std::wstring(description.begin(), description.end())) + '\n';
    EXPECT_NE(m_scheduler.calls.find(put), std::string::npos);
}

TEST_F(Scheduling, ACountOutsideTheSeriesLeavesTheTaskAsItIs)
{
    m_scheduler.tasks = {kEnterpriseTask};
    for (const RunConfig& config : {RunConfig{.periodicRunCount = 8}, {.periodicRunCount = 3, .test = true}}) {
        EXPECT_THROW(DoScheduling(config), OptionError);
        EXPECT_EQ(m_log.Lines().back(), "TRACE: Leaving DoScheduling");
        EXPECT_EQ(m_scheduler.tasks, Tasks{kEnterpriseTask});
    }
}

TEST_F(Scheduling, NothingIsAskedOfTheSchedulerNorLoggedByARunThatShowsHelp)
{
    const char* const arguments[] = {"vantor.exe", "/periodicruncount=0", "/HELP"};
    EXPECT_EQ(RunPulse(3, arguments), 0);
    EXPECT_EQ(m_scheduler.calls, "");
    EXPECT_TRUE(m_log.Lines().empty());
}

} // namespace
} // namespace vantor
