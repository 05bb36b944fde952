// obligatory_calls BODY-FILE: the POST, preceded by the Windows calls that a periodic pulse cannot do without: the task
// scheduler, the registry values, the process list and proxy discovery. The results are not used.
#include "post.h"

#include <objbase.h>
#include <oleauto.h>
#include <psapi.h>
#include <taskschd.h>
#include <tlhelp32.h>

namespace {

constexpr const wchar_t* kKeys[] = {
    L"Software\\Vexora\\AVSolution\\AVS\\AVS",
    L"Software\\Vexora\\AVSolution\\DS\\DS",
    L"Software\\Vexora\\AVSolution\\DS\\DS",
    L"Software\\Vexora\\AVSolution\\SetVriLocalHost",
    L"Software\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL",
    L"Software\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL",
    L"Software\\Vexora\\AVSolution\\scannerdata\\ContentRefresh",
    L"Software\\Vexora\\Endpoint\\ATP",
    L"Software\\Vexora\\Endpoint\\Common",
    L"Software\\Vexora\\VSC",
    L"Software\\VxeAV",
    L"Software\\Microsoft\\Cryptography",
    L"Software\\Microsoft\\Windows\\CurrentVersion\\QualityCompat",
    L"System\\CurrentControlSet\\Services\\vxedisk",
    L"System\\CurrentControlSet\\Services\\vxedisk",
    L"System\\CurrentControlSet\\Control\\Class\\{4d36e967-e325-11ce-bfc1-08002be10318}",
    L"System\\CurrentControlSet\\Control\\FileSystem",
    L"System\\ControlSet001\\Control\\ProductOptions",
};

constexpr const wchar_t* kTasks[] = {
    L"Kestrova DAT Reputation (VXCore) periodic endpoint safety pulse",
    L"Kestrova DAT Reputation (VXCore) Post DAT update endpoint safety pulse",
    L"Vexora DAT Built in test",
    L"\\Vexora\\Vexora DAT Built in test",
    L"\\Quillon\\Quillon DAT Built in test",
};

void ReadRegistry()
{
    for (const wchar_t* const path : kKeys) {
        HKEY key = nullptr;
        if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ | KEY_WOW64_64KEY, &key) == ERROR_SUCCESS) {
            DWORD size = 0;
            ::RegQueryValueExW(key, L"Start", nullptr, nullptr, nullptr, &size);
            ::RegCloseKey(key);
        }
    }
}

void DeleteTask(const wchar_t* name)
{
    ITaskService* service = nullptr;
    if (FAILED(::CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER, __uuidof(ITaskService),
                                  reinterpret_cast<void**>(&service)))) {
        return;
    }
    ITaskFolder* root = nullptr;
    BSTR rootName = ::SysAllocString(L"\\");
    if (SUCCEEDED(service->Connect({}, {}, {}, {})) && SUCCEEDED(service->GetFolder(rootName, &root))) {
        BSTR task = ::SysAllocString(name);
        root->DeleteTask(task, 0);
        ::SysFreeString(task);
        root->Release();
    }
    ::SysFreeString(rootName);
    service->Release();
}

void DeleteTasks()
{
    ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    ::CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY, RPC_C_IMP_LEVEL_IMPERSONATE,
                           nullptr, EOAC_NONE, nullptr);
    for (const wchar_t* const task : kTasks) {
        DeleteTask(task);
    }
    ::CoUninitialize();
}

void ListProcesses()
{
    HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = ::Process32FirstW(snapshot, &entry); more; more = ::Process32NextW(snapshot, &entry)) {
    }
    ::CloseHandle(snapshot);
}

void FindProxy(HINTERNET session, HINTERNET)
{
    WINHTTP_AUTOPROXY_OPTIONS options{};
    options.dwFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
    options.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
    options.fAutoLogonIfChallenged = TRUE;
    WINHTTP_PROXY_INFO found{};
    ::WinHttpGetProxyForUrl(session, L"https://localhost", &options, &found);
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG user{};
    ::WinHttpGetIEProxyConfigForCurrentUser(&user);
    ::WinHttpGetDefaultProxyConfiguration(&found); // what these leave allocated goes with the process
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        return 2;
    }
    DeleteTasks();
    ReadRegistry();
    ListProcesses();
    return vantor::bench::PostFile(argv[1], FindProxy);
}
