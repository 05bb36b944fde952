// Run-time lookup of functions that older versions of Windows lack.
#pragma once

#include <windows.h>

#include <bit>

namespace vantor {

/// A pointer to the named function in a loaded module (GetProcAddress); null when the module is null or lacks it.
template <typename Function>
Function FindFunction(HMODULE module, const char* name) noexcept
{
    return module ? std::bit_cast<Function>(::GetProcAddress(module, name)) : nullptr;
}

} // namespace vantor
