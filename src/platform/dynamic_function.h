// Functions that Windows may lack, looked up at run time.
#pragma once

#include <windows.h>

#include <bit>

namespace vantor {

/// The function of that name in a loaded module as a pointer of the given type; null when the module is null or has
/// no such function (GetProcAddress).
template <typename Function>
Function FindFunction(HMODULE module, const char* name) noexcept
{
    return module ? std::bit_cast<Function>(::GetProcAddress(module, name)) : nullptr;
}

} // namespace vantor
