// Stands in for the product's access-protection module (health/protection/aac_control.h): it protects nothing, but tells what it
// was asked. Environment variables rule it, read at every call:
//   VXEAACA_RECORD     the file that gets a line for every call, with its arguments
//   VXEAACA_VERSIONS   the interface names it supports, parted by blanks; all when it is not set
//   VXEAACA_REFUSE     the operation that fails with error 5 or, with ":null" behind it, that hands out nothing; "key": as
//                      soon as access is asked for, the key of the product's filter driver is gone
#include "health/protection/aac_control.h"

#include <objbase.h>

#include <cwchar>
#include <deque>
#include <filesystem>
#include <fstream>
#include <string>
#include <type_traits>

namespace vantor {

struct Thing {
    std::wstring text;
};
class IAacPolicy : public Thing {};
class IAacRule : public Thing {};
class IAacMatchObject : public Thing {};

namespace {

std::wstring Setting(const wchar_t* name)
{
    std::wstring value(::GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    value.resize(::GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

std::wstring Text(const Thing* thing)
{
    return thing ? thing->text : L"null";
}

std::wstring Text(const GUID& id)
{
    wchar_t text[40];
    ::StringFromGUID2(id, text, 40);
    return text;
}

std::wstring Text(const wchar_t* path, DWORD accessMask)
{
    wchar_t mask[16];
    std::swprintf(mask, 16, L" 0x%lX", accessMask);
    return path + std::wstring(mask);
}

/// Records the call; an error when it is to be refused.
DWORD Called(const std::wstring& operation, const std::wstring& arguments = L"")
{
    const std::filesystem::path text = (arguments.empty() ? operation : operation + L' ' + arguments) + L'\n';
    std::ofstream(std::filesystem::path(Setting(L"VXEAACA_RECORD")), std::ios::binary | std::ios::app)
        << reinterpret_cast<const char*>(text.u8string().c_str());
    return Setting(L"VXEAACA_REFUSE") == operation ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

constexpr wchar_t kDriver[] = L"System\\CurrentControlSet\\Services\\vxedisk";

/// The filter driver's values that the program repairs, as they are now.
std::wstring DriverState()
{
    DWORD start = 0, size = sizeof(start);
    const bool hasStart =
        ::RegGetValueW(HKEY_LOCAL_MACHINE, kDriver, L"Start", RRF_RT_DWORD, nullptr, &start, &size) == 0;
    const bool hasFlag =
        ::RegGetValueW(HKEY_LOCAL_MACHINE, kDriver, L"DeleteFlag", RRF_RT_ANY, nullptr, nullptr, nullptr) == 0;
    return (hasStart ? L" Start " + std::to_wstring(start) : L"") + (hasFlag ? L" DeleteFlag" : L"");
}

template <typename Handed>
DWORD HandOut(std::type_identity_t<Handed>* handed, Handed** to, const std::wstring& operation,
              const std::wstring& arguments = L"")
{
    const DWORD error = Called(operation, arguments);
    if (error == ERROR_SUCCESS) {
        *to = Setting(L"VXEAACA_REFUSE") == operation + L":null" ? nullptr : handed;
    }
    return error;
}

template <typename Made>
DWORD Make(Made** to, const wchar_t* operation, const std::wstring& arguments)
{
    static std::deque<Made> all; // what is handed out stays where it is
    return HandOut(&all.emplace_back(Made{arguments}), to, operation, arguments);
}

class Control final : public IAacControl, IAacPolicyBuilder, IAacRuleBuilder, IAacMatchObjectBuilder {
public:
    DWORD Create(const GUID& client) override { return Called(L"Create", Text(client)); }
    DWORD GetPolicyBuilder(IAacPolicyBuilder** to) override { return HandOut(this, to, L"GetPolicyBuilder"); }
    DWORD GetRuleBuilder(IAacRuleBuilder** to) override { return HandOut(this, to, L"GetRuleBuilder"); }
    DWORD GetMatchObjectBuilder(IAacMatchObjectBuilder** to) override
    {
        return HandOut(this, to, L"GetMatchObjectBuilder");
    }
    DWORD AddPolicy(IAacPolicy* policy) override
    {
        if (Setting(L"VXEAACA_REFUSE") == L"key") {
            ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, kDriver);
        }
        return Called(L"AddPolicy", Text(policy));
    }
    DWORD AddRule(IAacPolicy* policy, IAacRule* rule) override
    {
        return Called(L"AddRule", Text(policy) + L' ' + Text(rule));
    }
    DWORD RemovePolicy(IAacPolicy* policy) override { return Called(L"RemovePolicy", Text(policy) + DriverState()); }
    void Release() override { Called(L"Release"); } // static, so that a call after this one is recorded, too

    DWORD BuildPolicy(const GUID& id, IAacPolicy** to) override { return Make(to, L"BuildPolicy", Text(id)); }
    DWORD BuildExclusion(const wchar_t* name, IAacMatchObject* who, IAacMatchObject* what, IAacRule** to) override
    {
        return Make(to, L"BuildExclusion", name + (L": " + Text(who)) + L", " + Text(what));
    }
    DWORD MatchProcess(DWORD id, IAacMatchObject** to) override
    {
        return Make(to, L"MatchProcess", std::to_wstring(id));
    }
    DWORD MatchFilePath(const wchar_t* path, DWORD mask, IAacMatchObject** to) override
    {
        return Make(to, L"MatchFilePath", Text(path, mask));
    }
    DWORD MatchRegistryKey(const wchar_t* path, DWORD mask, IAacMatchObject** to) override
    {
        return Make(to, L"MatchRegistryKey", Text(path, mask));
    }
    DWORD MatchRegistryValue(const wchar_t* path, DWORD mask, IAacMatchObject** to) override
    {
        return Make(to, L"MatchRegistryValue", Text(path, mask));
    }
} control;

} // namespace

extern "C" __declspec(dllexport) DWORD WINAPI NotComDllGetInterface(const wchar_t* name, void** to)
{
    const DWORD error = HandOut(static_cast<IAacControl*>(&control), to, L"NotComDllGetInterface", name);
    const std::wstring versions = L' ' + Setting(L"VXEAACA_VERSIONS") + L' ';
    if (versions != L"  " && versions.find(L' ' + std::wstring(name) + L' ') == std::wstring::npos) {
        return ERROR_NOT_SUPPORTED;
    }
    HMODULE self = nullptr; // a reference of its own, for whoever asks lets go of the module
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<const wchar_t*>(&NotComDllGetInterface), &self);
    return error;
}

} // namespace vantor
