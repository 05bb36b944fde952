#include "run/task/scheduling.h"

#include "platform/com.h"
#include "run/log/logging.h"
#include "run/product/brand.h"
#include "run/task/resource.h"
#include "run/task/scheduled_task.h"
#include "run/task/task_description.h"
#include "run/task/task_schedule.h"

#include <windows.h>

#include <iterator>
#include <string>
#include <string_view>

namespace vantor {
namespace {

constexpr const wchar_t* kEarlierTasks[] = {
    L"Kestrova DAT Reputation (VXCore) periodic endpoint safety pulse",
    L"Kestrova DAT Reputation (VXCore) Post DAT update endpoint safety pulse",
    L"Vexora DAT Built in test",
};

/// The built-in path of the task, for either brand.
const wchar_t* BuiltInTaskPath(bool isConsumerProduct)
{
    return isConsumerProduct ? L"" TASK_PATH_CONSUMER : L"" TASK_PATH_ENTERPRISE;
}

/// The task's path from the program's string table, or the built-in one if the table lacks it.
std::wstring TaskPath(bool isConsumerProduct)
{
    const UINT id = isConsumerProduct ? IDS_TASK_PATH_CONSUMER : IDS_TASK_PATH_ENTERPRISE;
    wchar_t text[1024];
    const int length = ::LoadStringW(::GetModuleHandleW(nullptr), id, text, static_cast<int>(std::size(text)));
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : BuiltInTaskPath(isConsumerProduct);
}

void SecureCom()
{
    const HRESULT result = ::CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY,
                                                  RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    if (FAILED(result)) {
        LogWarning("CoInitializeSecurity failed.");
    }
}

} // namespace

void DoScheduling(const RunConfig& config)
{
    const ScopeTrace trace("DoScheduling");
    const bool isConsumerProduct = IsConsumerProductInstalled();
    const std::wstring path = TaskPath(isConsumerProduct);
    const std::u16string_view description = TaskDescription(::GetUserDefaultUILanguage());

    const ComApartment apartment;
    if (!apartment) {
        LogWarning("CoInitialize failed.");
    }
    SecureCom();

    for (const wchar_t* const earlier : kEarlierTasks) {
        DeleteTask(earlier);
    }
    DeleteTask(BuiltInTaskPath(!isConsumerProduct));

    if (RegistersNextRun(config)) {
        CreateTask(config, isConsumerProduct, path, std::wstring(description.begin(), description.end()));
    } else {
        DeleteTask(path);
    }
}

} // namespace vantor
