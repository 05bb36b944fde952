#include "run/task/task_schedule.h"
#include "run/options/options.h"
#include "run/task/registration_checks.h"
#include "support/command_line.h"
#include "support/recording_logger.h"

#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#endif

#include <algorithm>
#include <random>

namespace vantor {
namespace {

using namespace std::chrono_literals;

/// What a run with these options registers: the next run's delay and count, a "-" for none; "!" where it throws.
std::string Next(const RunConfig& config)
{
    try {
        if (!RegistersNextRun(config)) {
            return "nothing";
        }
    } catch (const OptionError&) {
        return "!";
    }
    const NextRun next = NextRunAfter(config);
    return std::to_string(next.delay.count()) + (next.count ? " " + std::to_string(*next.count) + ", " : " -, ");
}

TEST(TaskSchedule, EachCountOfASeriesHasItsDelayAndEachOtherIsRefused)
{
    const std::pair<std::string, unsigned> kSeries[] = {
        {"600 1, 1800 2, 3600 3, 7200 4, 14400 5, 28800 6, 57600 7, 115200 -, ", 8}, {"20 1, 30 2, 40 -, ", 3}};
    for (const auto& [series, length] : kSeries) {
        const bool test = length == 3;
        std::string all;
        for (unsigned count = 0; count < 256; ++count) {
            all += Next({.periodicRunCount = static_cast<std::uint8_t>(count), .test = test});
        }
        EXPECT_EQ(all, series + std::string(255 - length, '!') + "nothing");
        EXPECT_EQ(Next({.continueRun = true, .test = test}), "86400 -, ");
        EXPECT_EQ(Next({.periodicRunCount = 1, .continueRun = true, .test = test}), "86400 -, ");
    }
}

TEST(TaskSchedule, TheNextRunGetsWhatItNeeds)
{
    RunConfig config{.hcmode = "predatupdate", .datver = "1", .server = "s", .username = "u", .domain = "d"};
    EXPECT_EQ(TaskArguments(config, 7), " /hcmode=periodic /periodicruncount=7");
    EXPECT_EQ(TaskArguments(config, {}), " /hcmode=periodic /continue");
    config.port = 8080;
    config.test = config.restTest = true;
    config.logFile = "C:\\A b";
    const std::string before = " /hcmode=periodic /logfile=\"C:\\A b\" /resttest";
    const std::string behind = " /server=s /port=8080 /username=u /password=";
    EXPECT_EQ(TaskArguments(config, 2), before + " /periodicruncount=2 /test" + behind);
    EXPECT_EQ(TaskArguments(config, {}), before + " /continue" + behind);
}

/// The options of the run that these arguments start, as Windows and the program read them.
RunConfig NextOptions(const std::string& arguments)
{
    RunConfig config;
    RecordingLogger log;
    const std::vector<std::string> words = SplitCommandLine(arguments);
#ifdef _WIN32
    int count = 0;
    wchar_t** const real =
        ::CommandLineToArgvW((L"x" + std::wstring(arguments.begin(), arguments.end())).c_str(), &count);
    EXPECT_EQ(static_cast<std::size_t>(count), words.size() + 1) << arguments;
    for (std::size_t index = 0; index < words.size() && real[index + 1]; ++index) {
        EXPECT_EQ(std::wstring(words[index].begin(), words[index].end()), real[index + 1]) << arguments;
    }
    ::LocalFree(real);
#endif
    ParseArguments(words, config, log);
    return config;
}

TEST(TaskSchedule, TheNextRunGetsTheLogsPathAndWholeCredentialsAsTheyAre)
{
    std::mt19937 random(1);
    const auto some = [&](std::string_view characters) {
        std::string text(random() % 12, '\0');
        std::ranges::generate(text, [&] { return characters[random() % characters.size()]; });
        return text;
    };
    int whole = 0;
    for (int round = 0; round < 3000; ++round) {
        RunConfig config{.logFile = some("ab /=.\\\\\\"), .server = "s", .port = 1};
        config.username = some("ab/=\\");
        config.password = some(round % 2 == 0 ? "ab/=\\" : "ab/=\\ \t\"");
        const std::string arguments = TaskArguments(config, 3);
        const RunConfig next = NextOptions(arguments);
        EXPECT_EQ(next.logFile, config.logFile);
        EXPECT_EQ(next.periodicRunCount, 3) << arguments;
        const bool same = next.username == config.username && next.password == config.password;
        EXPECT_EQ(same, ArePassedWhole(config)) << arguments;
        whole += same;
    }
    EXPECT_GT(whole, 1500);
}

TEST(TaskSchedule, TheWindowLastsThreeDaysWhateverTheClockDoes)
{
    const auto easternTime = [](std::chrono::sys_seconds time) {
        constexpr std::chrono::sys_seconds kSpring = std::chrono::sys_days(std::chrono::year(2026) / 3 / 8) + 7h;
        return UtcDateTime(time - (time < kSpring ? 5h : 4h));
    };
    const std::chrono::sys_seconds eveBeforeSpring = std::chrono::sys_days(std::chrono::year(2026) / 3 / 7) + 4h;
    const TaskWindow window = WindowAfter(eveBeforeSpring, 86400s, easternTime);
    EXPECT_EQ(window.start, "2026-03-07T23:00:00");
    EXPECT_EQ(window.end, "2026-03-11T00:00:00");
}

} // namespace
} // namespace vantor
