// A program that starts another one and waits for it, as the product's updater does.
#include <process.h>

#include <string>

/// starter COMMAND...: runs the command behind its own name; gives its exit code.
int main(int argc, char** argv)
{
    std::string line;
    for (int index = 1; index < argc; ++index) {
        line += '"' + std::string(argv[index]) + "\" ";
    }
    return static_cast<int>(::_spawnl(_P_WAIT, argv[1], line.c_str(), nullptr));
}
