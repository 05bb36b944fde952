#include "inspect/run_text.h"

#include "inspect/sample_pulse.h"

#include <gtest/gtest.h>

#include <regex>

namespace vantor::inspect {
namespace {

TEST(RunLog, TellsRunsStagesAndTroubleAndKeepsSecrets)
{
    const std::string log = R"(d of a line
26/11/21 08:41:35: TRACE: Leaving SendTelemetry
26/11/21 08:41:36: TRACE: Entering GetConfig
26/11/21 08:41:36: TRACE: Handling argument /Password=top secret
26/11/21 08:41:35: TRACE: Leaving GetConfig
26/11/21 08:41:37: TRACE: Entering SendTelemetry
26/11/21 08:41:37: TRACE: CHTTPProxyManager::X: password: a authentication schemes: b authentication schemes: 1
26/11/21 08:41:38: TRACE: Entering RESTTelemetry::Send
26/11/21 08:41:38: TRACE: )" +
                            SampleBody() + "\n26/11/21 08:41:38:  WARN: two\x1B[2J\nlines\nTRACE: of reply\n" +
                            "26/11/21 08:41:39: TRACE: Leaving RESTTelemetry::Send\n";
    const auto runs = ReadRuns(ReadLogMessages(std::regex_replace(log, std::regex("\n"), "\r\n")));
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(RunBlock(runs[1], 2, 2),
              "run 2 of 2, lines 3 to 13\n"
              "  outcome  The postdatupdate pulse was delivered directly; the log ends inside SendTelemetry: the "
              "run was stopped there, or is still under way; 1 warning, 0 errors.\n"
              "  time     2026-11-21 08:41:36 UTC, 3 s\n"
              "  pulse    below, from the body in line 9\n"
              "  command  /Password=***\n"
              "    line  time        took  kind   what happened\n"
              "       3  08:41:36                GetConfig\n"
              "       6  08:41:37                SendTelemetry\n"
              "       7  08:41:37         proxy    password: *** authentication schemes: 1\n"
              "       8  08:41:38    1 s           RESTTelemetry::Send\n"
              "      10  08:41:38         WARN       two\\x1B[2J\\x0Alines\\x0ATRACE: of reply\n");
    EXPECT_EQ(RunJson(runs[1], 2)["pulse"]["report"], kPostUpdateReport);
}

TEST(RunLog, PutsTheOutcomeInOneSentence)
{
    const std::string sending = "TRACE: Entering SendTelemetry\nTRACE: Entering RESTTelemetry::Send\n";
    const std::string sent = sending + "TRACE: Leaving RESTTelemetry::Send\nTRACE: Leaving SendTelemetry\n";
    const std::string asked =
        "TRACE: Entering GetConfig\nTRACE: Handling argument /HCMode=x\nTRACE: Leaving GetConfig\n";
    const std::string failed = "ERROR: RESTTelemetry::Send: Send telemetry failed. WinHTTP ";
    const std::string detected = "TRACE: CHTTPSessionAutoProxy::InitProxy: Autoproxy lpszProxy: ";
    const std::pair<std::string, std::string> kCases[] = {
        {"TRACE: Entering GetConfig\nTRACE: Leaving GetConfig\n", "The run sent nothing: it had no mode; 0 warnings"},
        {asked, "The log ends before the pulse was sent (after GetConfig): the run was stopped there, or is still"},
        {asked + "TRACE: /delaypostdat waiting\n", "sent (after /delaypostdat waiting): the run"},
        {sent + "ERROR: Error: bad\n", "was delivered directly; the run ended early, with exit code 1: bad; "},
        {std::regex_replace("TRACE: Sending: " + RenderHealthRecord({}) + '\n' + sent, std::regex("\"mode\": 0"),
                            "\"mode\": 259"),
         "The pulse was delivered"},
        {detected + "p:8080\n" + sent, "The pulse was delivered through the detected proxy p:8080; "},
        {"TRACE: CHTTPProxyManager::InitConfig: session type to NamedSessionProxy\n" + sent, "given on the command"},
        {" WARN: HttpConnection::Query: Using proxy fallback\n" + sent, "directly, after the proxy could not be rea"},
        {failed + "status: 407\n" + sent, "not delivered: the proxy wants credentials, or refused those it got (Send"},
        {"ERROR: A: The proxy did not build the tunnel to\n" + failed + "status: 403\n" + sent,
         "did not let the request"},
        {"ERROR: A: ERROR_WINHTTP_RESEND_REQUEST 12032\n WARN: Unable to parse certificate data from connection: X\n" +
             sent,
         "was delivered directly; 0 warnings, 0 errors."},
        {failed + "error: ERROR_WINHTTP_RESEND_REQUEST 12032\n" + sent, "one logon step after the other"},
        {"ERROR: Initialise failed: R.\nERROR: Send telemetry failed: http not initialised\n", "initialised; R.); "},
        {"ERROR: C: an inspecting proxy between\n" + failed + "error: X 12175\n", "most likely an inspecting proxy's"},
        {sending, "The log ends inside RESTTelemetry::Send: the run was stopped there, or is still under way; "},
        {"ERROR: Error: StopLogging FAILED!!: 5\n" + sent, "The pulse was delivered directly; 0 warnings, 1 error."},
        {"ERROR: Error: bad\n", "The run ended early, with exit code 1: bad; "},
    };
    for (const auto& [log, outcome] : kCases) {
        const auto runs = ReadRuns(ReadLogMessages(log));
        EXPECT_NE(runs.at(0).outcome.find(outcome), std::string::npos) << runs.at(0).outcome;
    }
}

} // namespace
} // namespace vantor::inspect
