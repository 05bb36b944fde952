#include "run/task/scheduled_task.h"

#include "platform/program.h"
#include "platform/system_time.h"
#include "platform/text/encoding.h"
#include "support/log_capture.h"
#include "support/recording_scheduler.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>

namespace vantor {
namespace {

using Lines = std::vector<std::string>;

constexpr wchar_t kPath[] = L"\\Folder\\Task";
const std::string kRegistered = "TRACE: Success! Task \\Folder\\Task successfully registered. ";

class ScheduledTask : public ::testing::Test {
protected:
    static void Create(const RunConfig& config = {.periodicRunCount = 0}, bool isConsumerProduct = false)
    {
        CreateTask(config, isConsumerProduct, kPath, L"\u0416");
    }

    bool WasAsked(const std::string& call) const { return m_scheduler.calls.find(call) != std::string::npos; }

    RecordingScheduler m_scheduler;
    LogCapture m_log;
};

/// The local time so many seconds from now, as a trigger has it.
std::string LocalTimeIn(std::uint64_t seconds)
{
    FILETIME time{};
    ::GetSystemTimeAsFileTime(&time);
    const std::uint64_t ticks = (std::uint64_t{time.dwHighDateTime} << 32) + time.dwLowDateTime + seconds * 10'000'000;
    time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME local{};
    ::FileTimeToLocalFileTime(&time, &time);
    ::FileTimeToSystemTime(&time, &local);
    return FormatTime(ToDateTime(local), "YYYY-MM-DDThh:mm:ss");
}

TEST_F(ScheduledTask, TakesTheseStepsInLocalTimeOfWhichAnyMayFail)
{
    constexpr std::uint64_t kDelay = 600, kThreeDays = 259'200;
    const std::string program = ToNarrow(*ProgramPath());
    const std::string start = LocalTimeIn(kDelay), end = LocalTimeIn(kDelay + kThreeDays);
    Create();
    EXPECT_EQ(m_log.Take(), Lines{kRegistered});
    std::smatch window;
    ASSERT_TRUE(std::regex_search(m_scheduler.calls, window, std::regex("EndBoundary (.*)\n.*StartBoundary (.*)\n")));
    EXPECT_TRUE(start <= window[2] && window[2] <= LocalTimeIn(kDelay)) << window[2];
    EXPECT_TRUE(end <= window[1] && window[1] <= LocalTimeIn(kDelay + kThreeDays)) << window[1];
    const std::pair<std::string, std::string> kPlaceholders[] = {
        {"<start>", window[2]}, {"<end>", window[1]}, {"<program>", program}};
    const std::string calls = std::exchange(m_scheduler.calls, {});

    std::string expected;
    std::ifstream steps(VANTOR_SOURCE_DIRECTORY "/tests/run/task/registration.tsv", std::ios::binary);
    for (std::string call, complaint; std::getline(steps, call, '\t') && std::getline(steps, complaint);) {
        for (const auto& [placeholder, text] : kPlaceholders) {
            for (std::string* const line : {&call, &complaint}) {
                const std::size_t at = line->find(placeholder);
                at == std::string::npos ? *line : line->replace(at, placeholder.size(), text);
            }
        }
        expected += call + '\n';
        m_scheduler.failing = call.substr(0, call.find(' '));
        m_scheduler.tasks.clear();
        Create();
        if (!complaint.empty()) {
            EXPECT_EQ(m_log.Take().back(), " WARN: " + complaint);
            EXPECT_TRUE(m_scheduler.tasks.empty());
        }
    }
    EXPECT_EQ(calls, expected);
}

TEST_F(ScheduledTask, OfTheConsumerProductThatGoesOnAlways)
{
    Create({.continueRun = true, .logFile = ToNarrow(L"C:\\\u00FC.log")}, true);
    EXPECT_FALSE(WasAsked("put_DeleteExpiredTaskAfter"));
    EXPECT_TRUE(WasAsked("put_Author Vexora\n"));
    EXPECT_TRUE(WasAsked(" /logfile=\"C:\\\xC3\xBC.log\" /continue\n"));
}

TEST_F(ScheduledTask, OfAnotherOwnerGoesFirst)
{
    const std::string foreign =
        " WARN: Task \\Folder\\Task belongs neither to SYSTEM nor to Administrators. It is deleted first.";
    const std::string undeleted = " WARN: Cannot delete the task of another owner: 0x8000ffff";
    const std::tuple<const wchar_t*, const char*, Lines> kCases[] = {
        {L"O:BA", "", {kRegistered}},
        {L"O:BU", "", {foreign, kRegistered}},
        {L"O:BA", "IRegisteredTask::GetSecurityDescriptor", {foreign, kRegistered}},
        {L"O:BA", "ITaskFolder::GetTask", {foreign, kRegistered}},
        {L"O:BU", "ITaskFolder::DeleteTask", {foreign, undeleted}},
    };
    for (const auto& [owner, failing, lines] : kCases) {
        EXPECT_FALSE(WasAsked("DeleteTask \\Folder\\Task 0\n") && lines.front() == kRegistered);
        m_scheduler.tasks = {kPath};
        m_scheduler.owner = owner;
        m_scheduler.failing = failing;
        Create();
        EXPECT_EQ(m_log.Take(), lines);
    }
    EXPECT_TRUE(WasAsked("DeleteTask \\Folder\\Task 0\n") && WasAsked("GetSecurityDescriptor 1\n"));
}

TEST_F(ScheduledTask, IsWarnedOfWhatItWillNotGet)
{
    const std::string credentials = " WARN: The next run will not get /username and /password whole: one of them holds "
                                    "a blank, a tab or a quote.";
    const std::string log = " WARN: The next run, as SYSTEM, may write its log elsewhere: /logfile is not absolute, or "
                            "on a share or a mapped drive.";
    const std::pair<RunConfig, Lines> kCases[] = {
        {{.logFile = "C:\\a.log", .port = 1, .password = "p"}, {kRegistered}},
        {{.password = "p q"}, {kRegistered}}, // goes with a proxy only
        {{.logFile = "a.log", .port = 1, .password = "p q"}, {credentials, log, kRegistered}},
        {{.logFile = "Q:\\a.log"}, {log, kRegistered}}, // there is no such drive
    };
    for (auto [config, lines] : kCases) {
        config.continueRun = true;
        Create(config);
        EXPECT_EQ(m_log.Take(), lines);
    }
}

TEST_F(ScheduledTask, IsDeletedWithItsFolderUnlessOthersAreInIt)
{
    const std::string deleted = "TRACE: Success! Task \\Folder\\Task successfully deleted. ";
    const std::string failed = " WARN: Failed to delete \\Folder\\Task the scheduled task: ";
    const std::tuple<const wchar_t*, const char*, std::string> kCases[] = {
        {L"", "IClassFactory::CreateInstance", " WARN: Failed to create an instance of ITaskService:0x8000ffff"},
        {L"", "ITaskService::Connect", " WARN: ITaskService::Connect failed: 0x8000ffff"},
        {L"", "ITaskService::GetFolder", " WARN: Cannot get Root Folder pointer: 0x8000ffff"},
        {L"", "ITaskFolder::DeleteTask", failed + "0x8000ffff"},
        {L"\\Folder\\Other", "", "TRACE: Not deleting the sub folder: \\Folder as it has 1 tasks present"},
        {L"", "ITaskFolder::GetFolder", " WARN: Cannot get sub Folder pointer: 0x8000ffff"},
        {L"", "ITaskFolder::GetTasks", " WARN: Failed to get tasks in sub folder: \\Folder error:0x8000ffff"},
        {L"", "IRegisteredTaskCollection::get_Count",
         " WARN: Failed to get count of tasks in sub folder: \\Folder error:0x8000ffff"},
        {L"", "ITaskFolder::DeleteFolder", " WARN: Failed to delete the empty sub folder: \\Folder0x8000ffff"},
        {L"\\Other", "", "TRACE: Success! Deleted the empty sub folder: \\Folder"},
    };
    for (const auto& [other, failing, line] : kCases) {
        m_scheduler.tasks = {kPath, other};
        m_scheduler.failing = failing;
        m_scheduler.calls.clear();
        DeleteTask(kPath);
        const bool isLeft = m_scheduler.tasks.contains(kPath);
        const Lines before = {deleted, "TRACE: Given task name has a sub folder: \\Folder\\Task", line};
        EXPECT_EQ(m_log.Take(), isLeft ? Lines{line} : before);
    }
    EXPECT_EQ(m_scheduler.calls, "IClassFactory::CreateInstance\nITaskService::Connect type 0 type 0 type 0 type 0\n"
                                 "ITaskService::GetFolder \\\nITaskFolder::DeleteTask \\Folder\\Task 0\n"
                                 "ITaskFolder::GetFolder \\Folder\nITaskFolder::GetTasks 1\n"
                                 "IRegisteredTaskCollection::get_Count\nITaskFolder::DeleteFolder \\Folder 0\n");
    DeleteTask(kPath);
    EXPECT_EQ(m_log.Take(), Lines{failed + "0x80070002"});
}

} // namespace
} // namespace vantor
