// vantor-inspect: reads pulses and logs for people.
#include "inspect/inspect_command.h"

#include <exception>
#include <iostream>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#endif

int main(int count, char** arguments)
{
#ifdef _WIN32
    ::_setmode(::_fileno(stdin), _O_BINARY); // in text mode the stream would end at the first 0x1A
#endif
    try {
        std::ios::sync_with_stdio(false);
        const int exitCode =
            vantor::inspect::RunInspect({arguments + 1, arguments + count}, std::cin, std::cout, std::cerr);
        std::cout.flush();
        if (!std::cout) {
            std::cerr << "vantor-inspect: the output cannot be written\n";
            return 1;
        }
        return exitCode;
    } catch (const std::exception& error) { // such as no memory
        std::cerr << "vantor-inspect: " << error.what() << '\n';
        return 1;
    }
}
