#include "proxy/session/proxy_info.h"

#include "platform/last_error.h"
#include "platform/text/encoding.h"

#include <cwchar>
#include <new>

namespace vantor {
namespace {

GlobalText Copy(const GlobalText& text)
{
    if (!text) {
        return {};
    }
    const std::size_t length = std::wcslen(text.Get()) + 1;
    GlobalText copy(static_cast<LPWSTR>(::GlobalAlloc(GMEM_FIXED, length * sizeof(wchar_t))));
    if (!copy) {
        throw std::bad_alloc();
    }
    std::wmemcpy(copy.Get(), text.Get(), length);
    return copy;
}

} // namespace

ProxyInfo Copy(const ProxyInfo& info)
{
    return {info.accessType, Copy(info.proxy), Copy(info.bypass)};
}

std::string TextOrNull(const GlobalText& text)
{
    return text ? ToNarrow(text.Get()) : "<null>";
}

ProxyAnswer GetProxyForUrl(IProxyDiscovery& discovery, HINTERNET session, const std::wstring& url,
                           const WINHTTP_AUTOPROXY_OPTIONS& options)
{
    WINHTTP_PROXY_INFO answer{};
    DWORD error = ERROR_SUCCESS;
    for (const DWORD where : {DWORD{WINHTTP_AUTOPROXY_RUN_OUTPROCESS_ONLY}, DWORD{0}}) {
        WINHTTP_AUTOPROXY_OPTIONS asked = options;
        asked.dwFlags |= where;
        const BOOL found = discovery.GetProxyForUrl(session, url.c_str(), asked, answer);
        error = found ? ERROR_SUCCESS : LastErrorOr(ERROR_WINHTTP_INTERNAL_ERROR);
        if (error != ERROR_INVALID_PARAMETER) { // what Windows returns for an unknown flag
            break;
        }
    }
    if (error != ERROR_SUCCESS) {
        return {error};
    }
    return {ERROR_SUCCESS, {answer.dwAccessType, GlobalText(answer.lpszProxy), GlobalText(answer.lpszProxyBypass)}};
}

} // namespace vantor
