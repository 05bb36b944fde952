// idle_processes COUNT: fills the process list. It starts that many processes, which do nothing, says "ready", and ends
// them all when its standard input ends.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char** argv)
{
    wchar_t self[MAX_PATH];
    ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::vector<HANDLE> processes;
    constexpr std::size_t kSpareTries = 20; // Wine does not start every process at once on a busy machine
    const std::size_t count = argc == 2 ? std::strtoul(argv[1], nullptr, 10) : 0;
    for (std::size_t tries = 0; processes.size() < count && tries < count + kSpareTries; ++tries) {
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process{};
        if (::CreateProcessW(self, nullptr, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr, &startup,
                             &process)) {
            ::CloseHandle(process.hThread);
            processes.push_back(process.hProcess);
        }
    }
    std::printf("ready %zu\n", processes.size());
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    for (HANDLE process : processes) {
        ::TerminateProcess(process, 0);
        ::CloseHandle(process);
    }
    return 0;
}
