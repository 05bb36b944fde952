// The periodic task: the built program against a stand-in for the Task Scheduler.
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <regex>
#include <set>
#include <sstream>

namespace vantor::e2e {
namespace {

namespace fs = std::filesystem;

const std::regex kQuoted("(\\S+)\"(.*?\")"); // /a="b c" instead of "/a=b c"
constexpr char kStart[] = "ITimeTrigger::put_StartBoundary";

/// The local time of nine hours east of Greenwich.
std::time_t Time(const std::string& text)
{
    std::tm time{};
    ::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    return ::timegm(&time) - 9 * 3600;
}

/// Each "# " line of scheduling.log names a run: its arguments, or "again" for those that the run before registered; a
/// method that fails; "+" and a task that is there besides the usual one; "consumer" for the consumer product; nothing
/// for no argument at all, the log's path in the registry. What it logs of interest follows, how it ends unless well, and
/// what the scheduler holds after it.
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
        Escaped(WindowsPath(WindowsTree("tests/task_scheduler.dll"))) +
        "\"\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora\\AVSolution\\DS\\DS]\n\"szVanTORLog\"=\"" +
        Escaped(WindowsPath(log)) + "\"\n";
    SetRegistry(standIn);

    std::string expected, actual, registered;
    std::time_t closes = 0;
    const std::vector<std::string> lines = ReadLines(VANTOR_SOURCE_DIRECTORY "/tests/e2e/scheduling.log");
    for (auto at = lines.begin(); at != lines.end(); ++at) {
        const std::string& header = *at;
        expected += header + '\n';
        if (!header.starts_with("# ")) {
            continue;
        }
        actual += header + '\n';
        std::vector<std::string> arguments;
        std::string failing = "none";
        const bool again = header == "# again";
        if (!again) {
            arguments.assign(header == "# " ? 0 : 1, "/logfile=" + WindowsPath(log));
            fs::remove_all(tasks);
            plant("Quillon/Quillon DAT Built in test");
        }
        std::istringstream words(std::regex_replace(again ? registered : header.substr(2), kQuoted, "\"$1$2"));
        for (std::string word; words >> std::quoted(word, '"', '\1');) {
            if (word == "consumer") {
                SetRegistry(standIn + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora\\VSC]\n\"MarketReleaseVer\"=\"1\"\n");
            } else if (word[0] == '+') {
                plant(word.substr(1));
            } else {
                (word[0] == '/' ? arguments.emplace_back() : failing) = word;
            }
        }
        fs::remove(log);
        fs::remove(tasks.string() + ".left");
        const std::time_t before = std::time(nullptr);
        const Outcome outcome =
            RunProgram(WindowsTree("vantor.exe"), arguments, log,
                       {"TASKS=" + WindowsPath(tasks), "TASKS_FAIL=" + failing, "TZ=JST-9", "LC_ALL=de_DE.UTF-8"});
        const std::time_t after = std::time(nullptr);
        const std::vector<std::string> left(header.find("postdat") == header.npos ? 1 : 0, "0"); // if any was made
        EXPECT_EQ(ReadLines(tasks.string() + ".left"), left) << "objects were not released";
        const auto end = std::find(outcome.log.begin(), outcome.log.end(), "TRACE: Entering GetOSInfo");
        std::for_each(outcome.log.begin(), end, [&](const std::string& line) {
            static const std::regex kNothingNew("TRACE: (Entering|Leaving|Handling) .*|.*: 0x8007000[23]");
            actual += std::regex_match(line, kNothingNew) ? "" : line + '\n';
        });
        if (outcome.exitCode != 0 || !outcome.standardError.empty()) {
            actual += "exit code " + std::to_string(outcome.exitCode) + ": " + outcome.standardError;
        }
        const auto start = std::find_if(at, lines.end(), [](auto& text) { return text.starts_with(kStart); });
        const std::time_t delay = start == lines.end() ? 0 : std::atol(start->substr(start->rfind(' ')).c_str());
        for (const fs::path& path : std::set<fs::path>(fs::recursive_directory_iterator(tasks), {})) {
            actual += "= " + path.lexically_relative(tasks).string() + '\n';
            for (const std::string& call : ReadLines(path)) {
                const std::string method = call.substr(0, call.find(' '));
                const std::string value = call.substr(call.find(' ') + 1);
                registered = method == "IExecAction::put_Arguments" ? value : registered;
                if (method.ends_with("EndBoundary")) { // comes before the start
                    closes = Time(value);
                } else if (method.ends_with("StartBoundary")) {
                    const std::time_t opens = Time(value);
                    const bool isDue = before + delay <= opens && opens <= after + delay;
                    actual += "ITimeTrigger::put_EndBoundary start + " + std::to_string(closes - opens) + '\n' +
                              method + " now + " + std::to_string(isDue ? delay : opens - before) + '\n';
                } else if (!again || method.ends_with("Arguments") || method.ends_with("TaskAfter")) {
                    actual += call + '\n';
                }
            }
        }
    }
    for (const auto& [text, other] :
         {std::pair(WindowsPath(WindowsTree("vantor.exe")), "<program>"), {WindowsPath(log), "<log>"}, {"\r", ""}}) {
        actual = std::regex_replace(actual, std::regex(Escaped(text)), other);
    }
    std::ofstream(ScratchFolder() / "scheduling.log") << actual; // to be taken over when a change is meant
    EXPECT_EQ(actual, expected);
}

} // namespace
} // namespace vantor::e2e
