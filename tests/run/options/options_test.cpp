#include "run/options/options.h"
#include "support/option_rows.h"
#include "support/recording_logger.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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
        {"/username=Me", {.username = "Me"}},
        {"/password=Pa=ss", {.password = "Pa=ss"}},
        {"/domain=D", {.domain = "D"}},
        {"/principal=P", {.principal = "P"}},
        {"/target=T", {.target = "T"}},
        {"/testing", {}},
        {"test", {}},
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

TEST(Options, ArgumentsAreLoggedAndUnknownOnesWarnedAbout)
{
    RunConfig config;
    RecordingLogger log;
    const std::string arguments[] = {"C:\\VanTor.EXE", "/Bogus=1", "vantor", "C:\\renamed.exe"};
    ParseArguments(arguments, config, log);
    const std::string handling = "T Handling argument ", unexpected = "W Unexpected command line argument - ";
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{handling + arguments[0], handling + arguments[1], unexpected + arguments[1],
                                        handling + arguments[2], unexpected + arguments[2], handling + arguments[3],
                                        unexpected + arguments[3]}));
}

TEST(Options, AreJudgedAsTheirRulesSay)
{
    const std::vector<OptionRow> rows = OptionRows();
    EXPECT_EQ(rows.size(), 40u);
    for (const auto& [arguments, complaint] : rows) {
        EXPECT_EQ(Outcome(Words(arguments)), complaint) << arguments;
    }
}

} // namespace
} // namespace vantor
