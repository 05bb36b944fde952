#include "proxy/calls/name_resolver.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(NameResolver, TheAddressBehindAnAliasIsTaken)
{
    DNS_RECORD address{.wType = DNS_TYPE_A, .Data = {.A = {7}}};
    const DNS_RECORD alias{.pNext = &address, .wType = DNS_TYPE_CNAME};
    EXPECT_EQ(FirstAddress(&alias), 7u);
    EXPECT_EQ(WindowsNameResolver().Missing(), "");
}

} // namespace vantor
