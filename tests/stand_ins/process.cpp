// A program that runs under any name it is copied to: it holds memory and waits to be ended.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

/// process [MEBIBYTES]: touches that much memory, prints "ready", and ends after a minute at the latest.
int main(int argc, char** argv)
{
    const std::vector<char> memory(argc > 1 ? std::strtoul(argv[1], nullptr, 10) << 20 : 0, '\1');
    std::puts("ready");
    std::fflush(stdout);
    ::Sleep(60'000);
    return memory.empty() ? 0 : memory.back();
}
