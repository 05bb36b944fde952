// The periodic task: the built program against a stand-in for the Task Scheduler.
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <regex>
#include <set>

namespace vantor::e2e {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> Words(const std::string& text)
{
    static const std::regex kWord(R"((?:"[^"]*"|[^ "])+)");
    std::vector<std::string> words;
    for (std::sregex_iterator word(text.begin(), text.end(), kWord); word != std::sregex_iterator(); ++word) {
        words.push_back(std::regex_replace(word->str(), std::regex("\""), ""));
    }
    return words;
}

/// The local time of nine hours east of Greenwich as seconds from then, down to tens, for a run takes its time.
std::string Delay(const std::string& text, std::time_t then)
{
    std::tm time{};
    ::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    return std::to_string((::timegm(&time) - 9 * 3600 - then) / 10 * 10);
}

/// Each "# " line of scheduling.log names a run: its arguments, or "again" for those that the run before registered; a
/// method that fails; "+" and a task that is there besides the usual one; "consumer" for the consumer product. What it
/// logs of interest follows, and what the scheduler holds after it.
TEST(Schedule, EveryRunLogsAndLeavesWhatItShould)
{
    const fs::path tasks = ScratchFolder() / "tasks";
    const fs::path log = ScratchFolder() / "run.log";
    const auto plant = [&](const fs::path& task) {
        fs::create_directories((tasks / task).parent_path());
        std::ofstream(tasks / task) << "planted\n";
    };
    const std::string standIn =
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\CLSID\\{0f87369f-a4e5-4cfc-bd3e-73e6154572dd}\\InprocServer32]\n@=\"" +
        Escaped(WindowsPath(VANTOR_TEST_MODULES "/task_scheduler.dll")) + "\"\n";
    SetRegistry(standIn);

    std::string expected, actual, registered;
    for (const std::string& header : ReadLines(VANTOR_SOURCE_DIRECTORY "/tests/e2e/scheduling.log")) {
        expected += header + '\n';
        if (!header.starts_with("# ")) {
            continue;
        }
        actual += header + '\n';
        std::vector<std::string> arguments;
        std::string failing = "none";
        const bool again = header == "# again";
        if (!again) {
            arguments.push_back("/logfile=" + WindowsPath(log));
            fs::remove_all(tasks);
            plant("Quillon/Quillon DAT Built in test");
        }
        for (const std::string& word : Words(again ? registered : header.substr(2))) {
            if (word == "consumer") {
                SetRegistry(standIn + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora\\VSC]\n\"MarketReleaseVer\"=\"1\"\n");
            } else if (word[0] == '+') {
                plant(word.substr(1));
            } else {
                (word[0] == '/' ? arguments.emplace_back() : failing) = word;
            }
        }
        fs::remove(log);
        const std::time_t then = std::time(nullptr);
        const Outcome outcome =
            RunProgram(VANTOR_PROGRAM, arguments, log,
                       {"TASKS=" + WindowsPath(tasks), "TASKS_FAIL=" + failing, "TZ=JST-9", "LC_ALL=de_DE.UTF-8"});
        EXPECT_EQ(outcome.exitCode, outcome.standardError.empty() ? 0 : 1);
        EXPECT_EQ(ReadLines(tasks.string() + ".left"), std::vector<std::string>{"0"}) << "objects were not released";
        const auto end = std::find(outcome.log.begin(), outcome.log.end(), "TRACE: Entering GetOSInfo");
        std::for_each(outcome.log.begin(), end, [&](const std::string& line) {
            static const std::regex kNothingNew("TRACE: (Entering|Leaving|Handling) .*|.*: 0x8007000[23]");
            actual += std::regex_match(line, kNothingNew) ? "" : line + '\n';
        });
        for (const fs::path& path : std::set<fs::path>(fs::recursive_directory_iterator(tasks), {})) {
            actual += "= " + path.lexically_relative(tasks).string() + '\n';
            for (const std::string& line : ReadLines(path)) {
                const std::string method = line.substr(0, line.find(' '));
                const std::string value = line.substr(line.find(' ') + 1);
                registered = method == "IExecAction::put_Arguments" ? value : registered;
                if (method.ends_with("Boundary")) {
                    actual += method + " now + " + Delay(value, then) + '\n';
                } else if (!again || method.ends_with("Arguments") || method.ends_with("TaskAfter")) {
                    actual += line + '\n';
                }
            }
        }
    }
    actual = std::regex_replace(actual, std::regex("Z:[^\"\n]*"), "~");
    std::ofstream(ScratchFolder() / "scheduling.log") << actual; // to be taken over when a change is meant
    EXPECT_EQ(actual, expected);
}

} // namespace
} // namespace vantor::e2e
