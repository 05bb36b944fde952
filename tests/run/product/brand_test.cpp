#include "run/product/brand.h"

#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(Brand, ConsumerProduct)
{
    constexpr wchar_t kConsumer[] = L"Software\\Vexora\\VSC";
    constexpr wchar_t kEngine[] = L"Software\\VxeAV";
    const std::wstring longest(30, L'x'); // 62 bytes with its terminator
    {
        ScratchRegistry registry;
        EXPECT_FALSE(IsConsumerProductInstalled());
        registry.Set(kEngine, L"VersionInfo", longest);
        EXPECT_TRUE(IsConsumerProductInstalled());
        registry.Create(kConsumer); // its own values decide as soon as this key is there
        EXPECT_FALSE(IsConsumerProductInstalled());
        registry.Set(kConsumer, L"MarketReleaseName", longest + L"x");
        EXPECT_FALSE(IsConsumerProductInstalled());
        registry.Set(kConsumer, L"MarketReleaseVer", L"1");
        EXPECT_TRUE(IsConsumerProductInstalled());
    }
    ScratchRegistry registry;
    registry.Set(kConsumer, L"MarketReleaseName", L"");
    EXPECT_TRUE(IsConsumerProductInstalled());
}

} // namespace vantor
