#include "platform/text/encoding.h"
#include "run/run_driver.h"

#include <cstddef>
#include <string>
#include <vector>

/// Takes wide arguments, because if the code page is not UTF-8 the C runtime replaces characters in narrow ones with
/// similar-looking ones, such as a full-width quote with a real quote.
int wmain(int argc, wchar_t** argv)
{
    std::vector<std::string> arguments(static_cast<std::size_t>(argc));
    std::vector<const char*> pointers(arguments.size());
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        arguments[index] = vantor::ToNarrow(argv[index]);
        pointers[index] = arguments[index].c_str();
    }
    return vantor::RunPulse(argc, pointers.data());
}
