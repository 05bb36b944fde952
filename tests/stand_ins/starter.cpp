// A program that starts another one and waits for it, as the product's updater does.
#include <windows.h>

#include <cwchar>

/// starter COMMAND...: runs the command line behind its own name; gives its exit code, or 255 when it did not end.
int main()
{
    constexpr DWORD kLongestMs = 50'000;

    wchar_t* command = ::GetCommandLineW();
    const bool isQuoted = *command == L'"';
    command = std::wcschr(command + 1, isQuoted ? L'"' : L' ');
    command += isQuoted ? 2 : 1;

    STARTUPINFOW start{};
    start.cb = sizeof(start);
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, command, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process)) {
        return 254;
    }
    DWORD exitCode = 255;
    if (::WaitForSingleObject(process.hProcess, kLongestMs) == WAIT_OBJECT_0) {
        ::GetExitCodeProcess(process.hProcess, &exitCode);
    }
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return static_cast<int>(exitCode);
}
