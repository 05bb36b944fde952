#include "health/protection/access_protection.h"

#include "health/protection/trusted_module.h"
#include "run/log/log_texts.h"
#include "run/log/logging.h"

#include <objbase.h>

#include <string>

namespace vantor {
namespace {

constexpr wchar_t kModule[] = L"vxeaaca.dll";
constexpr wchar_t kClientId[] = L"{6B0E0C53-52B5-4F6C-9D13-1F6C2E9A74D8}"; // identifies this program to the module

void LogCode(const char* message, DWORD code)
{
    LogTrace(message + std::to_string(code));
}

DWORD AacControlCreate(const wchar_t* clientId, IAacControl** control)
{
    CLSID client{};
    if (const HRESULT converted = ::CLSIDFromString(clientId, &client); FAILED(converted)) {
        LogCode("Failed in AacControlCreate. Conversion string to GUID failed with error:",
                static_cast<DWORD>(converted));
        return static_cast<DWORD>(converted);
    }
    const ModuleInterface found = GetModuleInterface(kModule, L"AacControl6", true);
    DWORD error = found.error;
    if (error == ERROR_SUCCESS) {
        *control = static_cast<IAacControl*>(found.pointer);
        error = *control ? (*control)->Create(client) : ERROR_INVALID_DATA;
    }
    if (error != ERROR_SUCCESS) {
        LogCode("Failed in AacControlCreate. Error Code:", error);
    }
    return error;
}

} // namespace

ScopedAccessProtectionExclusionObject::ScopedAccessProtectionExclusionObject() : m_result(Initialise())
{
    if (m_result != ERROR_SUCCESS) {
        LogCode(texts::kFailedInInitializationOfExclusion, m_result);
    }
}

ScopedAccessProtectionExclusionObject::~ScopedAccessProtectionExclusionObject()
{
    if (m_policy) {
        m_control->RemovePolicy(m_policy);
    }
    if (m_control) {
        m_control->Release();
    }
}

DWORD ScopedAccessProtectionExclusionObject::Initialise()
{
    const DWORD error = AacControlCreate(kClientId, &m_control);
    return error != ERROR_SUCCESS ? error : CreatePolicy();
}

DWORD ScopedAccessProtectionExclusionObject::CreatePolicy()
{
    if (const HRESULT created = ::CoCreateGuid(&m_policyId); FAILED(created)) {
        return static_cast<DWORD>(created);
    }
    IAacPolicyBuilder* builder = nullptr;
    if (const DWORD error = m_control->GetPolicyBuilder(&builder); error != ERROR_SUCCESS) {
        LogCode("Failed to policy builder. Error code :", error);
        return error;
    }
    if (!builder) {
        LogTrace("Policy builder is NULL");
        return ERROR_INVALID_DATA;
    }
    IAacPolicy* policy = nullptr;
    const DWORD built = builder->BuildPolicy(m_policyId, &policy);
    if (built != ERROR_SUCCESS || !policy) {
        LogTrace("Policy is NULL.");
        return built != ERROR_SUCCESS ? built : ERROR_INVALID_DATA;
    }
    if (const DWORD error = m_control->AddPolicy(policy); error != ERROR_SUCCESS) {
        LogCode("Failed to add policy. Error code :", error);
        return error;
    }
    m_policy = policy;
    return ERROR_SUCCESS;
}

bool ScopedAccessProtectionExclusionObject::AllowFilePathAccessToProcess(const wchar_t* path, std::uint32_t accessMask)
{
    return AddExclusion(&IAacMatchObjectBuilder::MatchFilePath, path, accessMask);
}

bool ScopedAccessProtectionExclusionObject::GetRegistryKeyAccessToProcess(const wchar_t* path, std::uint32_t accessMask)
{
    return AddExclusion(&IAacMatchObjectBuilder::MatchRegistryKey, path, accessMask);
}

bool ScopedAccessProtectionExclusionObject::GetRegistryValueAccessToProcess(const wchar_t* path,
                                                                            std::uint32_t accessMask)
{
    return AddExclusion(&IAacMatchObjectBuilder::MatchRegistryValue, path, accessMask);
}

bool ScopedAccessProtectionExclusionObject::AddExclusion(MatchFunction match, const wchar_t* path,
                                                         std::uint32_t accessMask)
{
    if (!m_policy) {
        return false;
    }
    IAacRuleBuilder* rules = nullptr;
    if (const DWORD error = m_control->GetRuleBuilder(&rules); error != ERROR_SUCCESS || !rules) {
        LogCode("Failed to get rule builder. Error code :", error);
        return false;
    }
    IAacMatchObjectBuilder* matches = nullptr;
    if (const DWORD error = m_control->GetMatchObjectBuilder(&matches); error != ERROR_SUCCESS || !matches) {
        LogCode("Failed to get Match object builder. Error code :", error);
        return false;
    }
    IAacMatchObject* process = nullptr;
    IAacMatchObject* object = nullptr;
    IAacRule* rule = nullptr;
    // Null objects must not be passed on: a rule without a subject might let every process pass.
    const bool added = matches->MatchProcess(::GetCurrentProcessId(), &process) == ERROR_SUCCESS && process &&
                       (matches->*match)(path, accessMask, &object) == ERROR_SUCCESS && object &&
                       rules->BuildExclusion(L"Exclusion rule for process", process, object, &rule) == ERROR_SUCCESS &&
                       rule && m_control->AddRule(m_policy, rule) == ERROR_SUCCESS;
    if (!added) {
        LogTrace("Failed to add rule for exclusion to AAC policy");
    }
    return added;
}

} // namespace vantor
