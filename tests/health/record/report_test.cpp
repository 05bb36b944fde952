#include "health/record/report.h"

#include <gmock/gmock.h>

namespace vantor {
namespace {

TEST(Report, CarriesTheItemsBehindTheirLength)
{
    const std::vector<std::string> items = {"ab", "", "c"};
    const ReportBytes bytes = EncodeReport({.mode = Mode::preUpdate}, BuildTextBlock(items));
    const ReportBytes tail(bytes.begin() + 46, bytes.end());
    EXPECT_EQ(tail, (ReportBytes{6, 0, 'a', 'b', 0, 0, 'c', 0}));
    EXPECT_EQ(DecodeReport(bytes).textItems, items);
    EXPECT_EQ(EncodeReport({.mode = Mode::preUpdate}, BuildTextBlock({})).size(), 48u);
}

TEST(Report, LeavesOutWhatWouldNotFitAndEndsItemsAtTheirFirstNul)
{
    const std::string filling(kReportLimitBytes - 46 - 2 - 1 - 2, 'x');
    const std::vector<std::string> items = {filling, "too long", std::string("a\0b", 3)};
    const TextBlock block = BuildTextBlock(items);
    EXPECT_EQ(block.leftOut, std::vector<std::string>{"too long"});
    const ReportBytes bytes = EncodeReport({.mode = Mode::preUpdate}, block);
    EXPECT_EQ(bytes.size(), kReportLimitBytes);
    EXPECT_EQ(DecodeReport(bytes).textItems, (std::vector<std::string>{filling, "a"}));
}

TEST(Report, DecodingSaysWhatIsWrong)
{
    const ReportBytes plain = EncodeReport(HealthRecord());
    const ReportBytes block = EncodeReport({.mode = Mode::preUpdate}, BuildTextBlock(std::vector<std::string>{"item"}));
    const struct {
        ReportBytes bytes;
        std::size_t size;
        std::size_t place; ///< of a byte that is changed, and to what
        std::uint8_t value;
        const char* failure;
    } kCases[] = {
        {plain, 45, 0, 14, "the record has 45 of 46 bytes"},
        {plain, 46, 0, 13, "layout version 13 instead of 14"},
        {plain, 47, 46, 0, "1 bytes follow a record that has no text block"},
        {block, 47, 0, 14, "the text block of a pre-update record is missing"},
        {block, 52, 0, 14, "the text block has 4 bytes, its length says 5"},
        {block, 53, 52, 'x', "the last text item has no end"},
        {block, kReportLimitBytes + 1, 0, 14, "the report has 14337 bytes, at most 14336 are allowed"},
    };
    for (const auto& row : kCases) {
        ReportBytes bytes = row.bytes;
        bytes.resize(row.size);
        bytes[row.place] = row.value;
        EXPECT_THAT([&] { DecodeReport(bytes); }, testing::ThrowsMessage<ReportError>(row.failure));
    }
}

} // namespace
} // namespace vantor
