// How the program ends after a fault that nothing catches: at once, with exit code 3. The C++ library would first print what it
// was, with names demangled, to a standard error that nobody reads; its code for that is an eighth of the program.
#include "platform/program.h"

#ifdef __GLIBCXX__

#include <exception>

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl58-cpp,readability-identifier-naming): the library's names, which the linker
// takes from here instead.
namespace __gnu_cxx {

/// What std::terminate calls, for an exception that leaves a noexcept function or the program.
void __verbose_terminate_handler()
{
    vantor::EndProcessAtOnce();
}

} // namespace __gnu_cxx

#if defined(_GLIBCXX_ASSERTIONS)
namespace std {

/// What a failed check of the library calls, such as an index beyond the end.
void __glibcxx_assert_fail(const char*, int, const char*, const char*) noexcept
{
    vantor::EndProcessAtOnce();
}

} // namespace std
#endif
// NOLINTEND(bugprone-reserved-identifier,cert-dcl58-cpp,readability-identifier-naming)

#endif
