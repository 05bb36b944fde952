// Conversions between narrow text in the process's code page, wide text and UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

/// Wide text in the process's ANSI code page (UTF-8 where Windows honours the manifest). Characters that it lacks
/// become its default character, never one that looks like them: a full-width quote is no quote.
std::string ToNarrow(std::wstring_view text);

/// Narrow text in the process's ANSI code page as wide text.
std::wstring ToWide(std::string_view text);

/// Wide text as UTF-8.
std::string ToUtf8(std::wstring_view text);

/// A pointer or handle as a stream writes it.
std::string PointerText(const void* pointer);

} // namespace vantor
