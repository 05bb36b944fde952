// Whole pulses: the built program under Wine against the local receiver.
#include "e2e/local_receiver.h"
#include "e2e/program.h"
#include "e2e/relay.h"
#include "support/option_rows.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <thread>

namespace vantor::e2e {
namespace {

using receiver::Behaviour;

/// The request id is the only random part of a body.
std::string WithoutId(const std::string& body)
{
    return std::regex_replace(body, std::regex(R"("rid":-?[0-9]+,)"), "\"rid\":RID,");
}

bool IsFailure(const std::string& line)
{
    return line.starts_with("ERROR: RESTTelemetry::Send: Send telemetry failed. ");
}

constexpr char kCiSection[] = R"({"ci":{"affid":"0","cid":"","cliid":"","xpoid":"","pev":1.2,"prn":"VANTor-EPV",)"
                              R"("pv":"<version>","rid":RID,"sdkv":"VXCore REST Client"},"rpt":{"vantor":")";

class PulseTest : public ::testing::Test {
protected:
    void SetUp() override { SetRegistry(); }

    static Outcome RunPeriodic() { return RunProgram({"/hcmode=periodic"}); }
};

TEST_F(PulseTest, EachModePostsItsReport)
{
    // The record on Windows 10 build 18362 without a product. A pre-update report goes on with the text items
    // "Unavailable", "Unavailable", "0x0409", "Unavailable" and "Unavailable"; a run after an update has just written
    // the compatibility value that it reports.
    const struct {
        std::vector<std::string> arguments;
        std::string report;
    } kCases[] = {
        {{"/hcmode=predatupdate", "/datver=5230.7"},
         "DgEKAAAAAAC6RwH///////9uFAcA<version bytes>AAAAAAAAAAAAAQAAAAAAAABkhjcAVW5hdmFpbGFibGUAVW5hdmFpbGFibGUAMHgw"
         "NDA5AFVuYXZhaWxhYmxlAFVuYXZhaWxhYmxlAA=="},
        {{"/hcmode=postdatupdate", "/datupdatestatus=-3"},
         "DgIKAAAAAAC6RwH/////////////<version bytes>AAAAAAAAAAAAAgAAAAAAAABkhg=="},
        {{"/hcmode=periodic"}, "DgMKAAAAAAC6RwH///////8AAAAA<version bytes>AAAAAAAAAAAAAQAAAAAAAABkhg=="},
    };
    LocalReceiver receiver;
    for (const auto& [arguments, report] : kCases) {
        SCOPED_TRACE(arguments.front());
        SetRegistry();
        receiver.Forget();
        const Outcome outcome = RunProgram(arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.standardOutput + outcome.standardError, "");
        EXPECT_EQ(outcome.Logged("TRACE: Entering DoScheduling"), arguments.front() != "/hcmode=postdatupdate");
        const auto requests = receiver.Requests();
        ASSERT_EQ(requests.size(), 1u);
        EXPECT_EQ(requests[0].refusal, "");
        EXPECT_EQ(WithoutVersion(WithoutId(requests[0].body)), kCiSection + report + "\"}}");
        EXPECT_EQ(requests[0].method + requests[0].target, "POST/1");
        auto headers = requests[0].headers; // cpp-httplib keeps them in an order of its release's own
        std::ranges::sort(headers);
        EXPECT_EQ(headers, (std::vector<std::pair<std::string, std::string>>{
                               {"Connection", "Keep-Alive"},
                               {"Content-Length", std::to_string(requests[0].body.size())},
                               {"Host", "localhost:8000"},
                               {"User-Agent", "VXCore REST Client"},
                           }));
    }
}

TEST_F(PulseTest, TheLogOfAPeriodicRunTellsEveryStepInOrder)
{
    LocalReceiver receiver;
    ExpectLog(RunPeriodic(), "periodic.log");
}

TEST_F(PulseTest, OnlyAPinnedIssuersServerIsTrusted)
{
    const struct {
        const char* certificate;
        bool accepted;
        const char* line;
        Codes codes{""};
    } kCases[] = {
        {"server-b", true, "TRACE: HttpRequest::ValidateServerCert: Verified: 1"},
        {"server-expired", false, "ERROR: RESTTelemetry::Send: Send telemetry failed. WinHTTP error: ", kNoTls},
    };
    for (const auto& [certificate, accepted, line, codes] : kCases) {
        SCOPED_TRACE(certificate);
        LocalReceiver receiver(certificate);
        const Outcome outcome = RunPeriodic();
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_TRUE(outcome.Logged(line, codes));
        EXPECT_EQ(std::ranges::none_of(outcome.log, IsFailure), accepted);
    }
}

TEST_F(PulseTest, WhateverTheReplyTheRunEndsAndItsLogTells)
{
    using namespace receiver;
    const struct {
        Behaviour behaviour;
        std::string text; ///< of one line of the log
        Codes codes{""};  ///< one of which follows
    } kCases[] = {
        {{.bodyBytes = 1024 * 1024}, "Response data: " + std::string(1024 * 1024, 'x')},
        {{.bodyBytes = 70000, .framing = Framing::chunked}, "Response data: " + std::string(70000, 'x')},
        {{.bodyBytes = 0}, "Response data: "},
        {{.status = 204}, "Send telemetry failed. WinHTTP status: 204"},
        {{.status = 302, .headers = {{"Location", "https://localhost:1/"}}}, "failed. WinHTTP status: 302"},
        {{.status = 307, .headers = {{"Location", "/1"}}}, "Send telemetry failed. WinHTTP status: 307"},
        {{.fault = CutBeforeAnswer()}, "WinHTTP error: ", kBrokenOff},
        {{.fault = CutBeforeAnswer{"HTTP/1.1 2"}}, "WinHTTP error: ", kBrokenOff},
        {{.fault = CutBeforeAnswer{"HTTP/1.1 200 OK\r\nContent-Le"}}, "Response data: "}, // nor does it miss a header
        {{.fault = CutBeforeAnswer{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n1"}},
         "Response data: x"},
        {{.bodyBytes = 1000, .fault = StalledBody{10}}, "Send telemetry failed. WinHTTP error: ", kSilent},
        {{.bodyBytes = 1000, .fault = CutInBody()}, "Response data: x"}, // Wine takes a short body for whole
        {{.bodyBytes = 1000, .framing = Framing::chunked, .fault = CutInBody()}, "Response data: x"},
        {{.bodyBytes = 1000, .framing = Framing::chunked, .fault = EndlessBody()},
         " WARN: HttpRequest::ReadPayload: The reply is cut after"},
        {{.bodyBytes = 1000, .framing = Framing::connectionEnd, .fault = EndlessBody()},
         "The reply is cut after 1048000 bytes"},
        {{.bodyBytes = 9, .fault = SlowBody{std::chrono::milliseconds(100)}}, "Response data: xxxxxxxxx"},
    };
    LocalReceiver receiver;
    for (const auto& [behaviour, text, codes] : kCases) {
        SCOPED_TRACE(text.substr(0, 80));
        const auto tells = [&](const std::string& line) {
            return std::ranges::any_of(codes, [&](const auto& code) { return line.find(text + code) != line.npos; });
        };
        receiver.Forget();
        receiver.SetBehaviour(behaviour);
        const Outcome outcome = RunPeriodic();
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_TRUE(std::ranges::any_of(outcome.log, tells));
        EXPECT_EQ(outcome.log.back(), "TRACE: Leaving SendTelemetry");
        EXPECT_EQ(receiver.Pulses().size(), 1u); // nothing is sent twice
    }
}

TEST_F(PulseTest, WithoutAServerOneDirectAttemptFollowsAndTheRunEndsWell)
{
    const Outcome outcome = RunPeriodic();
    EXPECT_EQ(outcome.exitCode, 0);
    const std::string refused = "ERROR: HttpRequest::Send: HttpRequest::Send WinHttpSendRequest result "
                                "ERROR_WINHTTP_CANNOT_CONNECT 12029";
    EXPECT_EQ(std::count(outcome.log.begin(), outcome.log.end(), refused), 2);
    EXPECT_TRUE(outcome.Logged(" WARN: HttpConnection::Query: Using proxy fallback"));
    EXPECT_TRUE(outcome.Logged("ERROR: RESTTelemetry::Send: Send telemetry failed. WinHTTP error: "
                               "ERROR_WINHTTP_CANNOT_CONNECT 12029"));
    EXPECT_EQ(outcome.log.back(), "TRACE: Leaving SendTelemetry");
}

TEST_F(PulseTest, WhereverTheConnectionIsCutTheRunEndsAndSendsNothingTwice)
{
    LocalReceiver receiver("server-a", 0);
    Relay whole(8000, {receiver.Port()});
    EXPECT_EQ(RunPeriodic().exitCode, 0);
    whole.Stop();
    ASSERT_EQ(whole.Turns().size(), 4u); // greeting, key, request, end
    const std::size_t asked = *std::next(whole.Turns().begin(), 2), all = *whole.Turns().rbegin();
    std::set<std::size_t> cuts;
    for (const std::size_t turn : whole.Turns()) {
        cuts.insert({turn - 1, turn, turn + 40});
    }
    cuts.erase(cuts.upper_bound(all), cuts.end());
    for (const std::size_t cut : cuts) {
        SCOPED_TRACE(cut);
        receiver.Forget();
        Relay relay(8000, {receiver.Port()}, cut, cut < all && cut % 2 == 1);
        const Outcome outcome = RunPeriodic();
        relay.Stop();
        EXPECT_EQ(outcome.exitCode, 0); // a run of a minute is ended with another
        EXPECT_EQ(outcome.log.back(), "TRACE: Leaving SendTelemetry");
        EXPECT_EQ(std::ranges::any_of(outcome.log, IsFailure), cut < all);
        EXPECT_EQ(relay.Connections(), 1u); // it could be reached: no other way is tried, and nothing again
        EXPECT_EQ(receiver.Pulses().size(), cut > asked ? 1u : 0u);
    }
}

TEST_F(PulseTest, AServerThatBreaksOffTheHandshakeIsTriedOnce)
{
    httplib::Server server; // which takes the greeting of TLS for a bad request and hangs up
    Relay relay(8000, {static_cast<std::uint16_t>(server.bind_to_any_port("127.0.0.1"))});
    const std::jthread serving([&server] { server.listen_after_bind(); });
    const Outcome outcome = RunPeriodic();
    relay.Stop();
    server.stop();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.Logged("ERROR: RESTTelemetry::Send: Send telemetry failed. WinHTTP error: ", kNoTls));
    EXPECT_EQ(relay.Connections(), 1u);
}

TEST_F(PulseTest, CommandLinesEndAsTheirRulesSay)
{
    std::set<std::string> seen; // of each kind one is enough; the rest is the parser's own test
    for (const auto& [arguments, complaint] : OptionRows()) {
        // A valid line may ask for a run that the series does not have.
        if (arguments.find("count=3") != std::string::npos || !seen.insert(complaint).second) {
            continue;
        }
        SCOPED_TRACE(arguments);
        const Outcome outcome = RunProgram(Words(arguments));
        EXPECT_EQ(outcome.exitCode, complaint.empty() ? 0 : 1);
        EXPECT_EQ(outcome.standardError, complaint.empty() ? "" : "Error: " + complaint + "\r\n");
        EXPECT_EQ(outcome.log.empty(), !complaint.empty());
    }
    EXPECT_EQ(RunProgram({"/datver=" + std::string(32'000, 'x')}).exitCode, 0); // Windows' own limit is not far above

    LocalReceiver receiver;
    const Outcome help = RunProgram({"/hcmode=periodic", "/?"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.standardOutput.starts_with("usage: vantor.exe ")) << help.standardOutput;
    EXPECT_TRUE(help.log.empty());
    EXPECT_TRUE(receiver.Pulses().empty());
}

TEST_F(PulseTest, RunsInOneProcessLeaveItAsItWas)
{
    const auto log = ScratchFolder() / "run.log";
    const auto run = [&](const char* count, const char* apartment, const char* option) {
        return RunProgram(WindowsTree("tests/many_runs.exe"),
                          {count, apartment, "/hcmode=periodic", option, "/logfile=" + WindowsPath(log)}, log);
    };
    LocalReceiver receiver;
    const Outcome many = run("30", "", "/resttest");
    EXPECT_EQ(many.exitCode, 0); // S_OK: COM is not initialised
    ASSERT_EQ(receiver.Pulses().size(), 30u);
    EXPECT_TRUE(receiver.Pulses()[0].pulse.client.contains("ro"));
    std::istringstream text(many.standardOutput);
    const std::vector<int> handles(std::istream_iterator<int>(text), {}); // the next free one after each run
    ASSERT_EQ(handles.size(), 30u);
    EXPECT_LE(handles[29], handles[14]);
    EXPECT_TRUE(many.standardOutput.ends_with(" not found\r\n")) << "a DLL beside the program";
    EXPECT_EQ(run("1", "", "/periodicruncount=8").exitCode, 0); // which throws
    const Outcome other = run("1", "another", "/test");
    EXPECT_EQ(other.exitCode, 1); // S_FALSE: it is still initialised
    EXPECT_TRUE(other.Logged(" WARN: CoInitialize failed.") && other.log.back() == "TRACE: Leaving SendTelemetry");
}

TEST_F(PulseTest, TheLogPathComesFromSideFileThenRegistryThenArgument)
{
    const auto folder = ScratchFolder();
    const auto program = folder / "vantor.exe";
    std::filesystem::copy_file(WindowsTree("vantor.exe"), program);
    std::ofstream(folder / "vantor.txt") << "#/logfile=no\r\n/logfile=C:\\no.log\r\n/LOGFILE=no\n/logfile="
                                         << WindowsPath(folder / "side.log") << "\r\nend";

    Outcome outcome = RunProgram(program, {"/verbose"}, folder / "side.log");
    const std::string handling = "TRACE: Handling ", side = handling + "'/logfile' from config file.";
    outcome.log.resize(6);
    EXPECT_EQ(outcome.log, (std::vector<std::string>{"TRACE: Entering GetConfig", side, side,
                                                     handling + "argument " + WindowsPath(program),
                                                     handling + "argument /verbose", "TRACE: Leaving GetConfig"}));
    EXPECT_NE(outcome.standardOutput.find("TRACE: Leaving GetConfig\r\n"), std::string::npos);
    EXPECT_TRUE(outcome.standardOutput.ends_with("TRACE: Leaving DoScheduling\r\n"));

    const std::string path = Escaped(WindowsPath(folder / "registry.log"));
    SetRegistry("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vexora\\AVSolution\\DS\\DS]\n\"szVanTORLog\"=\"" + path + "\"\n");
    EXPECT_FALSE(RunProgram(program, {}, folder / "registry.log").log.empty());
    const auto foreign = folder / "\u00FC.log";
    EXPECT_FALSE(RunProgram(program, {"/logfile=" + WindowsPath(foreign)}, foreign).log.empty());
}

} // namespace
} // namespace vantor::e2e
