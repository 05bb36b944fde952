// Owners and helpers for COM interfaces, strings and result codes.
#pragma once

#include "platform/owner.h"
#include "platform/text/formatting.h"

#include <objbase.h>
#include <oleauto.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace vantor {

template <typename Interface>
struct InterfacePolicy {
    using Value = Interface*;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { value->Release(); }
};

/// Owns one reference to an interface.
template <typename Interface>
class ComPointer : public Owner<InterfacePolicy<Interface>> {
public:
    Interface* operator->() const noexcept { return this->Get(); }

    /// For calls that store a reference through an untyped pointer, such as CoCreateInstance.
    void** ReceiveUntyped() noexcept { return reinterpret_cast<void**>(this->Receive()); }
};

/// Owns a string from SysAllocString or a related function.
struct ComTextPolicy {
    using Value = BSTR;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { ::SysFreeString(value); }
};
using ComText = Owner<ComTextPolicy>;

/// A copy of the text; empty when memory runs out.
inline ComText MakeComText(const std::wstring& text)
{
    return ComText(::SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
}

/// Calls a method whose first argument is a string, passing a copy of the text. E_OUTOFMEMORY when memory runs out.
template <typename Interface, typename Base, typename... Parameters>
HRESULT CallWithText(const ComPointer<Interface>& object,
                     HRESULT (STDMETHODCALLTYPE Base::*method)(BSTR, Parameters...), const std::wstring& text,
                     std::type_identity_t<Parameters>... arguments)
{
    const ComText copy = MakeComText(text);
    return copy ? (object.Get()->*method)(copy.Get(), arguments...) : E_OUTOFMEMORY;
}

/// A variant that refers to the string without owning it.
inline VARIANT AsVariant(const ComText& text)
{
    VARIANT variant{};
    variant.vt = VT_BSTR;
    variant.bstrVal = text.Get();
    return variant;
}

/// A result code as the log shows it, such as "0x80004001".
inline std::string ResultText(HRESULT result)
{
    return "0x" + Hexadecimal(static_cast<std::uint32_t>(result), 8);
}

/// Initialises COM for this thread, multithreaded, for the object's lifetime (CoInitializeEx, CoUninitialize).
class ComApartment {
public:
    ComApartment() noexcept : m_result(::CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~ComApartment()
    {
        if (*this) {
            ::CoUninitialize();
        }
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

    explicit operator bool() const noexcept { return SUCCEEDED(m_result); }

private:
    HRESULT m_result;
};

} // namespace vantor
