#include "inspect/run_log.h"

#include "inspect/run_text.h"
#include "inspect/sample_pulse.h"
#include "support/password_log.h"

#include <gtest/gtest.h>

#include <limits>
#include <regex>

namespace vantor::inspect {
namespace {

RunLog Read(const std::string& log, std::size_t kept = std::numeric_limits<std::size_t>::max())
{
    RunLogReader reader(kept, 1U << 20);
    for (std::size_t at = 0; at < log.size(); at += 1000) {
        reader.Read(std::string_view(log).substr(at, 1000));
    }
    return reader.Finish();
}

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
    const auto runs = Read(" WARN: the rest of a reply\n" + std::regex_replace(log, std::regex("\n"), "\r\n")).runs;
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(RunBlock(runs[1], 2, 2),
              "run 2 of 2, lines 4 to 14\n"
              "  outcome  The postdatupdate pulse was delivered directly; the log ends inside SendTelemetry: the "
              "run was stopped there, or is still under way; 1 warning, 0 errors.\n"
              "  time     2026-11-21 08:41:36 UTC, 3 s\n"
              "  pulse    below, from the body in line 10\n"
              "  command  /Password=***\n"
              "    line  time        took  kind   what happened\n"
              "       4  08:41:36                GetConfig\n"
              "       7  08:41:37                SendTelemetry\n"
              "       8  08:41:37         proxy    password: *** authentication schemes: 1\n"
              "       9  08:41:38    1 s           RESTTelemetry::Send\n"
              "      11  08:41:38         WARN       two\\x1B[2J\\x0Alines\\x0ATRACE: of reply\n");
    EXPECT_EQ(RunJson(runs[1], 2)["pulse"]["report"], kPostUpdateReport);
}

TEST(RunLog, ShowsNoByteOfAPasswordWhateverItHolds)
{
    int maskedCount = 0;
    for (const std::string password :
         {"QQ", "\"QQ QQ\"", "QQ QQ", "QQ\tQQ  QQ", "\"QQ\"QQ \"QQ", "QQ\\\"QQ", "Q\\ Q", " QQ", "\"", "QQ /QQ QQ",
          "/QQ /Q=Q", "QQ=QQ", "QQ\r\nQQ", "QQ\n26/11/21 08:41:36: TRACE: QQ", "QQ authentication schemes: QQ",
          "/password=QQ QQ", "QQ password: QQ", "QQ {\"ci\":QQ"}) {
        for (const std::string options : {"", " /domain=d"}) {
            const std::string log =
                LogOfOptions("/server=s /port=1 /username=u /PassWord=" + password + options + " /hcmode=periodic");
            const RunLog read = Read(log);
            ASSERT_EQ(read.runs.size(), 2u) << password;
            for (const auto& run : read.runs) {
                const std::string shown = RunBlock(run, 1, 2) + RunJson(run, 1).dump();
                EXPECT_EQ(shown.find('Q'), std::string::npos) << password << '\n' << shown;
                maskedCount += shown.find("***") != std::string::npos;
            }
        }
    }
    EXPECT_GT(maskedCount, 50);
}

TEST(RunLog, KeepsTheLatestOfMoreThanThereIsRoomForAndSaysSo)
{
    const std::string run = "TRACE: Entering GetConfig\n";
    std::string log;
    for (int count = 0; count < 1000; ++count) {
        log += run + " WARN: " + std::string(2000, 'x') + '\n';
    }
    const RunLog all = Read(log), last = Read(log, 3);
    ASSERT_EQ(all.problems.Texts().size(), 1u);
    EXPECT_EQ(all.count, 1000u);
    EXPECT_NEAR(static_cast<double>(all.runs.size()), 360, 160);
    EXPECT_EQ(all.runs.back().lastLine, 2000u);
    EXPECT_TRUE(last.problems.Texts().empty() && last.count == 1000 && last.runs.size() == 3);
    const RunLog one = Read(std::regex_replace(log, std::regex(run), "ERROR: x\n"));
    ASSERT_EQ(one.runs.size(), 1u);
    EXPECT_NE(one.problems.Texts().at(0).find("of its arguments and events are left out"), std::string::npos);
    EXPECT_NE(one.runs[0].outcome.find("1000 warnings, 1000 errors"), std::string::npos) << one.runs[0].outcome;
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
        {asked + "TRACE: /delaypostdat waiting for 1\n", "sent (after /delaypostdat waiting for 1): the run"},
        {sent + "ERROR: Error: bad\n", "was delivered directly; the run ended early, with exit code 1: bad; "},
        {std::regex_replace("TRACE: Sending: " + RenderHealthRecord({}) + '\n' + sent, std::regex("\"mode\": 0"),
                            "\"mode\": 259"),
         "The pulse was delivered"},
        {detected + "p:8080\n" + sent, "The pulse was delivered through the detected proxy p:8080; "},
        {"TRACE: CHTTPProxyManager::InitConfig: setting current session type to NamedSessionProxy\n" + sent,
         "given on the command"},
        {" WARN: HttpConnection::Query: Using proxy fallback\n" + sent, "directly, after the proxy could not be rea"},
        {failed + "status: 407\n" + sent, "not delivered: the proxy wants credentials, or refused those it got (Send"},
        {"ERROR: C::S: " + std::string(texts::kProxyDidNotBuildTunnel) + "403.\n" + failed + "status: 403\n" + sent,
         "did not let the request"},
        {"ERROR: A: ERROR_WINHTTP_RESEND_REQUEST 12032\n WARN: Unable to parse certificate data from connection: X\n" +
             sent,
         "was delivered directly; 0 warnings, 0 errors."},
        {failed + "error: ERROR_WINHTTP_RESEND_REQUEST 12032\n" + sent, "one logon step after the other"},
        {"ERROR: Initialise failed: R.\nERROR: Send telemetry failed: http not initialised\n", "initialised; R.); "},
        {"ERROR: C::S: " + std::string(texts::kChainTrustedButNotPinned) + '\n' + failed + "error: X 12175\n",
         "most likely an inspecting proxy's"},
        {sending, "The log ends inside RESTTelemetry::Send: the run was stopped there, or is still under way; "},
        {"ERROR: Error: StopLogging FAILED!!: 5\n" + sent, "The pulse was delivered directly; 0 warnings, 1 error."},
        {"ERROR: Error: bad\n", "The run ended early, with exit code 1: bad; "},
    };
    for (const auto& [log, outcome] : kCases) {
        const auto runs = Read(log).runs;
        EXPECT_NE(runs.at(0).outcome.find(outcome), std::string::npos) << runs.at(0).outcome;
    }
}

} // namespace
} // namespace vantor::inspect
