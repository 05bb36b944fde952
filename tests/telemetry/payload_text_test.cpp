#include "telemetry/payload_text.h"
#include "proxy/config/proxy_settings.h"
#include "telemetry/request/pem.h"

#include <gmock/gmock.h>

namespace vantor {
namespace {

using testing::HasSubstr;

TEST(PayloadText, MembersThatComeAndGo)
{
    ClientIdentification client = {.affid = "0",
                                   .cid = "C-1",
                                   .cliid = "L-2",
                                   .xpoid = "X-3",
                                   .prn = "VANTor-EPV",
                                   .pv = "1.0.14",
                                   .rid = "-42",
                                   .readOnlyMarker = "0",
                                   .sdkv = "VXCore REST Client"};
    EXPECT_EQ(CiSectionText(client), R"({"ci":{"affid":"0","cid":"C-1","cliid":"L-2","xpoid":"X-3","pev":1.2,)"
                                     R"("prn":"VANTor-EPV","pv":"1.0.14","rid":-42,"sdkv":"VXCore REST Client"})");
    client.xpoid = "0";
    client.readOnlyMarker = "1";
    client.sdkv.reset();
    EXPECT_EQ(CiSectionText(client), R"({"ci":{"affid":"0","cid":"C-1","cliid":"L-2","pev":1.2,"prn":"VANTor-EPV",)"
                                     R"("pv":"1.0.14","rid":-42,"ro":true,"sdkv":"<null>"})");
    client.xpoid = "";
    client.readOnlyMarker = "true";
    EXPECT_THAT(CiSectionText(client), testing::AllOf(HasSubstr(R"(,"xpoid":"",)"), Not(HasSubstr("\"ro\""))));
}

TEST(Pem, TakesWhatStandsBetweenTheMarkers)
{
    const std::string begin = "-----BEGIN CERTIFICATE-----";
    const std::string end = "-----END CERTIFICATE-----";
    using Parts = std::vector<std::string_view>;
    EXPECT_EQ(SplitPem("text" + begin + "A" + end + "more" + begin + "B" + end), (Parts{"A", "B"}));
    EXPECT_EQ(SplitPem(begin + "cut off"), Parts{});
    EXPECT_EQ(SplitPem(end + begin + end), Parts{""});
    EXPECT_EQ(SplitPem(""), Parts{});
}

TEST(ProxySettings, Address)
{
    const std::pair<const char*, const char*> kCases[] = {
        {"proxy.corp", "proxy.corp:8080"},
        {"10.0.0.1", "10.0.0.1:8080"},
        {"fe80::1", "[fe80::1]:8080"},
        {"[fe80::1]", "[fe80::1]:8080"},
        {"http://proxy.corp", "http://proxy.corp:8080"},
        {"https://proxy.corp", "https://proxy.corp:8080"},
    };
    for (const auto& [server, address] : kCases) {
        EXPECT_EQ(ProxyAddress({.server = server, .port = 8080}), address);
    }
    EXPECT_TRUE(HasExplicitProxy({.server = "s", .port = 1}));
    EXPECT_FALSE(HasExplicitProxy({.server = "s"}));
    EXPECT_FALSE(HasExplicitProxy({.port = 1}));
}

TEST(ProxySettings, UserName)
{
    const std::pair<RunConfig, const char*> kCases[] = {
        {{.username = "me"}, "me"},
        {{.username = "me", .domain = "D"}, "D\\me"},
        {{.username = "E\\me", .domain = "D"}, "E\\me"},
        {{.username = "me@corp", .domain = "D"}, "me@corp"},
        {{.domain = "D", .principal = "host/x"}, "D\\host/x"},
        {{.username = "me", .principal = "other"}, "me"},
        {{.domain = "D"}, ""},
    };
    for (const auto& [config, name] : kCases) {
        EXPECT_EQ(ProxyUserName(config), name);
    }
}

} // namespace
} // namespace vantor
