// timed_run RESULT OUTPUT COMMAND...: runs COMMAND, its output in the file OUTPUT, and writes to the file RESULT what it
// cost: wall and CPU time in milliseconds, peak resident size in KiB, exit code (-1: ended by a signal).
//
// A process begins with the resident size and the page tables of the one that forks it, and the kernel counts both as its
// own. So this program is small, stands between the measuring one and the measured one, and is built without sanitizers.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace {

constexpr unsigned kTimeoutSeconds = 60;

[[noreturn]] void Become(const char* output, char** command)
{
    ::alarm(kTimeoutSeconds); // survives the exec; ends a run that hangs
    const int input = ::open("/dev/null", O_RDONLY);
    const int file = ::open(output, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ::dup2(input, STDIN_FILENO);
    ::dup2(file, STDOUT_FILENO);
    ::dup2(file, STDERR_FILENO);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    ::execvp(command[0], command);
    ::_exit(127);
}

double Milliseconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 4) {
        std::fputs("usage: timed_run RESULT OUTPUT COMMAND...\n", stderr);
        return 2;
    }
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        Become(arguments[2], arguments + 3);
    }
    int status = 0;
    rusage used{};
    if (::wait4(child, &status, 0, &used) != child) {
        std::perror("timed_run");
        return 1;
    }
    const double wall = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    std::FILE* const result = std::fopen(arguments[1], "w");
    if (result == nullptr) {
        std::perror(arguments[1]);
        return 1;
    }
    std::fprintf(result, "%.3f %.3f %ld %d\n", wall, Milliseconds(used.ru_utime) + Milliseconds(used.ru_stime),
                 used.ru_maxrss, WIFEXITED(status) ? WEXITSTATUS(status) : -1);
    return std::fclose(result) == 0 ? 0 : 1;
}
