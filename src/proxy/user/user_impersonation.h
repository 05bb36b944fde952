// Impersonating the logged-on user on the calling thread.
#pragma once

#include "platform/owner.h"
#include "proxy/calls/token_calls.h"
#include "run/log/logger.h"

#include <memory>

namespace vantor {

/// Owns an impersonation, which ends with the object at the latest. Used on one thread. Everything is logged at trace
/// level, except a failure to revert the thread.
class UserImpersonation {
public:
    UserImpersonation(std::shared_ptr<ITokenCalls> tokens, std::shared_ptr<ILogger> logger);
    ~UserImpersonation();
    UserImpersonation(const UserImpersonation&) = delete;
    UserImpersonation& operator=(const UserImpersonation&) = delete;

    /// Impersonates the token's user or, if token is null, the logged-on user, whom it looks for. The caller keeps
    /// ownership of the token. On failure the thread is unchanged, and the last error says why.
    bool Impersonate(HANDLE token);

    /// Restores the thread's previous identity, if it was changed. Keeps the last error. Ends the process if the thread
    /// cannot be reverted, even if there is no memory left to log that.
    void UnImpersonate() noexcept;

private:
    std::shared_ptr<ITokenCalls> m_tokens;
    std::shared_ptr<ILogger> m_logger;
    KernelHandle m_user;     ///< held while impersonating
    KernelHandle m_previous; ///< the thread's token before the impersonation, if any
};

} // namespace vantor
