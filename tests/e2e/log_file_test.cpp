// The log file when others write to it too, and when it cannot be written.
#include "e2e/local_receiver.h"
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>

namespace vantor::e2e {
namespace {

/// How often the log has each line, after so many runs at once. What differs from run to run is left out.
std::map<std::string, int> LinesOf(int runs, const std::filesystem::path& log)
{
    std::string command;
    for (int run = 0; run < runs; ++run) {
        for (const auto& word :
             UnderWine({WindowsTree("vantor.exe"), "/hcmode=periodic", "/logfile=" + WindowsPath(log)})) {
            command += "'" + word + "' ";
        }
        command += "& all=\"$all $!\"; ";
    }
    std::filesystem::remove(log);
    EXPECT_EQ(std::system((command + "for run in $all; do wait $run || failed=1; done; exit $failed").c_str()), 0);
    std::ifstream file(log, std::ios::binary);
    const std::regex varying(R"(0x[0-9a-f]+|[0-9/]+ [0-9:]+|-?[0-9]{3,})");
    std::map<std::string, int> lines;
    for (std::string line; std::getline(file, line);) {
        ++lines[std::regex_replace(line, varying, "~")];
    }
    return lines;
}

TEST(LogFile, RunsAtOnceLoseAndTearNoLine)
{
    constexpr int kRuns = 4;
    SetRegistry();
    const auto alone = LinesOf(1, ScratchFolder() / "shared.log");
    ASSERT_GT(alone.size(), 50u);
    for (int round = 0; round < 5; ++round) {
        auto lines = LinesOf(kRuns, ScratchFolder() / "shared.log");
        for (const auto& [line, count] : alone) {
            EXPECT_EQ(std::exchange(lines[line], 0), kRuns * count) << line;
        }
        std::erase_if(lines, [](const auto& line) { return line.second == 0; });
        EXPECT_TRUE(lines.empty()) << lines.begin()->first;
    }
}

TEST(LogFile, ThatCannotBeWrittenDoesNotStopTheRun)
{
    SetRegistry();
    LocalReceiver receiver;
    std::size_t pulses = 0;
    const std::filesystem::path linked = ScratchFolder() / "linked.log";
    std::ofstream(linked) << "another's\n";
    std::filesystem::create_hard_link(linked, ScratchFolder() / "vantor.log");
    // A folder, a missing one, a name that Windows refuses, a full disk, one that fails every write, devices, and a
    // second name of another's file.
    for (const std::string& path :
         {std::string("C:\\windows"), std::string("C:\\no such folder\\x.log"), std::string("C:\\no?name.log"),
          std::string("Z:\\dev\\full"), std::string("Z:\\proc\\version"), std::string("NUL"),
          WindowsPath(ScratchFolder() / "vantor.log")}) {
        const Outcome outcome = RunProgram(WindowsTree("vantor.exe"), {"/hcmode=periodic", "/logfile=" + path}, "");
        EXPECT_EQ(outcome.exitCode, 0) << path;
        EXPECT_EQ(outcome.standardOutput + outcome.standardError, "") << path;
        EXPECT_EQ(receiver.Pulses().size(), ++pulses) << path;
    }
    EXPECT_EQ(ReadLines(linked), std::vector<std::string>{"another's"});
}

} // namespace
} // namespace vantor::e2e
