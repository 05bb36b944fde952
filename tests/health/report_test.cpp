#include "health/report.h"
#include "health/content_version.h"
#include "health/dotted_version.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

HealthRecord PreUpdateRecord()
{
    HealthRecord record;
    record.mode = 1;
    return record;
}

std::string DecodeFailure(const ReportBytes& bytes)
{
    try {
        DecodeReport(bytes);
    } catch (const ReportError& error) {
        return error.what();
    }
    return {};
}

TEST(Report, CarriesTheItemsBehindTheirLength)
{
    const std::vector<std::string> items = {"ab", "", "c"};
    const ReportBytes bytes = EncodeReport(PreUpdateRecord(), BuildTextBlock(items));
    const ReportBytes tail(bytes.begin() + 46, bytes.end());
    EXPECT_EQ(tail, (ReportBytes{6, 0, 'a', 'b', 0, 0, 'c', 0}));
    EXPECT_EQ(DecodeReport(bytes).textItems, items);
    EXPECT_EQ(EncodeReport(PreUpdateRecord(), BuildTextBlock({})).size(), 48u);
    EXPECT_EQ(EncodeReport(HealthRecord()).size(), 46u);
}

TEST(Report, LeavesOutWhatWouldNotFitAndEndsItemsAtTheirFirstNul)
{
    const std::string filling(kReportLimitBytes - 46 - 2 - 1 - 2, 'x');
    const std::vector<std::string> items = {filling, "too long", std::string("a\0b", 3)};
    const TextBlock block = BuildTextBlock(items);
    EXPECT_EQ(block.leftOut, std::vector<std::string>{"too long"});
    const ReportBytes bytes = EncodeReport(PreUpdateRecord(), block);
    EXPECT_EQ(bytes.size(), kReportLimitBytes);
    EXPECT_EQ(DecodeReport(bytes).textItems, (std::vector<std::string>{filling, "a"}));
}

TEST(Report, DecodingSaysWhatIsWrong)
{
    const ReportBytes plain = EncodeReport(HealthRecord());
    const std::vector<std::string> items = {"item"};
    const ReportBytes withBlock = EncodeReport(PreUpdateRecord(), BuildTextBlock(items));

    EXPECT_EQ(DecodeFailure({}), "the record has 0 of 46 bytes");
    EXPECT_EQ(DecodeFailure(ReportBytes(plain.begin(), plain.end() - 1)), "the record has 45 of 46 bytes");

    ReportBytes bytes = plain;
    bytes[0] = 13;
    EXPECT_EQ(DecodeFailure(bytes), "layout version 13 instead of 14");

    bytes = plain;
    bytes.push_back(0);
    EXPECT_EQ(DecodeFailure(bytes), "1 bytes follow a record that has no text block");

    EXPECT_EQ(DecodeFailure(ReportBytes(withBlock.begin(), withBlock.begin() + 47)),
              "the text block of a pre-update record is missing");
    EXPECT_EQ(DecodeFailure(ReportBytes(withBlock.begin(), withBlock.end() - 1)),
              "the text block has 4 bytes, its length says 5");
    bytes = withBlock;
    bytes.back() = 'x';
    EXPECT_EQ(DecodeFailure(bytes), "the last text item has no end");

    bytes = withBlock;
    bytes.resize(kReportLimitBytes + 1);
    EXPECT_EQ(DecodeFailure(bytes), "the report has 14337 bytes, at most 14336 are allowed");
}

TEST(DottedVersion, DigitsAndSingleDotsOnly)
{
    using Parts = std::vector<std::uint16_t>;
    EXPECT_EQ(ParseDottedVersion("20.5"), (Parts{20, 5}));
    EXPECT_EQ(ParseDottedVersion("7"), Parts{7});
    EXPECT_EQ(ParseDottedVersion("64.1.90.12345.7"), (Parts{64, 1, 90, 12345, 7}));
    EXPECT_EQ(ParseDottedVersion("65535.65536.65537"), (Parts{65535, 0, 1}));
    EXPECT_EQ(ParseDottedVersion("10000000000000000000000000000000000001"), Parts{1});
    for (const char* const text : {"", ".", ".5", "5.", "1..2", "1.2 ", "-1.2", "1.2a", "1,2"}) {
        EXPECT_EQ(ParseDottedVersion(text), std::nullopt) << text;
    }
}

TEST(ContentVersion, TwoPartsInThreeToFifteenCharacters)
{
    const auto version = ParseContentVersion("1234.5");
    ASSERT_TRUE(version);
    EXPECT_EQ(version->major, 1234);
    EXPECT_EQ(version->minor, 5);
    EXPECT_TRUE(ParseContentVersion("1.2"));
    EXPECT_TRUE(ParseContentVersion("0000000001.0001"));
    for (const char* const text : {"1234", ".5", "5.", "1.2.3", "12a.4", "00000000001.0001", "", "1..2"}) {
        EXPECT_FALSE(ParseContentVersion(text)) << text;
    }
}

} // namespace
} // namespace vantor
