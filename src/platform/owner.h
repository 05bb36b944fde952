// Scope-bound ownership of Windows resources.
#pragma once

#include <windows.h>

#include <utility>

namespace vantor {

/// Restores the thread's last-error value at the end of the scope.
class LastErrorKeeper {
public:
    LastErrorKeeper() noexcept : m_error(::GetLastError()) {}
    ~LastErrorKeeper() { ::SetLastError(m_error); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

    DWORD Error() const noexcept { return m_error; }

private:
    DWORD m_error;
};

/// Owns one resource. The policy gives its type (Value), the value for "no resource" (None) and the call that releases
/// it (Release). Releasing keeps the last-error value.
template <typename Policy>
class Owner {
public:
    using Value = typename Policy::Value;

    Owner() noexcept = default;
    explicit Owner(Value value) noexcept : m_value(value) {}
    Owner(Owner&& other) noexcept : m_value(std::exchange(other.m_value, Policy::None())) {}
    Owner& operator=(Owner&& other) noexcept
    {
        if (this != &other) {
            Reset();
            m_value = std::exchange(other.m_value, Policy::None());
        }
        return *this;
    }
    ~Owner() { Reset(); }

    Value Get() const noexcept { return m_value; }
    explicit operator bool() const noexcept { return m_value != Policy::None(); }

    /// For calls that store a new resource through a pointer; releases the current one first.
    Value* Receive() noexcept
    {
        Reset();
        return &m_value;
    }

    void Reset() noexcept
    {
        if (*this) {
            const LastErrorKeeper keeper;
            Policy::Release(std::exchange(m_value, Policy::None()));
        }
    }

private:
    Value m_value = Policy::None();
};

/// A handle from a call that returns INVALID_HANDLE_VALUE on failure, such as CreateFileW.
struct FileHandlePolicy {
    using Value = HANDLE;
    static Value None() noexcept { return INVALID_HANDLE_VALUE; }
    static void Release(Value value) noexcept { ::CloseHandle(value); }
};
using FileHandle = Owner<FileHandlePolicy>;

/// A handle from a call that returns null on failure, such as OpenProcess.
struct KernelHandlePolicy {
    using Value = HANDLE;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { ::CloseHandle(value); }
};
using KernelHandle = Owner<KernelHandlePolicy>;

/// Memory that a Windows call allocated with GlobalAlloc, such as the strings of WinHTTP's proxy calls.
struct GlobalTextPolicy {
    using Value = LPWSTR;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { ::GlobalFree(value); }
};
using GlobalText = Owner<GlobalTextPolicy>;

struct RegistryHandlePolicy {
    using Value = HKEY;
    static Value None() noexcept { return nullptr; }
    static void Release(Value value) noexcept { ::RegCloseKey(value); }
};
using RegistryHandle = Owner<RegistryHandlePolicy>;

} // namespace vantor
