#include "run/log/logging.h"

#include "support/log_capture.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

TEST(Logging, LinesHaveLevelAndScopeAndLeaveTheLastErrorAlone)
{
    const LogCapture log;
    ::SetLastError(1234);
    {
        const ScopeTrace scope("Something");
        LogWarning("careful");
        LoggerImpl().Log(static_cast<LogLevel>(7), "odd level");
    }
    EXPECT_EQ(::GetLastError(), 1234u);
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{"TRACE: Entering Something", " WARN: careful", "ERROR: odd level",
                                                     "TRACE: Leaving Something"}));
}

} // namespace
} // namespace vantor
