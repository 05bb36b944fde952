// Stands in for Windows' Task Scheduler and records what it is asked.
#pragma once

#include <windows.h>

#include <set>
#include <string>

namespace vantor {

/// While it lives, COM makes this process's Task Scheduler from it. The thread's COM is initialised with it.
class RecordingScheduler {
public:
    RecordingScheduler();
    ~RecordingScheduler(); ///< expects every object that was handed out to be released
    RecordingScheduler(const RecordingScheduler&) = delete;
    RecordingScheduler& operator=(const RecordingScheduler&) = delete;

    std::string calls;            ///< "Interface::Method" with its arguments, a line for each call
    std::set<std::wstring> tasks; ///< by their paths
    std::wstring owner = L"O:SY"; ///< of each task
    std::string failing;          ///< the method that fails with E_UNEXPECTED

    int references = 0;     ///< to the objects that were handed out
    std::wstring text;      ///< the latest that it was given, such as the path of a task or folder
    IID id{};               ///< the latest interface that it was asked for
    DWORD registration = 0; ///< COM's number for it
};

} // namespace vantor
