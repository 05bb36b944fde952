#define CINTERFACE // an interface is a table of functions; only those are written that the program calls
#include "support/recording_scheduler.h"

#include "platform/text/encoding.h"

#include <taskschd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace vantor {
namespace {

RecordingScheduler* g_scheduler = nullptr;

HRESULT STDMETHODCALLTYPE FindItself(void* self, REFIID, void** out)
{
    g_scheduler->references += 1;
    *out = self;
    return S_OK;
}
ULONG STDMETHODCALLTYPE AddRef(void*)
{
    return static_cast<ULONG>(g_scheduler->references += 1);
}
ULONG STDMETHODCALLTYPE Release(void*)
{
    return static_cast<ULONG>(g_scheduler->references -= 1);
}
HRESULT STDMETHODCALLTYPE NotImplemented()
{
    return E_NOTIMPL;
}

/// The interface's methods. Those that nothing is assigned to fail.
template <typename Interface>
auto& Table()
{
    using Methods = std::remove_pointer_t<decltype(Interface::lpVtbl)>;
    static void* slots[sizeof(Methods) / sizeof(void*)] = {
        reinterpret_cast<void*>(&FindItself), reinterpret_cast<void*>(&AddRef), reinterpret_cast<void*>(&Release)};
    std::replace(std::begin(slots), std::end(slots), static_cast<void*>(nullptr),
                 reinterpret_cast<void*>(&NotImplemented));
    return *reinterpret_cast<Methods*>(slots);
}

/// The one object of this interface, with one more reference to it.
template <typename Interface>
Interface* HandOut()
{
    static Interface object{&Table<Interface>()};
    g_scheduler->references += 1;
    return &object;
}

/// What the record shows of an argument; nothing for an object, or a place to put one.
template <typename Argument>
std::wstring Text(const Argument& argument)
{
    if constexpr (std::is_same_v<Argument, BSTR>) {
        return L' ' + (g_scheduler->text = argument);
    } else if constexpr (std::is_same_v<Argument, VARIANT>) {
        return argument.vt == VT_BSTR ? L" \"" + std::wstring(argument.bstrVal) + L'"'
                                      : L" type " + std::to_wstring(argument.vt);
    } else if constexpr (std::is_integral_v<Argument> || std::is_enum_v<Argument>) {
        return L' ' + std::to_wstring(static_cast<long>(argument));
    } else if constexpr (std::is_same_v<Argument, IID>) {
        g_scheduler->id = argument;
    }
    return {};
}

/// Puts what the call makes, or tells, where the argument says.
template <typename Argument>
void Answer(const Argument& place)
{
    if constexpr (std::is_same_v<Argument, LONG*>) {
        const auto isInside = [](const std::wstring& task) { return task.starts_with(g_scheduler->text + L'\\'); };
        *place = static_cast<LONG>(std::ranges::count_if(g_scheduler->tasks, isInside));
    } else if constexpr (std::is_same_v<Argument, BSTR*>) {
        *place = ::SysAllocString(g_scheduler->owner.c_str());
    } else if constexpr (std::is_same_v<Argument, void**>) {
        *place = g_scheduler->id == IID_ITaskService   ? static_cast<void*>(HandOut<ITaskService>())
                 : g_scheduler->id == IID_ITimeTrigger ? static_cast<void*>(HandOut<ITimeTrigger>())
                 : g_scheduler->id == IID_IExecAction  ? static_cast<void*>(HandOut<IExecAction>())
                                                       : nullptr;
    } else if constexpr (std::is_pointer_v<std::remove_pointer_t<Argument>>) {
        *place = HandOut<std::remove_pointer_t<std::remove_pointer_t<Argument>>>();
    }
}

struct MethodName {
    template <std::size_t Size>
    consteval MethodName(const char (&name)[Size])
    {
        std::copy_n(name, Size, text);
    }
    char text[64]{};
};

template <MethodName Method, typename Interface, typename... Arguments>
HRESULT STDMETHODCALLTYPE Record(Interface*, Arguments... arguments)
{
    const std::string method = Method.text;
    g_scheduler->calls += method + ToUtf8((Text(arguments) + ... + L"")) + '\n';
    if (method == g_scheduler->failing) {
        return E_UNEXPECTED;
    }
    auto& [calls, tasks, owner, failing, references, path, id, registration] = *g_scheduler;
    if ((method == "ITaskFolder::GetTask" && !tasks.contains(path)) ||
        (method == "ITaskFolder::DeleteTask" && tasks.erase(path) == 0)) {
        return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    }
    if (method == "ITaskFolder::RegisterTaskDefinition") {
        tasks.insert(path);
    }
    (Answer(arguments), ...);
    return S_OK;
}

void AssignMethods()
{
#define METHOD(type, method) Table<type>().method = &Record<#type "::" #method>
    // clang-format off
    METHOD(IClassFactory, CreateInstance);
    METHOD(ITaskService, Connect); METHOD(ITaskService, GetFolder); METHOD(ITaskService, NewTask);
    METHOD(ITaskFolder, GetFolder); METHOD(ITaskFolder, GetTask); METHOD(ITaskFolder, GetTasks);
    METHOD(ITaskFolder, DeleteTask); METHOD(ITaskFolder, DeleteFolder); METHOD(ITaskFolder, RegisterTaskDefinition);
    METHOD(IRegisteredTask, GetSecurityDescriptor); METHOD(IRegisteredTaskCollection, get_Count);
    METHOD(ITaskDefinition, get_RegistrationInfo); METHOD(ITaskDefinition, get_Settings);
    METHOD(ITaskDefinition, get_Triggers); METHOD(ITaskDefinition, get_Actions);
    METHOD(IRegistrationInfo, put_Author); METHOD(IRegistrationInfo, put_Description);
    METHOD(ITaskSettings, put_StartWhenAvailable); METHOD(ITaskSettings, put_DeleteExpiredTaskAfter);
    METHOD(ITriggerCollection, Create); METHOD(ITrigger, QueryInterface);
    METHOD(ITimeTrigger, put_Id); METHOD(ITimeTrigger, get_Repetition); METHOD(ITimeTrigger, put_EndBoundary);
    METHOD(ITimeTrigger, put_StartBoundary); METHOD(IRepetitionPattern, put_Interval);
    METHOD(IActionCollection, Create); METHOD(IAction, QueryInterface);
    METHOD(IExecAction, put_Path); METHOD(IExecAction, put_Arguments);
    // clang-format on
#undef METHOD
}

} // namespace

RecordingScheduler::RecordingScheduler()
{
    g_scheduler = this;
    AssignMethods();
    ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    auto* const factory = reinterpret_cast<IUnknown*>(HandOut<IClassFactory>());
    const DWORD kind = REGCLS_MULTIPLEUSE;
    EXPECT_EQ(::CoRegisterClassObject(CLSID_TaskScheduler, factory, CLSCTX_INPROC_SERVER, kind, &registration), S_OK);
    Release(factory);
}

RecordingScheduler::~RecordingScheduler()
{
    ::CoRevokeClassObject(registration);
    ::CoUninitialize();
    EXPECT_EQ(references, 0);
}

} // namespace vantor
