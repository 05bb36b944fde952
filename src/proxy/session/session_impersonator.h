// The impersonation of the auto-proxy session for those that know no sessions.
#pragma once

#include "platform/owner.h"
#include "proxy/user/user_impersonator.h"

namespace vantor {

class CHTTPSessionAutoProxy;

/// Ends what it began at the latest when it is destroyed.
class SessionImpersonator : public IUserImpersonator {
public:
    /// The session outlives this object.
    explicit SessionImpersonator(CHTTPSessionAutoProxy& session) : m_session(session) {}
    ~SessionImpersonator() override;
    SessionImpersonator(const SessionImpersonator&) = delete;
    SessionImpersonator& operator=(const SessionImpersonator&) = delete;

    bool Impersonate(HANDLE token) override;
    void UnImpersonate() noexcept override;

private:
    CHTTPSessionAutoProxy& m_session;
    KernelHandle m_user;     ///< held while impersonating
    KernelHandle m_previous; ///< the thread's token before, if it had one
};

} // namespace vantor
