#include "platform/text.h"
#include "run/run_driver.h"

#include <string>
#include <vector>

/// Takes the arguments as wide text, because the C runtime's narrow ones may turn into others where the code page is not
/// UTF-8: a full-width quote into a quote, for one.
int wmain(int argc, wchar_t** argv)
{
    std::vector<std::string> arguments;
    std::vector<const char*> pointers;
    for (int index = 0; index < argc; ++index) {
        arguments.push_back(vantor::ToNarrow(argv[index]));
    }
    for (const std::string& argument : arguments) {
        pointers.push_back(argument.c_str());
    }
    return vantor::RunPulse(argc, pointers.data());
}
