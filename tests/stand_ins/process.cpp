// A program that runs under any name it is copied to: it holds memory and waits to be ended.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

/// process [MEBIBYTES]: touches that much memory, prints "ready", and ends after a minute at the latest.
int main(int argc, char** argv)
{
    constexpr std::size_t kMebibyte = 1024 * 1024;
    constexpr DWORD kLongestMs = 60'000;

    const std::size_t size = argc > 1 ? std::strtoul(argv[1], nullptr, 10) * kMebibyte : 0;
    std::vector<char> memory(size);
    for (std::size_t at = 0; at < size; at += 4096) {
        memory[at] = 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    ::Sleep(kLongestMs);
    return memory.empty() ? 0 : memory.back();
}
