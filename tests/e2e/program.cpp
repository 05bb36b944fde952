#include "e2e/program.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

namespace vantor::e2e {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kStampLength = 19; // "26/11/21 08:41:36: "

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> ReadLog(const fs::path& path)
{
    std::vector<std::string> lines;
    const std::string text = ReadFile(path);
    for (std::size_t begin = 0, end; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
        const std::string line = text.substr(begin, end - begin);
        // Only a line of ours has a stamp; a reply's headers in the log have none.
        const bool isStamped = line.size() >= kStampLength && line[2] == '/' && line[kStampLength - 2] == ':';
        lines.push_back(isStamped ? line.substr(kStampLength) : line);
    }
    return lines;
}

/// Runs a program of this machine, its output in files; the time limit is the script's that it runs through.
int Run(const std::vector<std::string>& command, const fs::path& output, const fs::path& error)
{
    std::vector<char*> arguments;
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);

    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644), STDOUT_FILENO);
        ::dup2(::open(error.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644), STDERR_FILENO);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Outcome RunUnderWine(std::vector<std::string> command)
{
    const fs::path output = ScratchFolder() / "stdout.txt";
    const fs::path error = ScratchFolder() / "stderr.txt";
    command.insert(command.begin(), {VANTOR_SOURCE_DIRECTORY "/tools/wine-run", "e2e"});
    Outcome outcome;
    outcome.exitCode = Run(command, output, error);
    outcome.standardOutput = ReadFile(output);
    outcome.standardError = ReadFile(error);
    return outcome;
}

} // namespace

bool Outcome::Logged(const std::string& line) const
{
    return std::find(log.begin(), log.end(), line) != log.end();
}

fs::path ScratchFolder()
{
    const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
    const fs::path folder = fs::path(VANTOR_E2E_DIRECTORY) / test->test_suite_name() / test->name();
    static fs::path emptied;
    if (std::exchange(emptied, folder) != folder) {
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    return folder;
}

std::string WindowsPath(const fs::path& path)
{
    std::string text = "Z:" + path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

Outcome RunProgram(std::vector<std::string> arguments)
{
    static int runs = 0;
    const fs::path logFile = ScratchFolder() / ("run" + std::to_string(++runs) + ".log");
    arguments.push_back("/logfile=" + WindowsPath(logFile));
    return RunProgram(VANTOR_PROGRAM, std::move(arguments), logFile);
}

Outcome RunProgram(const fs::path& program, std::vector<std::string> arguments, const fs::path& logFile)
{
    arguments.insert(arguments.begin(), program.string());
    Outcome outcome = RunUnderWine(std::move(arguments));
    outcome.log = ReadLog(logFile);
    return outcome;
}

void SetRegistry(const std::string& lines)
{
    const fs::path file = ScratchFolder() / "state.reg";
    std::ofstream(file) << "REGEDIT4\n\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora]\n\n"
                           "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora\\AVSolution\\SetVriLocalHost]\n\n"
                        << lines;
    const Outcome outcome = RunUnderWine({"reg", "import", WindowsPath(file)});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.standardOutput << outcome.standardError;
}

} // namespace vantor::e2e
