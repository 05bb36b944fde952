// A task under the program's path that somebody else registered.
#include "e2e/program.h"

#include <gtest/gtest.h>

#include <fstream>

namespace vantor::e2e {
namespace {

TEST(ScheduleOwner, ATaskOfAnotherOwnerGoesBeforeTheProgramsOwnIsRegistered)
{
    const auto log = ScratchFolder() / "run.log", tasks = ScratchFolder() / "tasks";
    const auto task = tasks / "Quillon/Quillon DAT Built in test";
    SetRegistry(
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\CLSID\\{0f87369f-a4e5-4cfc-bd3e-73e6154572dd}\\InprocServer32]\n"
        "@=\"" +
        Escaped(WindowsPath(WindowsTree("tests/task_scheduler.dll"))) + "\"\n");
    const std::string name = "\\Quillon\\Quillon DAT Built in test";
    const std::string foreign =
        " WARN: Task " + name + " belongs neither to SYSTEM nor to Administrators. It is deleted first.";
    const struct {
        const char* owner;
        const char* failing;
        bool isForeign;
        bool isRegistered;
    } kCases[] = {{"O:BU", "none", true, true},
                  {"O:BA", "none", false, true},
                  {"O:BA", "IRegisteredTask::GetSecurityDescriptor", true, true},
                  {"O:BU", "ITaskFolder::DeleteTask", true, false}};
    for (const auto& row : kCases) {
        std::filesystem::create_directories(task.parent_path());
        std::ofstream(task) << "planted\n";
        std::filesystem::remove(log);
        const Outcome outcome =
            RunProgram(WindowsTree("vantor.exe"), {"/periodicruncount=0", "/logfile=" + WindowsPath(log)}, log,
                       {"TASKS=" + WindowsPath(tasks), std::string("TASKS_OWNER=") + row.owner,
                        std::string("TASKS_FAIL=") + row.failing});
        EXPECT_EQ(outcome.Logged(foreign), row.isForeign) << row.owner << row.failing;
        EXPECT_EQ(outcome.Logged("TRACE: Success! Task " + name + " successfully registered. "), row.isRegistered);
        EXPECT_EQ(ReadLines(task).at(0) != "planted", row.isRegistered) << row.owner << row.failing;
    }
}

} // namespace
} // namespace vantor::e2e
