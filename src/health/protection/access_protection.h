// The exclusion from the product's access protection that lets this program change protected objects.
#pragma once

#include "health/protection/aac_control.h"

#include <cstdint>

namespace vantor {

/// Gives this process the requested access for the lifetime of the object. Created right before a protected change and
/// destroyed right after it. If it fails, the change is still attempted, and the product may block it. Failures are
/// logged at trace level.
class ScopedAccessProtectionExclusionObject {
public:
    ScopedAccessProtectionExclusionObject();
    ~ScopedAccessProtectionExclusionObject();
    ScopedAccessProtectionExclusionObject(const ScopedAccessProtectionExclusionObject&) = delete;
    ScopedAccessProtectionExclusionObject& operator=(const ScopedAccessProtectionExclusionObject&) = delete;

    /// 0 for success, otherwise the error that ended the construction; all requests then fail.
    DWORD InitialisationResult() const { return m_result; }

    /// Requests access to a file path, which may contain wildcards. False on failure, as are the next two.
    bool AllowFilePathAccessToProcess(const wchar_t* path, std::uint32_t accessMask);

    /// Requests access to a registry key, given as "HKLM\" and its path.
    bool GetRegistryKeyAccessToProcess(const wchar_t* path, std::uint32_t accessMask);

    /// Requests access to registry values, given as the key's path and "\**".
    bool GetRegistryValueAccessToProcess(const wchar_t* path, std::uint32_t accessMask);

private:
    using MatchFunction = DWORD (IAacMatchObjectBuilder::*)(const wchar_t*, DWORD, IAacMatchObject**);

    DWORD Initialise();
    DWORD CreatePolicy();
    bool AddExclusion(MatchFunction match, const wchar_t* path, std::uint32_t accessMask);

    IAacControl* m_control = nullptr;
    GUID m_policyId{};
    IAacPolicy* m_policy = nullptr; ///< null until it is added to the control object
    DWORD m_result;
};

} // namespace vantor
