// Ends the program at once, with exit code 3, after a fault that nothing catches. The C++ library would first print it
// with demangled names to standard error, which nobody reads; its code for that makes up an eighth of the program.
#include "platform/program.h"

#ifdef __GLIBCXX__

#include <exception>

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl58-cpp,readability-identifier-naming): replacements for functions of
// the library, under its names.
namespace __gnu_cxx {

/// Called by std::terminate when an exception leaves a noexcept function or the program.
void __verbose_terminate_handler()
{
    vantor::EndProcessAtOnce();
}

} // namespace __gnu_cxx

#if defined(_GLIBCXX_ASSERTIONS)
namespace std {

/// Called when a check of the library fails, such as an index beyond the end.
void __glibcxx_assert_fail(const char*, int, const char*, const char*) noexcept
{
    vantor::EndProcessAtOnce();
}

} // namespace std
#endif
// NOLINTEND(bugprone-reserved-identifier,cert-dcl58-cpp,readability-identifier-naming)

#endif
