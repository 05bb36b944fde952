// winhttp.dll: HTTP and proxy discovery.
#pragma once

#include "platform/modules/module.h"

#include <windows.h>

#include <winhttp.h>

namespace vantor::winhttp {

inline constinit SystemModule module(L"winhttp.dll");

inline ModuleFunction<decltype(::WinHttpAddRequestHeaders)> WinHttpAddRequestHeaders(module,
                                                                                     "WinHttpAddRequestHeaders");
inline ModuleFunction<decltype(::WinHttpCloseHandle)> WinHttpCloseHandle(module, "WinHttpCloseHandle");
inline ModuleFunction<decltype(::WinHttpConnect)> WinHttpConnect(module, "WinHttpConnect");
inline ModuleFunction<decltype(::WinHttpGetDefaultProxyConfiguration)> WinHttpGetDefaultProxyConfiguration(
    module, "WinHttpGetDefaultProxyConfiguration");
inline ModuleFunction<decltype(::WinHttpGetIEProxyConfigForCurrentUser)> WinHttpGetIEProxyConfigForCurrentUser(
    module, "WinHttpGetIEProxyConfigForCurrentUser");
inline ModuleFunction<decltype(::WinHttpGetProxyForUrl)> WinHttpGetProxyForUrl(module, "WinHttpGetProxyForUrl");
inline ModuleFunction<decltype(::WinHttpOpen)> WinHttpOpen(module, "WinHttpOpen");
inline ModuleFunction<decltype(::WinHttpOpenRequest)> WinHttpOpenRequest(module, "WinHttpOpenRequest");
inline ModuleFunction<decltype(::WinHttpQueryAuthSchemes)> WinHttpQueryAuthSchemes(module, "WinHttpQueryAuthSchemes");
inline ModuleFunction<decltype(::WinHttpQueryDataAvailable)> WinHttpQueryDataAvailable(module,
                                                                                       "WinHttpQueryDataAvailable");
inline ModuleFunction<decltype(::WinHttpQueryHeaders)> WinHttpQueryHeaders(module, "WinHttpQueryHeaders");
inline ModuleFunction<decltype(::WinHttpQueryOption)> WinHttpQueryOption(module, "WinHttpQueryOption");
inline ModuleFunction<decltype(::WinHttpReadData)> WinHttpReadData(module, "WinHttpReadData");
inline ModuleFunction<decltype(::WinHttpReceiveResponse)> WinHttpReceiveResponse(module, "WinHttpReceiveResponse");
inline ModuleFunction<decltype(::WinHttpSendRequest)> WinHttpSendRequest(module, "WinHttpSendRequest");
inline ModuleFunction<decltype(::WinHttpSetCredentials)> WinHttpSetCredentials(module, "WinHttpSetCredentials");
inline ModuleFunction<decltype(::WinHttpSetOption)> WinHttpSetOption(module, "WinHttpSetOption");
inline ModuleFunction<decltype(::WinHttpSetStatusCallback)> WinHttpSetStatusCallback(module,
                                                                                     "WinHttpSetStatusCallback");
inline ModuleFunction<decltype(::WinHttpSetTimeouts)> WinHttpSetTimeouts(module, "WinHttpSetTimeouts");
inline ModuleFunction<decltype(::WinHttpWriteData)> WinHttpWriteData(module, "WinHttpWriteData");

} // namespace vantor::winhttp
