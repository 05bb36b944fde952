#include "run/task_schedule.h"
#include "run/task_description.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <map>

namespace vantor {
namespace {

using namespace std::chrono_literals;

TEST(TaskSchedule, TheWindowLastsThreeDaysWhateverTheClockDoes)
{
    static char zone[] = "TZ=EST5EDT";
    ::putenv(zone);
    ::tzset();
    const std::chrono::sys_seconds eveBeforeSpring = std::chrono::sys_days(std::chrono::year(2026) / 3 / 7) + 4h;
    const TaskWindow window = WindowAfter(eveBeforeSpring, 86400s);
    EXPECT_EQ(window.start, "2026-03-07T23:00:00");
    EXPECT_EQ(window.end, "2026-03-11T00:00:00");
}

TEST(TaskDescription, EachLanguageHasItsTextAndAnyOtherTheEnglishOne)
{
    std::map<std::u16string_view, int> languages;
    for (unsigned language = 0; language <= 0xFFFF; ++language) {
        ++languages[TaskDescription(static_cast<std::uint16_t>(language))];
    }
    EXPECT_EQ(languages.size(), 29u);
    EXPECT_EQ(languages[TaskDescription(0x0809)], 0x10000 - 29);
    EXPECT_EQ(languages[TaskDescription(0x0814)], 2);
    EXPECT_NE(TaskDescription(0x040C).find(u"fichiers\u00A0DAT"), std::u16string_view::npos);
    EXPECT_NE(TaskDescription(0x041B).find(u" a\u00A0kontroluje"), std::u16string_view::npos);
}

} // namespace
} // namespace vantor
