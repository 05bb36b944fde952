// Conversions between narrow text in the process's code page, wide text and UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

/// Converts to the process's ANSI code page (UTF-8 if Windows honours the manifest). Characters that the code page
/// lacks become its default character, never a similar-looking one: a full-width quote must not become a real quote.
std::string ToNarrow(std::wstring_view text);

/// Converts from the process's ANSI code page.
std::wstring ToWide(std::string_view text);

std::string ToUtf8(std::wstring_view text);

/// A pointer or handle as a stream prints it: "0x" and hexadecimal digits, "0" for null.
std::string PointerText(const void* pointer);

} // namespace vantor
