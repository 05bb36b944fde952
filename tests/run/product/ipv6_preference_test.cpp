#include "run/product/ipv6_preference.h"

#include "support/scratch_registry.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(Ipv6Preference, AnyNumberButZero)
{
    constexpr wchar_t kKey[] = L"SOFTWARE\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL";
    ScratchRegistry registry;
    EXPECT_FALSE(PrefersIpv6());
    registry.Set(kKey, L"vriuseipv6", DWORD{0});
    EXPECT_FALSE(PrefersIpv6());
    registry.Set(kKey, L"vriuseipv6", DWORD{0x80000000});
    EXPECT_TRUE(PrefersIpv6());
}

} // namespace vantor
