// The error of a failed Windows call.
#pragma once

#include <windows.h>

namespace vantor {

/// The last error, or the fallback if Windows set none, so that a failure is never taken for success.
inline DWORD LastErrorOr(DWORD fallback) noexcept
{
    const DWORD error = ::GetLastError();
    return error != ERROR_SUCCESS ? error : fallback;
}

} // namespace vantor
