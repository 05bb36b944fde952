#include "measured_run.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <set>

namespace vantor::bench {
namespace {

constexpr unsigned kLongestSeconds = 60;

double Milliseconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

/// Bytes sent over loopback since this network began: every byte of both directions once.
double LoopbackBytes()
{
    std::ifstream counters("/proc/self/net/dev");
    const std::regex loopback(R"( *lo: *(\d+).*)");
    std::smatch found;
    for (std::string line; std::getline(counters, line);) {
        if (std::regex_match(line, found, loopback)) {
            return std::stod(found[1]);
        }
    }
    return 0;
}

pid_t Start(const std::vector<std::string>& command, const std::filesystem::path& output, const char* debug)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setenv("WINEDEBUG", debug, 1);
        ::alarm(kLongestSeconds); // survives the exec; ends a run that hangs
        const int input = ::open("/dev/null", O_RDONLY);
        const int file = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ::dup2(input, STDIN_FILENO);
        ::dup2(file, STDOUT_FILENO);
        ::dup2(file, STDERR_FILENO);
        ::close_range(STDERR_FILENO + 1, ~0U, 0);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    return child;
}

Cost Run(std::vector<std::string> command, const std::filesystem::path& output, const char* debug)
{
    command.insert(command.begin(), "wine");
    const double bytesBefore = LoopbackBytes();
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = Start(command, output, debug);
    int status = 0;
    rusage used{};
    ::wait4(child, &status, 0, &used);
    Cost cost;
    cost.wallMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    cost.cpuMs = Milliseconds(used.ru_utime) + Milliseconds(used.ru_stime);
    cost.peakMib = static_cast<double>(used.ru_maxrss) / 1024;
    cost.wireBytes = LoopbackBytes() - bytesBefore;
    cost.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return cost;
}

} // namespace

Cost Measure(const std::vector<std::string>& command, const std::filesystem::path& output)
{
    return Run(command, output, "-all");
}

Touched Trace(const std::vector<std::string>& command, const std::filesystem::path& output)
{
    Run(command, output, "-all,+file,+reg");
    // "trace:file:NtCreateFile handle=... name=L"..."", "trace:reg:NtOpenKeyEx (0x...,L"Name",...)"
    const std::regex file(R"re(trace:file:NtCreateFile .*name=(L".*?") )re");
    const std::regex key(R"re(trace:reg:Nt(?:OpenKeyEx|CreateKey) \((.*?L".*?"))re");
    std::set<std::string> files;
    std::set<std::string> keys;
    std::ifstream record(output);
    std::smatch found;
    for (std::string line; std::getline(record, line);) {
        if (std::regex_search(line, found, file)) {
            files.insert(found[1]);
        } else if (std::regex_search(line, found, key)) {
            keys.insert(found[1]);
        }
    }
    return {files.size(), keys.size()};
}

} // namespace vantor::bench
