// Names of WinHTTP and HTTP codes for log lines.
#pragma once

#include <cstdint>
#include <string>

namespace vantor {

/// The name of the WinHTTP error constant (winhttp.h) with this value, "ERROR_SUCCESS" for 0. Any other value gives
/// "Unknown error (" + decimal + ")".
std::string WinHttpErrorName(std::uint32_t code);

/// The error's name, a blank and its number, as used in log lines.
std::string NamedWinHttpError(std::uint32_t code);

/// The name of the WinHTTP callback status constant (winhttp.h) with exactly this value. Any other value, including
/// combinations of flags, gives "Unknown status (" + decimal + ")".
std::string WinHttpStatusName(std::uint32_t status);

/// The reason phrase registered for an HTTP status code. Any other code gives "Unknown status (" + decimal + ")".
std::string HttpReasonPhrase(std::uint32_t status);

} // namespace vantor
