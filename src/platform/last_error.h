// The error of a failed Windows call.
#pragma once

#include <windows.h>

namespace vantor {

/// The last error; the fallback where Windows left none, so that a failure never passes for success.
inline DWORD LastErrorOr(DWORD fallback) noexcept
{
    const DWORD error = ::GetLastError();
    return error != ERROR_SUCCESS ? error : fallback;
}

} // namespace vantor
