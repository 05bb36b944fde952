#include "proxy/session/session_impersonator.h"

#include "proxy/session/http_session_auto_proxy.h"

#include <utility>

namespace vantor {

SessionImpersonator::~SessionImpersonator()
{
    SessionImpersonator::UnImpersonate();
}

bool SessionImpersonator::Impersonate(HANDLE token)
{
    UnImpersonate();
    return m_session.Impersonate(token, m_user, m_previous);
}

void SessionImpersonator::UnImpersonate() noexcept
{
    m_session.UnImpersonate(std::move(m_user), std::move(m_previous));
}

} // namespace vantor
