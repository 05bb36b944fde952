// Stands in for Windows' Task Scheduler, as a COM server whose folders are folders and whose tasks are files with a
// line for every call that went into them. Every interface is the same kind of object: each slot of its table leads to
// Call. x64 passes arguments as if they stood behind "...", and a VARIANT by its address. Environment variables:
//   TASKS       the root folder; the file TASKS.left tells how many objects there are after the latest release
//   TASKS_OWNER whom each task belongs to, as "O:BU"; SYSTEM otherwise
//   TASKS_FAIL  the method that fails with E_UNEXPECTED, such as "ITaskFolder::DeleteTask"
#define CINTERFACE // declares the interfaces' tables
#include <windows.h>

#include <taskschd.h>

#include <cstdarg>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

namespace {

namespace fs = std::filesystem;

/// Arguments: t text, n number, v variant, o the object that is made, c the count of tasks, s the owner, - not looked at.
const struct Method {
    const IID* owner;
    std::size_t slot;
    std::string_view name;
    std::string_view arguments = {};
    const IID* made = nullptr;
} kMethods[] = {
#define METHOD(type, method) &IID_##type, offsetof(type##Vtbl, method) / sizeof(void*), #type "::" #method
    {METHOD(IClassFactory, CreateInstance), "--o", &IID_ITaskService},
    {METHOD(ITaskService, Connect)},
    {METHOD(ITaskService, GetFolder), "to", &IID_ITaskFolder},
    {METHOD(ITaskService, NewTask), "no", &IID_ITaskDefinition},
    {METHOD(ITaskFolder, GetFolder), "to", &IID_ITaskFolder},
    {METHOD(ITaskFolder, GetTask), "to", &IID_IRegisteredTask},
    {METHOD(IRegisteredTask, GetSecurityDescriptor), "ns"},
    {METHOD(ITaskFolder, GetTasks), "no", &IID_IRegisteredTaskCollection},
    {METHOD(IRegisteredTaskCollection, get_Count), "c"},
    {METHOD(ITaskFolder, DeleteTask), "tn"},
    {METHOD(ITaskFolder, DeleteFolder), "tn"},
    {METHOD(ITaskFolder, RegisterTaskDefinition), "t-nvvnvo", &IID_IRegisteredTask},
    {METHOD(ITaskDefinition, get_RegistrationInfo), "o", &IID_IRegistrationInfo},
    {METHOD(ITaskDefinition, get_Settings), "o", &IID_ITaskSettings},
    {METHOD(ITaskDefinition, get_Triggers), "o", &IID_ITriggerCollection},
    {METHOD(ITaskDefinition, get_Actions), "o", &IID_IActionCollection},
    {METHOD(IRegistrationInfo, put_Author), "t"},
    {METHOD(IRegistrationInfo, put_Description), "t"},
    {METHOD(ITaskSettings, put_StartWhenAvailable), "n"},
    {METHOD(ITaskSettings, put_DeleteExpiredTaskAfter), "t"},
    {METHOD(ITriggerCollection, Create), "no", &IID_ITimeTrigger},
    {METHOD(ITimeTrigger, QueryInterface)},
    {METHOD(ITimeTrigger, put_Id), "t"},
    {METHOD(ITimeTrigger, get_Repetition), "o", &IID_IRepetitionPattern},
    {METHOD(ITimeTrigger, put_EndBoundary), "t"},
    {METHOD(ITimeTrigger, put_StartBoundary), "t"},
    {METHOD(IRepetitionPattern, put_Interval), "t"},
    {METHOD(IActionCollection, Create), "no", &IID_IExecAction},
    {METHOD(IExecAction, QueryInterface)},
    {METHOD(IExecAction, put_Path), "t"},
    {METHOD(IExecAction, put_Arguments), "t"},
};

struct Object;
template <std::size_t Slot>
HRESULT STDMETHODCALLTYPE Call(Object* object, ...);

template <std::size_t... Slots>
void* const* Table(std::index_sequence<Slots...>)
{
    static void* const table[] = {reinterpret_cast<void*>(&Call<Slots>)...};
    return table;
}

int g_objects = 0;
std::wstring g_record; // of the task in the making

struct Object {
    void* const* table = Table(std::make_index_sequence<48>());
    const IID* id;
    fs::path path; // the folder that it is, or whose tasks it counts
    int references = 1;
    int number = ++g_objects; // counts every one that is made
};

HRESULT Invoke(const Object& object, const Method& method, va_list arguments)
{
    fs::path path = object.path;
    std::wstring line(method.name.begin(), method.name.end());
    for (const char kind : method.arguments) {
        if (kind == 't') {
            const std::wstring text = va_arg(arguments, BSTR);
            line += L' ' + text;
            path += L'\\' + text;
        } else if (kind == 'n') {
            line += L' ' + std::to_wstring(static_cast<SHORT>(va_arg(arguments, LONG)));
        } else if (kind == 'v') {
            const VARIANT& variant = *va_arg(arguments, const VARIANT*);
            line += variant.vt == VT_BSTR ? L" \"" + std::wstring(variant.bstrVal) + L'"' : L" none";
        } else if (kind == 's') {
            const wchar_t* const owner = ::_wgetenv(L"TASKS_OWNER");
            *va_arg(arguments, BSTR*) = ::SysAllocString(owner ? owner : L"O:SY");
        } else if (kind == 'c') {
            *va_arg(arguments, LONG*) = static_cast<LONG>(std::distance(fs::directory_iterator(path), {}));
        } else if (Object** const out = va_arg(arguments, Object**); kind == 'o') {
            *out = new Object{.id = method.made, .path = path};
        }
    }
    if (method.name == "ITaskFolder::GetTask" || method.name == "IRegisteredTask::GetSecurityDescriptor") {
        return fs::is_regular_file(path) ? S_OK : HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND); // it changes nothing
    }
    g_record = (method.name == "ITaskService::NewTask" ? L"" : g_record) + line + L'\n';
    if (method.name == "ITaskFolder::RegisterTaskDefinition") {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << reinterpret_cast<const char*>(fs::path(g_record).u8string().c_str());
    }
    const bool deletes = method.name.starts_with("ITaskFolder::Delete");
    const bool showsAll = line != L"ITaskFolder::GetTasks 0"; // all tasks are hidden ones
    return !showsAll || (deletes && !fs::remove(path)) ? HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) : S_OK;
}

template <std::size_t Slot>
HRESULT STDMETHODCALLTYPE Call(Object* object, ...)
{
    va_list arguments;
    va_start(arguments, object);
    const Method* named = nullptr;
    for (const Method& method : kMethods) {
        named = *method.owner == *object->id && method.slot == Slot ? &method : named;
    }
    if (named && fs::path(::_wgetenv(L"TASKS_FAIL")) == named->name) {
        return E_UNEXPECTED;
    }
    if (Slot == 0 && *va_arg(arguments, const IID*) != *object->id) {
        return E_NOINTERFACE;
    }
    object->references += Slot < 2 ? 1 : Slot == 2 ? -1 : 0; // QueryInterface and AddRef, Release
    if (Slot == 0) {
        *va_arg(arguments, Object**) = object;
    }
    if (object->references == 0) {
        delete object;
        std::ofstream(fs::path(::_wgetenv(L"TASKS")) += L".left") << --g_objects;
    }
    return Slot < 3 ? S_OK : named ? Invoke(*object, *named, arguments) : E_NOTIMPL;
}

} // namespace

STDAPI DllGetClassObject(REFCLSID, REFIID, void** out)
{
    *out = new Object{.id = &IID_IClassFactory, .path = ::_wgetenv(L"TASKS")};
    return S_OK;
}
