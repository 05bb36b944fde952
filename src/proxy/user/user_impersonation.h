// Making the calling thread act as the logged-on user, and itself again.
#pragma once

#include "platform/owner.h"
#include "proxy/calls/token_calls.h"
#include "run/log/logger.h"

#include <memory>

namespace vantor {

/// The one owner of an impersonation: whatever it began ends at the latest when it is destroyed. Used on one thread.
/// Everything is logged at trace level, but for a thread that cannot be made itself again.
class UserImpersonation {
public:
    UserImpersonation(std::shared_ptr<ITokenCalls> tokens, std::shared_ptr<ILogger> logger);
    ~UserImpersonation();
    UserImpersonation(const UserImpersonation&) = delete;
    UserImpersonation& operator=(const UserImpersonation&) = delete;

    /// Makes the thread act as the token's user, or, when it is null, as the logged-on user, whom it looks for. The
    /// token stays the caller's. On failure the thread is as it was, and the last error says why.
    bool Impersonate(HANDLE token);

    /// Makes the thread act as whom it was before; does nothing when there is nothing to end. Keeps the last error. A
    /// thread that would stay somebody else takes the process with it, also when memory runs out for the log.
    void UnImpersonate() noexcept;

private:
    std::shared_ptr<ITokenCalls> m_tokens;
    std::shared_ptr<ILogger> m_logger;
    KernelHandle m_user;     ///< held while impersonating
    KernelHandle m_previous; ///< the thread's token before, if it had one
};

} // namespace vantor
