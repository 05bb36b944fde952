#include "telemetry/request/pem.h"

#include <gtest/gtest.h>

namespace vantor {

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

} // namespace vantor
