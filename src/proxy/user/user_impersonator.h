// Acting as the logged-on user, as the current-user authentication scheme needs it.
#pragma once

#include <windows.h>

namespace vantor {

/// Of the calling thread; beginning and end are called in pairs on it.
class IUserImpersonator {
public:
    virtual ~IUserImpersonator() = default;

    /// Makes the thread act as the token's user, who is looked for when token is null. The token stays the caller's.
    virtual bool Impersonate(HANDLE token) = 0;

    /// Makes the thread act as whom it was before; does nothing when Impersonate did not succeed before. What cannot be
    /// ended ends the process.
    virtual void UnImpersonate() noexcept = 0;
};

} // namespace vantor
