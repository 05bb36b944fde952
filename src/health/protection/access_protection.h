// The product's access protection, and the exclusion that lets this program change what it protects.
#pragma once

#include "health/protection/aac_control.h"

#include <cstdint>

namespace vantor {

/// While it lives, this process may access what was asked for. Made right before a protected change and destroyed
/// right after it. When it cannot be had the change is tried all the same, and the product may refuse it. Failures are
/// logged at trace level.
class ScopedAccessProtectionExclusionObject {
public:
    ScopedAccessProtectionExclusionObject();
    ~ScopedAccessProtectionExclusionObject();
    ScopedAccessProtectionExclusionObject(const ScopedAccessProtectionExclusionObject&) = delete;
    ScopedAccessProtectionExclusionObject& operator=(const ScopedAccessProtectionExclusionObject&) = delete;

    /// 0 for success, otherwise the error that ended the construction; then there is nothing to ask for.
    DWORD InitialisationResult() const { return m_result; }

    /// Access to a file path; wildcards are allowed. False when it is refused.
    bool AllowFilePathAccessToProcess(const wchar_t* path, std::uint32_t accessMask);

    /// Access to a registry key, as "HKLM\" and its path.
    bool GetRegistryKeyAccessToProcess(const wchar_t* path, std::uint32_t accessMask);

    /// Access to registry values, as the key's path and "\**".
    bool GetRegistryValueAccessToProcess(const wchar_t* path, std::uint32_t accessMask);

private:
    using MatchFunction = DWORD (IAacMatchObjectBuilder::*)(const wchar_t*, DWORD, IAacMatchObject**);

    DWORD Initialise();
    DWORD CreatePolicy();
    bool AddExclusion(MatchFunction match, const wchar_t* path, std::uint32_t accessMask);

    IAacControl* m_control = nullptr;
    GUID m_policyId{};
    IAacPolicy* m_policy = nullptr; ///< added to the control object
    DWORD m_result;
};

} // namespace vantor
