#include "inspect/pulse_decoder.h"

#include "inspect/pulse_text.h"
#include "inspect/sample_pulse.h"

#include <gtest/gtest.h>

namespace vantor::inspect {
namespace {

/// A record of predatupdate with three text items.
constexpr char kRawItemsReport[] = "DgEKAAAAAABlSgEBAgMEAAX/////AQAOKwAAAAAAAAAMAAAYARAAAAAAAABkhiMAU2hpZWxk"
                                   "IDEwAGV2aWwgG1szMW0g/yBjYWbDqQBIU1FfMQA=";

/// The sample body with its first `from` replaced.
std::string Altered(std::string_view from, std::string_view to)
{
    std::string body = SampleBody();
    return body.replace(body.find(from), from.size(), to);
}

std::string Judge(std::string_view body)
{
    try {
        return DecodePulse(body).client.dump();
    } catch (const PulseError& error) {
        return error.what();
    }
}

TEST(PulseDecoder, TakesWhatAClientWrites)
{
    EXPECT_EQ(Judge(SampleBody()),
              R"({"affid":"0","cid":"c-1","cliid":"h-1","xpoid":"x-1","pev":1.2,"prn":"VANTor-EPV",)"
              R"("pv":"1.0.14","rid":-5,"ro":true,"sdkv":"VXCore REST Client"})");
    EXPECT_EQ(Judge(Altered(R"("xpoid":"x-1",)", ""))[0], '{');
    EXPECT_EQ(Judge(Altered(R"("ro":true,)", ""))[0], '{');
    EXPECT_EQ(Judge(Altered("-5", "-9223372036854775808"))[0], '{');
}

TEST(PulseDecoder, SaysWhatIsWrong)
{
    const std::string noObject = R"(the body does not begin with "{")";
    const std::string noBase64 = R"("rpt": the report is not strict Base64)";
    const std::string noRid = R"("ci": "rid" is not an integer of 64 bits with sign)";
    const std::pair<std::string, std::string> kCases[] = {
        {"\xEF\xBB\xBF" + SampleBody(), noObject},
        {SampleBody().substr(0, 30), "not valid JSON at byte 31"},
        {SampleBody() + "x", "not valid JSON at byte " + std::to_string(SampleBody().size() + 1)},
        {Altered("}}", R"(},"more":1})"), R"(the body: "more" stands where the end belongs)"},
        {Altered(R"("cid")", R"("affid")"), R"("ci": "affid" stands where "cid" belongs)"},
        {Altered(R"("xpoid")", R"("\u001b[2J")"), R"("ci": "\x1B[2J" stands where "pev" belongs)"},
        {Altered(R"(,"sdkv":"VXCore REST Client")", ""), R"("ci": "sdkv" is missing)"},
        {Altered(R"("h-1")", "null"), R"("ci": "cliid" is not a string)"},
        {Altered(R"("c-1")", std::string(100'000, '[')), R"("ci": "cid" is not a string)"},
        {Altered("1.2,", "1.20,"), R"("ci": "pev" is not the number 1.2)"},
        {Altered("-5", "5.0"), noRid},
        {Altered("-5", "9223372036854775808"), noRid},
        {Altered("true", "false"), R"("ci": "ro" is not true)"},
        {SampleBody("DgI"), noBase64},
        {SampleBody("DgJ="), noBase64}, // bits left over
        {SampleBody("Dg=I"), noBase64},
        {SampleBody("DgI\\nCgoK"), noBase64},
        {SampleBody("DgIK"), R"("rpt": the record has 3 of 46 bytes)"},
    };
    for (const auto& [body, reason] : kCases) {
        EXPECT_EQ(Judge(body), reason) << body.substr(0, 300);
    }
}

TEST(PulseText, ShowsFieldsWithTheirMeaningAndNothingRaw)
{
    const Pulse pulse = DecodePulse(SampleBody(kRawItemsReport));
    const std::string block = PulseBlock({std::chrono::sys_seconds(), pulse});
    for (const char* line :
         {"pulse received 1970-01-01 00:00:00 UTC, predatupdate\n", "    cid                     c-1\n",
          "    dat_minor               65535       detection content, minor version: unknown\n",
          "    msedge                  bit 11      msedge.exe is running\n    vxshield ",
          "    evil \\x1B[31m \\xFF caf\\xC3\\xA9\n"}) {
        EXPECT_NE(block.find(line), std::string::npos) << line << "is missing in\n" << block;
    }
    const auto json = nlohmann::json::parse(JsonLine(PulseJson({{}, pulse})));
    EXPECT_EQ(json["record"]["bitfield_test_results"], 0x10011800);
    EXPECT_TRUE(json["bits"]["ipv6"] == true && json["bits"]["chrome"] == false);
    EXPECT_EQ(json["items"][1], "evil \x1B[31m \xEF\xBF\xBD caf\xC3\xA9");
    EXPECT_EQ(json["report"], kRawItemsReport);
}

} // namespace
} // namespace vantor::inspect
