#include "run/options.h"
#include "recording_logger.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

/// Parses and validates arguments behind a program path; gives the message of what was thrown, or an empty text.
std::string Outcome(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "C:\\Program Files\\VANTor.exe");
    RunConfig config;
    RecordingLogger log;
    try {
        ParseArguments(arguments, config, log);
        Validate(config);
    } catch (const OptionError& error) {
        return error.what();
    }
    return {};
}

TEST(Options, EveryOptionFillsItsFieldAndNoOther)
{
    const struct {
        const char* argument;
        RunConfig expected;
    } kCases[] = {
        {"/uninstall", {.uninstall = true}},
        {"/UNINSTALL=anything", {.uninstall = true}},
        {"/periodicruncount=7", {.periodicRunCount = 7}},
        {"/periodicruncount=255", {}},
        {"/test", {.test = true}},
        {"/resttest", {.restTest = true}},
        {"/cleanstate", {.cleanState = true}},
        {"/continue", {.continueRun = true}},
        {"/HcMode=predatupdate", {.hcmode = "predatupdate"}},
        {"/datver=1234.5", {.datver = "1234.5"}},
        {"/datupdatestatus=-128", {.datUpdateStatus = -128, .datUpdateStatusSet = true}},
        {"/datupdatestatus=127", {.datUpdateStatus = 127, .datUpdateStatusSet = true}},
        {"/delaypostdat=65535", {.delayPostDat = 65535}},
        {"/logfile=C:\\A b=c.LOG", {.logFile = "C:\\A b=c.LOG"}},
        {"/verbose", {.verbose = true}},
        {"/server==", {.server = "="}},
        {"/port=065535", {.port = 65535}},
        {"/username=", {}},
        {"/username=Me", {.username = "Me"}},
        {"/password=", {}},
        {"/password=Pa=ss", {.password = "Pa=ss"}},
        {"/domain=D", {.domain = "D"}},
        {"/principal=P", {.principal = "P"}},
        {"/target=T", {.target = "T"}},
        {"/testing", {}},
        {"/tes", {}},
        {"test", {}},
        {"", {}},
    };
    for (const auto& [argument, expected] : kCases) {
        SCOPED_TRACE(argument);
        RunConfig config;
        RecordingLogger log;
        const std::string arguments[] = {argument};
        ParseArguments(arguments, config, log);
        EXPECT_EQ(config, expected);
    }
}

TEST(Options, WhatIsInvalidGivesItsMessage)
{
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } kCases[] = {
        {{"/hcmode"}, "Malformed command line argument: '/hcmode' Expected /key=value"},
        {{"/Server="}, "Malformed command line argument: '/Server=' Expected /key=value"},
        {{"/username"}, "Malformed command line argument: '/username' Expected /key=value"},
        {{"/periodicruncount=256"}, "Overflow in CovertToUnsigned"},
        {{"/periodicruncount=-1"}, "Non digit in CovertToUnsigned"},
        {{"/delaypostdat=65536"}, "Overflow in CovertToUnsigned"},
        {{"/datupdatestatus=+1"}, "Non digit in CovertToSigned"},
        {{"/datupdatestatus=1-1"}, "invalid stoll argument"},
        {{"/datupdatestatus=-9223372036854775809"}, "stoll argument out of range"},
        {{"/uninstall", "/cleanstate"}, "/uninstall must be the only option set."},
        {{"/cleanstate", "/continue"}, "/cleanstate must be the only option set."},
        {{"/periodicruncount=0", "/datver=1.2"}, "/periodicruncount can only have proxy/hcmode settings."},
        {{"/periodicruncount=0", "/resttest"}, "/periodicruncount can only have proxy/hcmode settings."},
        {{"/port=1"}, "/server and /port must be specified together"},
        // The rules are tried in their order.
        {{"/cleanstate", "/hcmode=x"}, "/cleanstate must be the only option set."},
        {{"/hcmode=x", "/delaypostdat=1", "/port=1"}, "/hcmode must be {predatupdate|postdatupdate|periodic}: x"},
        // Allowed.
        {{}, ""},
        {{"/uninstall", "/verbose", "/logfile=x"}, ""},
        {{"/cleanstate", "/logfile=x"}, ""},
        {{"/periodicruncount=2", "/test", "/verbose", "/logfile=x", "/hcmode=periodic"}, ""},
        {{"/periodicruncount=2", "/server=s", "/port=1", "/username=u", "/password=p", "/domain=d"}, ""},
        {{"/periodicruncount=2", "/principal=p", "/target=t"}, ""},
        {{"/periodicruncount=255", "/resttest"}, ""},
        {{"/hcmode=postdatupdate", "/datupdatestatus=0", "/delaypostdat=65535"}, ""},
        {{"/continue", "/test", "/resttest", "/datver=nonsense"}, ""},
    };
    for (const auto& [arguments, message] : kCases) {
        EXPECT_EQ(Outcome(arguments), message);
    }
}

TEST(Options, ArgumentsAreLoggedAndUnknownOnesWarnedAbout)
{
    RunConfig config;
    RecordingLogger log;
    const std::string arguments[] = {"C:\\VanTor.EXE", "/Bogus=1", "vantor"};
    ParseArguments(arguments, config, log);
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{"T Handling argument C:\\VanTor.EXE", "T Handling argument /Bogus=1",
                                        "W Unexpected command line argument - /Bogus=1", "T Handling argument vantor",
                                        "W Unexpected command line argument - vantor"}));

    log.lines.clear();
    const std::string renamed[] = {"C:\\renamed.exe"};
    ParseArguments(renamed, config, log);
    EXPECT_TRUE(log.Has("W Unexpected command line argument - C:\\renamed.exe"));
}

} // namespace
} // namespace vantor
