#include "telemetry/winhttp/code_names.h"

#include <algorithm>
#include <iterator>

namespace vantor {
namespace {

struct CodeName {
    std::uint32_t code;
    const char* name;
};

// Each table is in ascending order of its codes.

constexpr CodeName kWinHttpErrors[] = {
    {0, "ERROR_SUCCESS"},
    {12001, "ERROR_WINHTTP_OUT_OF_HANDLES"},
    {12002, "ERROR_WINHTTP_TIMEOUT"},
    {12004, "ERROR_WINHTTP_INTERNAL_ERROR"},
    {12005, "ERROR_WINHTTP_INVALID_URL"},
    {12006, "ERROR_WINHTTP_UNRECOGNIZED_SCHEME"},
    {12007, "ERROR_WINHTTP_NAME_NOT_RESOLVED"},
    {12009, "ERROR_WINHTTP_INVALID_OPTION"},
    {12011, "ERROR_WINHTTP_OPTION_NOT_SETTABLE"},
    {12012, "ERROR_WINHTTP_SHUTDOWN"},
    {12015, "ERROR_WINHTTP_LOGIN_FAILURE"},
    {12017, "ERROR_WINHTTP_OPERATION_CANCELLED"},
    {12018, "ERROR_WINHTTP_INCORRECT_HANDLE_TYPE"},
    {12019, "ERROR_WINHTTP_INCORRECT_HANDLE_STATE"},
    {12029, "ERROR_WINHTTP_CANNOT_CONNECT"},
    {12030, "ERROR_WINHTTP_CONNECTION_ERROR"},
    {12032, "ERROR_WINHTTP_RESEND_REQUEST"},
    {12037, "ERROR_WINHTTP_SECURE_CERT_DATE_INVALID"},
    {12038, "ERROR_WINHTTP_SECURE_CERT_CN_INVALID"},
    {12044, "ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED"},
    {12045, "ERROR_WINHTTP_SECURE_INVALID_CA"},
    {12057, "ERROR_WINHTTP_SECURE_CERT_REV_FAILED"},
    {12100, "ERROR_WINHTTP_CANNOT_CALL_BEFORE_OPEN"},
    {12101, "ERROR_WINHTTP_CANNOT_CALL_BEFORE_SEND"},
    {12102, "ERROR_WINHTTP_CANNOT_CALL_AFTER_SEND"},
    {12103, "ERROR_WINHTTP_CANNOT_CALL_AFTER_OPEN"},
    {12150, "ERROR_WINHTTP_HEADER_NOT_FOUND"},
    {12152, "ERROR_WINHTTP_INVALID_SERVER_RESPONSE"},
    {12153, "ERROR_WINHTTP_INVALID_HEADER"},
    {12154, "ERROR_WINHTTP_INVALID_QUERY_REQUEST"},
    {12155, "ERROR_WINHTTP_HEADER_ALREADY_EXISTS"},
    {12156, "ERROR_WINHTTP_REDIRECT_FAILED"},
    {12157, "ERROR_WINHTTP_SECURE_CHANNEL_ERROR"},
    {12166, "ERROR_WINHTTP_BAD_AUTO_PROXY_SCRIPT"},
    {12167, "ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT"},
    {12169, "ERROR_WINHTTP_SECURE_INVALID_CERT"},
    {12170, "ERROR_WINHTTP_SECURE_CERT_REVOKED"},
    {12172, "ERROR_WINHTTP_NOT_INITIALIZED"},
    {12175, "ERROR_WINHTTP_SECURE_FAILURE"},
    {12176, "ERROR_WINHTTP_UNHANDLED_SCRIPT_TYPE"},
    {12177, "ERROR_WINHTTP_SCRIPT_EXECUTION_ERROR"},
    {12178, "ERROR_WINHTTP_AUTO_PROXY_SERVICE_ERROR"},
    {12179, "ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE"},
    {12180, "ERROR_WINHTTP_AUTODETECTION_FAILED"},
    {12181, "ERROR_WINHTTP_HEADER_COUNT_EXCEEDED"},
    {12182, "ERROR_WINHTTP_HEADER_SIZE_OVERFLOW"},
    {12183, "ERROR_WINHTTP_CHUNKED_ENCODING_HEADER_SIZE_OVERFLOW"},
    {12184, "ERROR_WINHTTP_RESPONSE_DRAIN_OVERFLOW"},
    {12185, "ERROR_WINHTTP_CLIENT_CERT_NO_PRIVATE_KEY"},
    {12186, "ERROR_WINHTTP_CLIENT_CERT_NO_ACCESS_PRIVATE_KEY"},
};

constexpr CodeName kWinHttpStatuses[] = {
    {0x1, "WINHTTP_CALLBACK_STATUS_RESOLVING_NAME"},
    {0x2, "WINHTTP_CALLBACK_STATUS_NAME_RESOLVED"},
    {0x4, "WINHTTP_CALLBACK_STATUS_CONNECTING_TO_SERVER"},
    {0x8, "WINHTTP_CALLBACK_STATUS_CONNECTED_TO_SERVER"},
    {0x10, "WINHTTP_CALLBACK_STATUS_SENDING_REQUEST"},
    {0x20, "WINHTTP_CALLBACK_STATUS_REQUEST_SENT"},
    {0x40, "WINHTTP_CALLBACK_STATUS_RECEIVING_RESPONSE"},
    {0x80, "WINHTTP_CALLBACK_STATUS_RESPONSE_RECEIVED"},
    {0x100, "WINHTTP_CALLBACK_STATUS_CLOSING_CONNECTION"},
    {0x200, "WINHTTP_CALLBACK_STATUS_CONNECTION_CLOSED"},
    {0x400, "WINHTTP_CALLBACK_STATUS_HANDLE_CREATED"},
    {0x800, "WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING"},
    {0x1000, "WINHTTP_CALLBACK_STATUS_DETECTING_PROXY"},
    {0x4000, "WINHTTP_CALLBACK_STATUS_REDIRECT"},
    {0x8000, "WINHTTP_CALLBACK_STATUS_INTERMEDIATE_RESPONSE"},
    {0x10000, "WINHTTP_CALLBACK_STATUS_SECURE_FAILURE"},
    {0x20000, "WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE"},
    {0x40000, "WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE"},
    {0x80000, "WINHTTP_CALLBACK_STATUS_READ_COMPLETE"},
    {0x100000, "WINHTTP_CALLBACK_STATUS_WRITE_COMPLETE"},
    {0x200000, "WINHTTP_CALLBACK_STATUS_REQUEST_ERROR"},
    {0x400000, "WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE"},
    {0x1000000, "WINHTTP_CALLBACK_STATUS_GETPROXYFORURL_COMPLETE"},
    {0x2000000, "WINHTTP_CALLBACK_STATUS_CLOSE_COMPLETE"},
    {0x4000000, "WINHTTP_CALLBACK_STATUS_SHUTDOWN_COMPLETE"},
};

constexpr CodeName kReasonPhrases[] = {
    {100, "Continue"},
    {101, "Switching Protocols"},
    {103, "Early Hints"},
    {200, "OK"},
    {201, "Created"},
    {202, "Accepted"},
    {203, "Non-Authoritative Information"},
    {204, "No Content"},
    {205, "Reset Content"},
    {206, "Partial Content"},
    {300, "Multiple Choices"},
    {301, "Moved Permanently"},
    {302, "Found"},
    {303, "See Other"},
    {304, "Not Modified"},
    {307, "Temporary Redirect"},
    {308, "Permanent Redirect"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {402, "Payment Required"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {406, "Not Acceptable"},
    {407, "Proxy Authentication Required"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {410, "Gone"},
    {411, "Length Required"},
    {412, "Precondition Failed"},
    {413, "Payload Too Large"},
    {414, "URI Too Long"},
    {415, "Unsupported Media Type"},
    {416, "Range Not Satisfiable"},
    {417, "Expectation Failed"},
    {418, "I'm a teapot"},
    {422, "Unprocessable Entity"},
    {425, "Too Early"},
    {426, "Upgrade Required"},
    {428, "Precondition Required"},
    {429, "Too Many Requests"},
    {431, "Request Header Fields Too Large"},
    {451, "Unavailable For Legal Reasons"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
    {505, "HTTP Version Not Supported"},
    {506, "Variant Also Negotiates"},
    {507, "Insufficient Storage"},
    {508, "Loop Detected"},
    {510, "Not Extended"},
    {511, "Network Authentication Required"},
};

constexpr bool Precedes(const CodeName& left, const CodeName& right)
{
    return left.code < right.code;
}

static_assert(std::is_sorted(std::begin(kWinHttpErrors), std::end(kWinHttpErrors), Precedes));
static_assert(std::is_sorted(std::begin(kWinHttpStatuses), std::end(kWinHttpStatuses), Precedes));
static_assert(std::is_sorted(std::begin(kReasonPhrases), std::end(kReasonPhrases), Precedes));

template <std::size_t Size>
std::string Find(const CodeName (&table)[Size], std::uint32_t code, const char* unknown)
{
    const auto found = std::lower_bound(std::begin(table), std::end(table), CodeName{code, nullptr}, Precedes);
    if (found != std::end(table) && found->code == code) {
        return found->name;
    }
    return "Unknown " + std::string(unknown) + " (" + std::to_string(code) + ")";
}

} // namespace

std::string WinHttpErrorName(std::uint32_t code)
{
    return Find(kWinHttpErrors, code, "error");
}

std::string NamedWinHttpError(std::uint32_t code)
{
    return WinHttpErrorName(code) + " " + std::to_string(code);
}

std::string WinHttpStatusName(std::uint32_t status)
{
    return Find(kWinHttpStatuses, status, "status");
}

std::string HttpReasonPhrase(std::uint32_t status)
{
    return Find(kReasonPhrases, status, "status");
}

} // namespace vantor
