#include "post.h"

#include <cstdio>
#include <vector>

namespace vantor::bench {
namespace {

std::vector<char> Read(const char* path)
{
    std::vector<char> body(1 << 16);
    std::FILE* const file = std::fopen(path, "rb");
    if (!file) {
        return {};
    }
    body.resize(std::fread(body.data(), 1, body.size(), file));
    std::fclose(file);
    return body;
}

int Fail(const char* call)
{
    const DWORD error = ::GetLastError();
    std::fprintf(stderr, "%s: error %lu\n", call, error);
    return 1;
}

bool ReadReply(HINTERNET request)
{
    char buffer[4096];
    DWORD read = 0;
    do {
        if (!::WinHttpReadData(request, buffer, sizeof(buffer), &read)) {
            return false;
        }
    } while (read != 0);
    return true;
}

} // namespace

int PostFile(const char* file, Prepare prepare)
{
    std::vector<char> body = Read(file);
    const HINTERNET session = ::WinHttpOpen(L"VXCore REST Client", WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr, 0);
    const HINTERNET connection = session ? ::WinHttpConnect(session, L"localhost", 8000, 0) : nullptr;
    const HINTERNET request =
        connection ? ::WinHttpOpenRequest(connection, L"POST", L"/1", nullptr, nullptr, nullptr, WINHTTP_FLAG_SECURE)
                   : nullptr;
    if (!request) {
        return Fail("WinHttpOpenRequest");
    }
    prepare(session, request);
    const auto size = static_cast<DWORD>(body.size());
    if (!::WinHttpSendRequest(request, nullptr, 0, body.data(), size, size, 0)) {
        return Fail("WinHttpSendRequest");
    }
    DWORD status = 0;
    DWORD statusSize = sizeof(status);
    if (!::WinHttpReceiveResponse(request, nullptr) ||
        !::WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER, nullptr, &status,
                               &statusSize, nullptr) ||
        !ReadReply(request)) {
        return Fail("WinHttpReceiveResponse");
    }
    ::WinHttpCloseHandle(request);
    ::WinHttpCloseHandle(connection);
    ::WinHttpCloseHandle(session);
    return status == HTTP_STATUS_OK ? 0 : 1;
}

} // namespace vantor::bench
