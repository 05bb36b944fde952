#include "telemetry/payload_text.h"

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

} // namespace
} // namespace vantor
