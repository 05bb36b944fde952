// A minimal POST over WinHTTP.
#pragma once

#include <windows.h>

#include <winhttp.h>

namespace vantor::bench {

/// What is done with the session and the open request before it is sent.
using Prepare = void (*)(HINTERNET session, HINTERNET request);

/// Posts what the file holds to https://localhost:8000/1 and reads the reply. Returns a program's exit code: 0 for a
/// reply with status 200, else 1 with the failed call on standard error.
int PostFile(const char* file, Prepare prepare);

} // namespace vantor::bench
