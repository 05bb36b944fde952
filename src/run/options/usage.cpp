#include "run/options/usage.h"

#include "platform/text/lower_case.h"
#include "vantor_version.h"

#include <algorithm>
#include <string_view>

namespace vantor {
namespace {

// The README has the same groups and options; a test compares them.
constexpr std::string_view kUsage = "usage: vantor.exe /hcmode=MODE [OPTION...]\n"
                                    "\n"
                                    "VANTor " VANTOR_VERSION_TEXT R"(, the health check around updates of the
detection content.

The pulse
  /hcmode=MODE            collect a health record and send it; MODE is
                          predatupdate, postdatupdate or periodic
  /resttest               mark the report as a test

The update
  /datver=MAJOR.MINOR     version of the detection content
  /datupdatestatus=N      how the update went, -128 to 127, 0 for success;
                          mandatory with postdatupdate
  /delaypostdat=N         first wait N minutes, 1 to 10; postdatupdate only

The periodic task
  /periodicruncount=N     this is run N of the series, 0 to 7: register the
                          next one; only with /hcmode, /test and options of
                          the proxy and the log
  /continue               the series is over: register the next daily run
  /test                   a short series: N is 0 to 2, the delays are seconds
  /uninstall, /cleanstate only delete the task

The proxy
  /server=HOST /port=N    its address, both or none; without them it is found
                          automatically
  /username=NAME          the user to log on as
  /password=TEXT          the user's password, which the log shows in clear
  /domain=NAME            the user's domain
  /principal=NAME         the user, where there is no /username
  /target=NAME            not used; the record says that it was given

The log
  /logfile=PATH           append the log to this file, in a folder that only
                          administrators may write
  /verbose                log to standard output as well

Help
  /?, /help, --help       show this text and do nothing else

A run without /periodicruncount and /continue deletes the periodic task, a run
without any option too; only postdatupdate leaves it alone. Run it as SYSTEM
or as an administrator. Names match in any case; a value with blanks takes
quotes: "/logfile=C:\Program Files\Vexora\vantor.log". Exit codes: 1 for a
wrong command line, 3 for a sudden end, otherwise 0 whatever became of the
run, which its log tells.
)";

} // namespace

bool AsksForUsage(std::span<const char* const> arguments)
{
    return std::any_of(arguments.begin() + !arguments.empty(), arguments.end(), [](const char* argument) {
        const std::string name = LowerCase(std::string(argument));
        return name == "/?" || name == "/help" || name == "--help";
    });
}

std::string UsageText()
{
    std::string text;
    for (const char character : kUsage) {
        text += character == '\n' ? "\r\n" : std::string_view(&character, 1);
    }
    return text;
}

} // namespace vantor
