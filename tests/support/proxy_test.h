// The proxy manager with a request, over scripted calls.
#pragma once

#include "proxy/http_proxy_manager.h"
#include "support/scripted_http.h"
#include "telemetry/request/http_request.h"

namespace vantor {

class ProxyTest : public HttpTest, private IRequestHost {
protected:
    ProxyTest() { m_http->status = 407; }

    static ProxyConfig AutoProxy()
    {
        return {.m_wpadFlags = WINHTTP_AUTOPROXY_AUTO_DETECT,
                .m_wpadDetectFlags = 3,
                .m_proxyTimeoutFallbackToDirect = true};
    }

    bool InitRequest() { return m_manager.InitRequest(nullptr, m_request, L"https://h", m_none); }

    bool AutoLogged(const std::string& message) const { return Logged("T CHTTPSessionAutoProxy::" + message); }

    CHTTPProxyManager m_manager{m_http, Windows(), m_log, L"Agent"};
    ProxyAuthSchemePtr m_none = std::make_shared<CHTTPProxyAuthNone>(m_log);
    HttpRequest m_request{*this, m_http, m_log, L"/", L"GET", 0};

private:
    HINTERNET ConnectionHandle() const override { return nullptr; }
    bool IsPinningCertificates() const override { return false; }
    std::span<const Certificate> PinnedCertificates() const override { return {}; }
    DWORD Reset() override { return ERROR_SUCCESS; }
};

/// The manager's impersonation of a user.
class ImpersonationTest : public ProxyTest {
protected:
    ImpersonationTest() { m_manager.InitConfig({}); }

    std::string Impersonate()
    {
        m_tokens->calls.clear();
        const bool isAnother = m_manager.Impersonator().Impersonate(nullptr);
        const std::size_t begun = m_tokens->calls.size();
        m_manager.Impersonator().UnImpersonate();
        EXPECT_EQ(isAnother, m_tokens->calls.size() > begun); // only what was begun is ended
        m_manager.Impersonator().UnImpersonate();             // harmless
        return m_tokens->calls;
    }
};

} // namespace vantor
