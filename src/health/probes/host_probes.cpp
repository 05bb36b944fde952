#include "health/probes/host_probes.h"

#include "platform/dynamic_function.h"

#include <windows.h>

namespace vantor {

void ReadOsVersion(HealthRecord& record)
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4996) // deprecated, but what the record carries is what this call says
#endif
    const BOOL known = ::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version));
#ifdef _MSC_VER
#pragma warning(pop)
#endif
    if (!known) {
        return;
    }
    record.os_major = static_cast<std::uint16_t>(version.dwMajorVersion);
    record.os_minor = static_cast<std::uint16_t>(version.dwMinorVersion);
    record.os_service = version.wServicePackMajor;
    record.os_build = static_cast<std::uint16_t>(version.dwBuildNumber);
}

std::uint16_t NativeMachine()
{
    using IsWow64Process2 = BOOL(WINAPI*)(HANDLE, USHORT*, USHORT*);

    const auto query = FindFunction<IsWow64Process2>(::GetModuleHandleA("kernel32"), "IsWow64Process2");
    USHORT process = 0;
    USHORT native = 0;
    if (!query || !query(::GetCurrentProcess(), &process, &native) || native == 0) {
        return HealthRecord::kDefaultArch;
    }
    return native;
}

} // namespace vantor
