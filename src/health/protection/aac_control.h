// Interface of the product's access-protection module, vxeaaca.dll, a closed component of the product.
//
// The module exports NotComDllGetInterface, which returns the control object below. The caller frees the module right
// after the call, whether it succeeded or not, so a module that returns a control object must hold a reference to
// itself until that object is released.
#pragma once

#include <windows.h>

namespace vantor {

/// All operations return 0 or a Windows error code. The module copies the texts it is given. Objects that it returns
/// belong to its control object and live as long as that, unless stated otherwise.

/// A set of rules, in effect while it is added to the control object.
class IAacPolicy;

/// A rule: which process may access which object, and how.
class IAacRule;

/// What a rule applies to.
class IAacMatchObject;

class IAacPolicyBuilder {
public:
    virtual DWORD BuildPolicy(const GUID& id, IAacPolicy** policy) = 0;

protected:
    ~IAacPolicyBuilder() = default;
};

class IAacMatchObjectBuilder {
public:
    virtual DWORD MatchProcess(DWORD processId, IAacMatchObject** match) = 0;
    /// Paths may contain wildcards. The module defines the bits of accessMask.
    virtual DWORD MatchFilePath(const wchar_t* path, DWORD accessMask, IAacMatchObject** match) = 0;
    virtual DWORD MatchRegistryKey(const wchar_t* path, DWORD accessMask, IAacMatchObject** match) = 0;
    virtual DWORD MatchRegistryValue(const wchar_t* path, DWORD accessMask, IAacMatchObject** match) = 0;

protected:
    ~IAacMatchObjectBuilder() = default;
};

class IAacRuleBuilder {
public:
    /// An exclusion: processes that match subject may access what matches object.
    virtual DWORD BuildExclusion(const wchar_t* name, IAacMatchObject* subject, IAacMatchObject* object,
                                 IAacRule** rule) = 0;

protected:
    ~IAacRuleBuilder() = default;
};

class IAacControl {
public:
    /// Initialises the control object for the client with this id. Must be called once, first.
    virtual DWORD Create(const GUID& client) = 0;
    virtual DWORD GetPolicyBuilder(IAacPolicyBuilder** builder) = 0;
    virtual DWORD GetRuleBuilder(IAacRuleBuilder** builder) = 0;
    virtual DWORD GetMatchObjectBuilder(IAacMatchObjectBuilder** builder) = 0;
    virtual DWORD AddPolicy(IAacPolicy* policy) = 0;
    virtual DWORD AddRule(IAacPolicy* policy, IAacRule* rule) = 0;
    /// Revokes the policy and destroys it with its rules.
    virtual DWORD RemovePolicy(IAacPolicy* policy) = 0;
    /// Destroys the control object.
    virtual void Release() = 0;

protected:
    ~IAacControl() = default;
};

/// The module's export "NotComDllGetInterface": sets the pointer and returns 0 if it supports the named version of the
/// control interface.
using NotComDllGetInterfaceFunction = DWORD(WINAPI*)(const wchar_t* interfaceName, void** interfacePointer);

} // namespace vantor
