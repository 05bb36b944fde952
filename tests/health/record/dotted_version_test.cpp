#include "health/record/dotted_version.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(DottedVersion, DigitsAndSingleDotsOnly)
{
    using Parts = std::vector<std::uint16_t>;
    EXPECT_EQ(ParseDottedVersion("20.5"), (Parts{20, 5}));
    EXPECT_EQ(ParseDottedVersion("7"), Parts{7});
    EXPECT_EQ(ParseDottedVersion("65535.65536.65537"), (Parts{65535, 0, 1}));
    EXPECT_EQ(ParseDottedVersion("10000000000000000000000000000000000001"), Parts{1});
    for (const char* const text : {"", ".", ".5", "5.", "1..2", "1.2 ", "-1.2", "1.2a", "1,2"}) {
        EXPECT_EQ(ParseDottedVersion(text), std::nullopt) << text;
    }
}

} // namespace vantor
