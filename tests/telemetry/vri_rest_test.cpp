#include "telemetry/vri_rest.h"

#include "support/log_capture.h"
#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

constexpr wchar_t kIdentifiers[] = L"Software\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL";

TEST(VriRest, ReportsAreBase64)
{
    ScratchRegistry registry;
    const std::vector<std::uint8_t> report = {0xFB, 0xFF, 0x00, 0x10};
    EXPECT_NE(VRIREST().CreatePostData(report).find(R"("rpt":{"vantor":"+/8AEA=="}})"), std::string::npos);
    EXPECT_NE(VRIREST().CreatePostData({}).find(R"("rpt":{"vantor":""}})"), std::string::npos);
    EXPECT_EQ(VRIREST().ServiceHost(), L"vri.vexora.example");
}

TEST(VriRest, EveryRequestHasAnIdOfItsOwn)
{
    EXPECT_NE(VRIREST().CreateCiSection(), VRIREST().CreateCiSection());
}

TEST(VriRest, WithoutARandomProviderTheIdIsZero)
{
    const ScratchRegistry registry; // names no provider
    const LogCapture log;
    EXPECT_NE(VRIREST().CreateCiSection().find(R"("rid":0,)"), std::string::npos);
    EXPECT_TRUE(std::ranges::any_of(log.Lines(), [](const std::string& line) {
        return line.starts_with("ERROR: GetRandomNextId, Query failed. WinHTTP error: ");
    }));
}

TEST(VriRest, IdentifiersComeFromTheRegistry)
{
    ScratchRegistry registry;
    registry.Set(kIdentifiers, L"customerid", L"C\u00FC");
    registry.Set(kIdentifiers, L"clientid", std::wstring(254, L'l'));
    registry.Set(kIdentifiers, L"xpoguid", L"0");
    registry.Set(kIdentifiers, L"vriuseipv6", DWORD{1});
    registry.Set(L"Software\\Vexora\\VSC", L"MarketReleaseName", L"Home");
    VRIREST payload;
    payload.SetReadOnly();
    const std::string ci = payload.CreateCiSection();
    EXPECT_NE(ci.find("\"cid\":\"C\xC3\xBC\",\"cliid\":\"" + std::string(254, 'l') + "\",\"pev\":1.2"),
              std::string::npos)
        << ci;
    EXPECT_NE(ci.find(R"("prn":"VANTor-HSQ")"), std::string::npos);
    EXPECT_NE(ci.find(R"(,"ro":true,)"), std::string::npos);
    EXPECT_EQ(payload.ServiceHost(), L"vri6.vexora.example");

    registry.Set(kIdentifiers, L"clientid", std::wstring(255, L'l')); // no room for this one
    EXPECT_NE(VRIREST().CreateCiSection().find(R"("cliid":"")"), std::string::npos);
}

} // namespace
} // namespace vantor
