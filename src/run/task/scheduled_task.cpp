#include "run/task/scheduled_task.h"

#include "platform/com.h"
#include "platform/program.h"
#include "platform/system_time.h"
#include "platform/text/encoding.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"
#include "run/task/registration_checks.h"
#include "run/task/task_schedule.h"

#include <taskschd.h>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vantor {
namespace {

/// Thrown by a failed step; what() is its log line.
class StepFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws StepFailure if the step failed.
void Require(HRESULT result, const std::string& message, const std::string& details = {})
{
    if (FAILED(result)) {
        throw StepFailure(message + ResultText(result) + details);
    }
}

/// The time in the time zone of Windows. The C runtime's conversion would use the environment variable TZ.
DateTime WindowsLocalTime(std::chrono::sys_seconds time)
{
    constexpr long long kSecondsFrom1601To1970 = 11'644'473'600;

    ULARGE_INTEGER ticks;
    ticks.QuadPart = static_cast<ULONGLONG>(time.time_since_epoch().count() + kSecondsFrom1601To1970) * 10'000'000;
    const FILETIME file{ticks.LowPart, ticks.HighPart};
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    ::FileTimeToSystemTime(&file, &utc);
    ::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    return ToDateTime(local);
}

/// The Task Scheduler's root folder. The callers pass the two messages in which their log lines differ.
struct Scheduler {
    Scheduler(const char* cannotCreate, const char* cannotOpenRoot)
    {
        Require(::CoCreateInstance(CLSID_TaskScheduler, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskService,
                                   service.ReceiveUntyped()),
                cannotCreate);
        Require(service->Connect({}, {}, {}, {}), "ITaskService::Connect failed: ");
        Require(CallWithText(service, &ITaskService::GetFolder, L"\\", root.Receive()), cannotOpenRoot);
    }

    ComPointer<ITaskService> service;
    ComPointer<ITaskFolder> root;
};

void Describe(const ComPointer<ITaskDefinition>& task, const std::wstring& author, const std::wstring& description)
{
    ComPointer<IRegistrationInfo> info;
    Require(task->get_RegistrationInfo(info.Receive()), "Cannot get identification pointer: ");
    Require(CallWithText(info, &IRegistrationInfo::put_Author, author), "Cannot put identification info: ");
    Require(CallWithText(info, &IRegistrationInfo::put_Description, description), "Cannot put description info: ");
}

void SetUp(const ComPointer<ITaskDefinition>& task, bool removesItself)
{
    const char* const message = "Cannot put setting information: ";

    ComPointer<ITaskSettings> settings;
    Require(task->get_Settings(settings.Receive()), "Cannot get settings pointer: ");
    Require(settings->put_StartWhenAvailable(VARIANT_TRUE), message);
    if (removesItself) {
        Require(CallWithText(settings, &ITaskSettings::put_DeleteExpiredTaskAfter, L"PT0M"), message);
    }
}

void AddTrigger(const ComPointer<ITaskDefinition>& task, const TaskWindow& window)
{
    ComPointer<ITriggerCollection> triggers;
    Require(task->get_Triggers(triggers.Receive()), "Cannot get trigger collection: ");
    ComPointer<ITrigger> trigger;
    Require(triggers->Create(TASK_TRIGGER_TIME, trigger.Receive()), "Cannot create trigger: ");
    ComPointer<ITimeTrigger> timeTrigger;
    Require(trigger->QueryInterface(IID_ITimeTrigger, timeTrigger.ReceiveUntyped()),
            "QueryInterface call failed for ITimeTrigger: ");
    Require(CallWithText(timeTrigger, &ITimeTrigger::put_Id, L"Vantor_Periodic"), "Cannot put trigger ID: ");
    ComPointer<IRepetitionPattern> repetition;
    Require(timeTrigger->get_Repetition(repetition.Receive()), "Cannot get repetition to the trigger: ");
    Require(CallWithText(repetition, &IRepetitionPattern::put_Interval, L"PT1440M"),
            "Cannot put repetition interval to the trigger: ");
    Require(CallWithText(timeTrigger, &ITimeTrigger::put_EndBoundary, ToWide(window.end)),
            "Cannot put end boundary on trigger: ");
    Require(CallWithText(timeTrigger, &ITimeTrigger::put_StartBoundary, ToWide(window.start)),
            "Cannot add start boundary to trigger: ");
}

void AddAction(const ComPointer<ITaskDefinition>& task, const std::string& arguments)
{
    ComPointer<IActionCollection> actions;
    Require(task->get_Actions(actions.Receive()), "Cannot get Task collection pointer: ");
    ComPointer<IAction> action;
    Require(actions->Create(TASK_ACTION_EXEC, action.Receive()), "Cannot create the action: ");
    ComPointer<IExecAction> execAction;
    Require(action->QueryInterface(IID_IExecAction, execAction.ReceiveUntyped()),
            "QueryInterface call failed for IExecAction: ");
    ::SetLastError(ERROR_INSUFFICIENT_BUFFER); // not every version of Windows sets it if the path is too long
    const std::optional<std::wstring> program = ProgramPath();
    const HRESULT noProgram = HRESULT_FROM_WIN32(::GetLastError());
    Require(program ? CallWithText(execAction, &IExecAction::put_Path, *program) : noProgram,
            "Cannot put action path: ", " path: " + ToNarrow(program.value_or(L"")));
    Require(CallWithText(execAction, &IExecAction::put_Arguments, ToWide(arguments)),
            "Cannot put action arguments: ", " arg: " + arguments);
}

/// Whether a drive belongs to the machine. A mapped share or a folder shown as a drive by "subst" exists only for one
/// account or session.
bool IsOwnDrive(char letter)
{
    const std::wstring drive{static_cast<wchar_t>(letter), L':'};
    const UINT type = ::GetDriveTypeW((drive + L'\\').c_str());
    wchar_t device[MAX_PATH] = L"";
    const bool isSubstitute =
        ::QueryDosDeviceW(drive.c_str(), device, MAX_PATH) != 0 && std::wstring_view(device).starts_with(L"\\??\\");
    return type != DRIVE_REMOTE && type != DRIVE_NO_ROOT_DIR && !isSubstitute;
}

void WarnOfWhatTheNextRunMisses(const RunConfig& config)
{
    if (config.port != 0 && !ArePassedWhole(config)) {
        LogWarning("The next run will not get /username and /password whole: one of them holds a blank, a tab or a "
                   "quote.");
    }
    if (!config.logFile.empty() && !IsTheSameForEveryone(config.logFile, IsOwnDrive)) {
        LogWarning("The next run, as SYSTEM, may write its log elsewhere: /logfile is not absolute, or on a share or a "
                   "mapped drive.");
    }
}

/// Deletes the task at this path unless SYSTEM or Administrators own it. Registering would keep the owner, who could
/// then change a task that runs as SYSTEM.
void DeleteForeignTask(const ComPointer<ITaskFolder>& root, const std::wstring& path)
{
    ComPointer<IRegisteredTask> task;
    const HRESULT found = CallWithText(root, &ITaskFolder::GetTask, path, task.Receive());
    if (found == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) || found == HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)) {
        return;
    }
    ComText descriptor;
    if (SUCCEEDED(found) && SUCCEEDED(task->GetSecurityDescriptor(OWNER_SECURITY_INFORMATION, descriptor.Receive())) &&
        IsOwnedByAdministrators({descriptor.Get(), ::SysStringLen(descriptor.Get())})) {
        return;
    }
    LogWarning("Task " + ToNarrow(path) + " belongs neither to SYSTEM nor to Administrators. It is deleted first.");
    Require(CallWithText(root, &ITaskFolder::DeleteTask, path, 0), "Cannot delete the task of another owner: ");
}

HRESULT Register(const Scheduler& scheduler, const ComPointer<ITaskDefinition>& task, const std::wstring& path)
{
    const ComText user = MakeComText(L"SYSTEM");
    const ComText password = MakeComText(L"");
    if (!user || !password) {
        return E_OUTOFMEMORY;
    }
    ComPointer<IRegisteredTask> registered;
    return CallWithText(scheduler.root, &ITaskFolder::RegisterTaskDefinition, path, task.Get(), TASK_CREATE_OR_UPDATE,
                        AsVariant(user), AsVariant(password), TASK_LOGON_SERVICE_ACCOUNT, VARIANT{},
                        registered.Receive());
}

/// Deletes the folder unless it contains tasks, including hidden ones.
void DeleteFolderIfEmpty(const ComPointer<ITaskFolder>& root, const std::wstring& path)
{
    const std::string name = ToNarrow(path);

    ComPointer<ITaskFolder> folder;
    Require(CallWithText(root, &ITaskFolder::GetFolder, path, folder.Receive()), "Cannot get sub Folder pointer: ");
    ComPointer<IRegisteredTaskCollection> tasks;
    Require(folder->GetTasks(TASK_ENUM_HIDDEN, tasks.Receive()),
            "Failed to get tasks in sub folder: " + name + " error:");
    LONG count = 0;
    Require(tasks->get_Count(&count), "Failed to get count of tasks in sub folder: " + name + " error:");
    if (count != 0) {
        LogTrace("Not deleting the sub folder: " + name + " as it has " + std::to_string(count) + " tasks present");
        return;
    }
    Require(CallWithText(root, &ITaskFolder::DeleteFolder, path, 0), "Failed to delete the empty sub folder: " + name);
    LogTrace(texts::kSuccess + std::string("Deleted the empty sub folder: ") + name);
}

} // namespace

void CreateTask(const RunConfig& config, bool isConsumerProduct, const std::wstring& path,
                const std::wstring& description)
{
    const NextRun next = NextRunAfter(config);
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const TaskWindow window = WindowAfter(now, next.delay, WindowsLocalTime);
    const std::string arguments = TaskArguments(config, next.count);
    WarnOfWhatTheNextRunMisses(config);
    try {
        const Scheduler scheduler("Failed to create an instance of ITaskService: ", "Cannot get Root folder pointer: ");
        ComPointer<ITaskDefinition> task;
        Require(scheduler.service->NewTask(0, task.Receive()), "Cannot create NewTask: ");
        Describe(task, isConsumerProduct ? L"Vexora" : L"Quillon", description);
        SetUp(task, !config.continueRun);
        AddTrigger(task, window);
        AddAction(task, arguments);
        DeleteForeignTask(scheduler.root, path);
        Require(Register(scheduler, task, path), "Error saving the Task : ");
        LogTrace(texts::kSuccess + ("Task " + ToNarrow(path)) + " successfully registered. ");
    } catch (const StepFailure& failure) {
        LogWarning(failure.what());
    }
}

void DeleteTask(const std::wstring& path)
{
    const std::string name = ToNarrow(path);
    try {
        const Scheduler scheduler("Failed to create an instance of ITaskService:", "Cannot get Root Folder pointer: ");
        Require(CallWithText(scheduler.root, &ITaskFolder::DeleteTask, path, 0),
                "Failed to delete " + name + " the scheduled task: ");
        LogTrace(texts::kSuccess + ("Task " + name) + " successfully deleted. ");
        if (const std::size_t end = path.rfind(L'\\'); end != std::wstring::npos) {
            LogTrace("Given task name has a sub folder: " + name);
            DeleteFolderIfEmpty(scheduler.root, path.substr(0, end));
        }
    } catch (const StepFailure& failure) {
        LogWarning(failure.what());
    }
}

} // namespace vantor
