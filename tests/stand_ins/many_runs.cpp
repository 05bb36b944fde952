// many_runs COUNT APARTMENT OPTION...: runs the program so often in this one process. Prints the next free handle after
// each run, then whether a DLL beside this program is found. Ends with what comes of initialising COM then; with
// APARTMENT it does so before, too.
#include "run/run_driver.h"

#include <windows.h>

#include <objbase.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (*argv[2] != '\0') {
        ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    }
    for (int run = std::atoi(argv[1]); run > 0; --run) {
        vantor::RunPulse(argc - 2, argv + 2);
        const HANDLE next = ::CreateEventW(nullptr, FALSE, FALSE, nullptr); // Wine does not count them
        ::CloseHandle(next);
        std::printf("%lu ", ::HandleToULong(next) / 4);
    }
    std::puts(::LoadLibraryW(L"versioned_german.dll") ? "found" : "not found");
    return ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}
