#include "proxy/user/user_impersonation.h"

#include "proxy/user/logged_on_user.h"
#include "run/log/log_texts.h"
#include "run/log/operation_log.h"

#include <utility>

namespace vantor {

UserImpersonation::UserImpersonation(std::shared_ptr<ITokenCalls> tokens, std::shared_ptr<ILogger> logger)
    : m_tokens(std::move(tokens)), m_logger(std::move(logger))
{
}

UserImpersonation::~UserImpersonation()
{
    UnImpersonate();
}

bool UserImpersonation::Impersonate(HANDLE token)
{
    UnImpersonate();
    const OperationLog log(m_logger, "CHTTPSessionAutoProxy::Impersonate");
    m_tokens->LoadModules();
    KernelHandle previous = m_tokens->OpenThreadToken(TOKEN_IMPERSONATE | TOKEN_QUERY);
    if (previous) {
        log.Trace("Currently impersonating. Keeping impersonation token to restore later.");
    } else if (::GetLastError() != ERROR_NO_TOKEN) {
        const LastErrorKeeper error;
        log.Trace("The thread could not be restored later. Windows error: " + std::to_string(error.Error()));
        return false;
    }

    KernelHandle user;
    if (token) {
        user = m_tokens->DuplicateHandle(token);
    } else {
        log.Trace("Attempting to discover the correct user to impersonate");
        user = DiscoverUserToImpersonate(*m_tokens, m_logger);
    }
    if (!user) {
        log.Trace("ImpersonateIfRequired: Failed to discover user access token");
        return false;
    }
    if (!m_tokens->ImpersonateLoggedOnUser(user.Get())) {
        const LastErrorKeeper error;
        log.Trace("Failed to impersonate logged on user. Windows error: " + std::to_string(error.Error()));
        return false;
    }
    m_user = std::move(user); // before anything that may throw: from here on it must be ended
    m_previous = std::move(previous);
    log.Trace("Impersonating logged on user");
    return true;
}

void UserImpersonation::UnImpersonate() noexcept
{
    if (!m_user) {
        return;
    }
    const LastErrorKeeper keeper;
    const OperationLog log(m_logger, "CHTTPSessionAutoProxy::UnImpersonate");
    log.Trace("Impersonating logged on user finished");
    m_user.Reset();
    if (const KernelHandle previous = std::move(m_previous)) {
        if (m_tokens->ImpersonateLoggedOnUser(previous.Get())) {
            return;
        }
        const DWORD error = ::GetLastError();
        log.Trace("Failed to restore logged on user");
        log.Trace("Windows error: " + std::to_string(error) + ". The thread becomes the process's own user instead.");
    }
    if (!m_tokens->RevertToSelf()) {
        const DWORD error = ::GetLastError();
        log.Error(texts::kRevertToSelfFailed + std::to_string(error) +
                  ". The process ends here: nothing is safe to do as another user.");
        m_tokens->EndProcess();
    }
}

} // namespace vantor
