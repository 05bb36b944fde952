// The boundary to the product's access-protection module, vxeaaca.dll, which is a closed component of the product.
//
// The module exports NotComDllGetInterface and, behind it, the control object below. Whoever asks for it lets go of
// the module right after the call, whatever came of it: a module that hands out a control object must hold a reference
// of its own to itself until that object is released.
#pragma once

#include <windows.h>

namespace vantor {

/// All operations return 0 or a Windows error code. Texts are copied by the module. What the module hands out belongs
/// to its control object and lives as long, unless said otherwise.

/// A set of rules, in force while it is added to the control object.
class IAacPolicy;

/// A rule: who may do what to which object.
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
    /// Paths may hold wildcards; accessMask says which kinds of access are meant.
    virtual DWORD MatchFilePath(const wchar_t* path, DWORD accessMask, IAacMatchObject** match) = 0;
    virtual DWORD MatchRegistryKey(const wchar_t* path, DWORD accessMask, IAacMatchObject** match) = 0;
    virtual DWORD MatchRegistryValue(const wchar_t* path, DWORD accessMask, IAacMatchObject** match) = 0;

protected:
    ~IAacMatchObjectBuilder() = default;
};

class IAacRuleBuilder {
public:
    /// An exclusion: the process that subject matches may access the objects that object matches.
    virtual DWORD BuildExclusion(const wchar_t* name, IAacMatchObject* subject, IAacMatchObject* object,
                                 IAacRule** rule) = 0;

protected:
    ~IAacRuleBuilder() = default;
};

class IAacControl {
public:
    /// Makes the control object ready for the client with this identity. Called once, first.
    virtual DWORD Create(const GUID& client) = 0;
    virtual DWORD GetPolicyBuilder(IAacPolicyBuilder** builder) = 0;
    virtual DWORD GetRuleBuilder(IAacRuleBuilder** builder) = 0;
    virtual DWORD GetMatchObjectBuilder(IAacMatchObjectBuilder** builder) = 0;
    virtual DWORD AddPolicy(IAacPolicy* policy) = 0;
    virtual DWORD AddRule(IAacPolicy* policy, IAacRule* rule) = 0;
    /// Ends the policy's force and destroys it with its rules.
    virtual DWORD RemovePolicy(IAacPolicy* policy) = 0;
    /// Destroys the control object.
    virtual void Release() = 0;

protected:
    ~IAacControl() = default;
};

/// The module's export "NotComDllGetInterface": fills the pointer and returns 0 when it supports the named version of
/// the control interface.
using NotComDllGetInterfaceFunction = DWORD(WINAPI*)(const wchar_t* interfaceName, void** interfacePointer);

} // namespace vantor
