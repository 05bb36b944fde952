#include "run/log/log_line.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

using namespace std::chrono_literals;

TEST(LogLine, TimeLevelAndMessage)
{
    const std::chrono::sys_seconds time = std::chrono::sys_days(std::chrono::year(2005) / 2 / 28) + 23h + 4min + 9s;
    EXPECT_EQ(FormatLogLine(time, LogLevel::trace, "a"), "05/02/28 23:04:09: TRACE: a\r\n");
    EXPECT_EQ(FormatLogLine(time + 1h, LogLevel::warning, "b"), "05/03/01 00:04:09:  WARN: b\r\n");
    EXPECT_EQ(FormatLogLine(time, LogLevel::error, ""), "05/02/28 23:04:09: ERROR: \r\n");
    EXPECT_EQ(FormatLogLine(time, LogLevel::trace, "\na\r\n\r\nb\rc\n\r\rd\r"),
              "05/02/28 23:04:09: TRACE: \n a\r\n \r\n b\r c\n \r \r d\r \r\n");
    EXPECT_EQ(LevelPrefix(static_cast<LogLevel>(0)), "ERROR: ");
}

} // namespace
} // namespace vantor
