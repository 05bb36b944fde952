#include "health/record/content_version.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(ContentVersion, TwoPartsInThreeToFifteenCharacters)
{
    const auto version = ParseContentVersion("1234.5");
    EXPECT_TRUE(version && version->major == 1234 && version->minor == 5);
    EXPECT_TRUE(ParseContentVersion("1.2"));
    EXPECT_TRUE(ParseContentVersion("0000000001.0001"));
    for (const char* const text : {"1234", ".5", "5.", "1.2.3", "12a.4", "00000000001.0001", "", "1..2"}) {
        EXPECT_FALSE(ParseContentVersion(text)) << text;
    }
}

} // namespace vantor
