// A module with nothing in it but its version resource. Where it is loaded, it leaves an empty file beside itself.
#include <windows.h>

#include <cwchar>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/)
{
    wchar_t path[MAX_PATH + 8];
    if (reason == DLL_PROCESS_ATTACH && ::GetModuleFileNameW(module, path, MAX_PATH) != 0) {
        ::CloseHandle(
            ::CreateFileW(std::wcscat(path, L".loaded"), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    }
    return TRUE;
}
