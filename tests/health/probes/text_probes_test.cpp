#include "health/probes/text_probes.h"

#include "support/log_capture.h"
#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

TEST(TextProbes, EachReadableValueIsAnItem)
{
    const std::wstring adapters = L"SYSTEM\\ControlSet001\\Control\\Class\\{4d36e968-e325-11ce-bfc1-08002be10318}\\";
    const std::string logged(adapters.begin(), adapters.end());
    ScratchRegistry registry;
    LogCapture log;
    EXPECT_EQ(CollectTextItems().size(), 5u); // "Unavailable", but for the language
    EXPECT_TRUE(log.Has(" WARN: GetProductInfo returned error"));
    EXPECT_TRUE(log.Has(" WARN: GetCPUInfo returned error"));
    EXPECT_TRUE(log.Has(" WARN: GetGPUInfo: Failed to open " + logged));

    registry.Set(L"Software\\Vexora\\Endpoint\\AV", L"ProductVersion", L"10.7.0");
    registry.Set(L"Software\\VxeAV", L"VersionInfo", L"engine");
    registry.Set(L"Software\\Vexora\\VSC", L"MarketReleaseVer", L"16.0");
    registry.Set(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"Identifier", REG_SZ,
                 ScratchRegistry::Bytes(L"Family 6"));
    registry.Set(L"Software\\Vexora\\Endpoint\\ATP", L"BuildNumber", L"4321\u0416");
    registry.Set((adapters + L"0000").c_str(), L"DriverDesc", L"First");
    registry.Create((adapters + L"0001").c_str());
    registry.Set((adapters + L"0002").c_str(), L"DriverDesc", L"Second");
    TextItems items = CollectTextItems();
    ASSERT_EQ(items.size(), 8u);
    items.erase(items.begin() + 4); // the language is the machine's
    EXPECT_EQ(items, (TextItems{"10.7.0", "engine", "HSQ_16.0", "Family 6", "4321\xD0\x96", "First", "Second"}));
    EXPECT_TRUE(log.Has("TRACE: GetProductInfo: 10.7.0, engine, HSQ_16.0"));
    EXPECT_TRUE(log.Has(" WARN: GetGPUInfo: RegQueryValueExW Failed to query 'DriverDesc' in " + logged + "0001"));
}

} // namespace
} // namespace vantor
