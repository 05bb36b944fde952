// Conversion of Windows times for formatting.
#pragma once

#include "platform/text/formatting.h"

#include <windows.h>

namespace vantor {

inline DateTime ToDateTime(const SYSTEMTIME& time)
{
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

} // namespace vantor
