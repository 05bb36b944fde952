#include "inspect/inspect_command.h"

#include "inspect/sample_pulse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace vantor::inspect {
namespace {

struct Result {
    int exitCode;
    std::string output;
    std::string errors;
};

Result Inspect(const std::string& text, const std::vector<std::string>& arguments = {})
{
    std::istringstream input(text);
    std::ostringstream output;
    std::ostringstream errors;
    const int exitCode = RunInspect(arguments, input, output, errors);
    return {exitCode, output.str(), errors.str()};
}

TEST(InspectCommand, FindsOutWhatItGets)
{
    const std::string report = kPostUpdateReport;
    const std::string body = SampleBody();
    const std::string line = Inspect(body, {"--json"}).output;
    const std::pair<std::string, int> kCases[] = {
        {"\r\n" + report.substr(0, 20) + "\r\n" + report.substr(20) + "\r\n", 1},
        {"\xEF\xBB\xBF" + body + "\r\n\r\n" + body, 2},
        {"{\n" + body.substr(1), 1},
        {line + line + body, 3},
    };
    for (const auto& [text, count] : kCases) {
        const Result result = Inspect(text, {"--json"});
        EXPECT_EQ(result.exitCode, 0) << text << result.errors;
        EXPECT_EQ(std::ranges::count(result.output, '\n'), count) << text;
        EXPECT_NE(Inspect(text).output.find("pulse postdatupdate\n"), std::string::npos);
    }
    EXPECT_EQ(Inspect(line + line, {"--json", "--last", "1"}).output, line);
}

TEST(InspectCommand, SaysWhatIsMalformedAndGoesOn)
{
    const std::string body = SampleBody();
    const std::pair<std::string, std::string> kCases[] = {
        {" \r\n", "there is nothing in it"},
        {"\xFF\xFE{", "the text is UTF-16, as PowerShell's \">\" writes it; save it as UTF-8 or ASCII"},
        {"\xEF\xBB\xBF"
         "DgI\x1B",
         R"(this is no log, no JSON and no Base64 report: byte 7 is "\x1B")"},
        {"DgIK", "the record has 3 of 46 bytes"},
        {body + "\n\n" + body.substr(0, 30), "line 3: not valid JSON at byte 31"},
        {body.substr(30) + "\n" + body, R"(line 1: the body does not begin with "{")"},
        {R"({"received":"now","report":"DgIK"})", R"("received" is not a time such as "2026-01-31T23:59:59Z")"},
        {R"({"report":)" + std::string(5000, '[') + std::string(5000, ']') + "}", "the JSON is nested too deeply"},
        {"TRACE: {\"ci\":1}", R"(line 1: the logged body is no pulse: the body: "ci" is not an object)"},
    };
    for (const auto& [text, message] : kCases) {
        const Result result = Inspect(text);
        EXPECT_EQ(result.exitCode, 1) << message;
        EXPECT_EQ(result.errors, "vantor-inspect: standard input: " + message + '\n');
    }
    EXPECT_NE(Inspect(body + "\n{}").output, "");
    EXPECT_EQ(Inspect("", {"/nowhere/\x1B"}).errors, "vantor-inspect: /nowhere/\\x1B: it cannot be opened\n");
    EXPECT_EQ(Inspect("", {"--lost"}).exitCode, 2);
    EXPECT_EQ(Inspect("", {"--diff", "--last", "1"}).exitCode, 2);
    EXPECT_EQ(Inspect("", {"--fleet", "--diff"}).exitCode, 2);
    EXPECT_EQ(Inspect("", {"--csv"}).exitCode, 2);
    EXPECT_EQ(
        Inspect(body, {"--fleet", "--html", "/nowhere/page"}).errors,
        "vantor-inspect: malformed lines: 1; the first: standard input: line 1: it is not known when the pulse was "
        "received\nvantor-inspect: /nowhere/page: it cannot be written\n");
}

TEST(InspectCommand, ShowsWhatChanged)
{
    const std::string before = SampleBody(kEarlyReport);
    std::string after = SampleBody(kLaterReport);
    after.replace(after.find("c-1"), 3, "c-\\u001b");
    after.replace(after.find("-5"), 2, "77");
    const std::string shown = Inspect(before + '\n' + before + '\n' + after, {"--diff"}).output;
    EXPECT_EQ(shown, "pulse predatupdate\n  -> pulse predatupdate\n"
                     "  client\n    cid                     c-1 -> c-\\x1B\n"
                     "  record\n    os_build                19045 -> 19046\n"
                     "    bitfield_test_results   268507136 -> 9223372036854847488\n"
                     "  results\n    ipv6                    1 -> 0\n"
                     "  text items\n    - A\n    + C\n");
    const std::string json = Inspect(before + '\n' + after, {"--diff", "--json"}).output;
    EXPECT_EQ(
        Inspect("TRACE: x", {"--diff", "-", "/nowhere"}).errors,
        "vantor-inspect: standard input: there is no pulse in it\nvantor-inspect: /nowhere: it cannot be opened\n");
    EXPECT_NE(json.find(R"("ipv6":["1","0"]},"items":{"gone":["A"],"new":["C"]}})"), std::string::npos) << json;
}

} // namespace
} // namespace vantor::inspect
