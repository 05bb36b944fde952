#include "run/post_update_delay.h"

#include "support/recording_logger.h"

#include <gtest/gtest.h>

namespace vantor {

using namespace std::chrono_literals;

TEST(PostUpdateDelay, WaitsOnceForOneToTenMinutes)
{
    const struct {
        std::uint16_t minutes;
        std::vector<std::chrono::milliseconds> waits;
        std::vector<std::string> lines;
    } kCases[] = {
        {0, {}, {}},
        {1, {60000ms}, {"T /delaypostdat waiting for 1 minutes."}},
        {10, {600000ms}, {"T /delaypostdat waiting for 10 minutes."}},
        {11, {}, {"W /delaypostdat out of range: 11"}},
        {65535, {}, {"W /delaypostdat out of range: 65535"}},
    };
    for (const auto& [minutes, expectedWaits, expectedLines] : kCases) {
        SCOPED_TRACE(minutes);
        std::vector<std::chrono::milliseconds> waits;
        RecordingLogger log;
        DelayAfterUpdate({.delayPostDat = minutes}, log, [&](auto duration) { waits.push_back(duration); });
        EXPECT_EQ(waits, expectedWaits);
        EXPECT_EQ(log.lines, expectedLines);
    }
}

} // namespace vantor
