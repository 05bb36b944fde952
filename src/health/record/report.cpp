#include "health/record/report.h"

#include <algorithm>

namespace vantor {
namespace {

constexpr std::size_t kBlockLengthSize = 2;
constexpr std::size_t kBlockLimitBytes = kReportLimitBytes - HealthRecord::kWireSize - kBlockLengthSize;

std::vector<std::string> SplitItems(std::span<const std::uint8_t> block)
{
    if (!block.empty() && block.back() != 0) {
        throw ReportError("the last text item has no end");
    }
    std::vector<std::string> items;
    for (auto begin = block.begin(); begin != block.end();) {
        const auto end = std::find(begin, block.end(), std::uint8_t{0});
        items.emplace_back(begin, end);
        begin = end + 1;
    }
    return items;
}

} // namespace

TextBlock BuildTextBlock(std::span<const std::string> items)
{
    TextBlock block;
    for (const std::string& item : items) {
        const std::size_t length = std::min(item.find('\0'), item.size());
        if (block.bytes.size() + length + 1 > kBlockLimitBytes) {
            block.leftOut.push_back(item);
            continue;
        }
        block.bytes.insert(block.bytes.end(), item.begin(), item.begin() + static_cast<std::ptrdiff_t>(length));
        block.bytes.push_back(0);
    }
    return block;
}

ReportBytes EncodeReport(const HealthRecord& record)
{
    const auto bytes = EncodeHealthRecord(record);
    return {bytes.begin(), bytes.end()};
}

ReportBytes EncodeReport(const HealthRecord& record, const TextBlock& block)
{
    const auto head = EncodeHealthRecord(record);
    ReportBytes report(head.size() + kBlockLengthSize + block.bytes.size());
    auto next = std::ranges::copy(head, report.begin()).out;
    *next++ = static_cast<std::uint8_t>(block.bytes.size() & 0xFF);
    *next++ = static_cast<std::uint8_t>(block.bytes.size() >> 8);
    std::ranges::copy(block.bytes, next);
    return report;
}

Report DecodeReport(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < HealthRecord::kWireSize) {
        throw ReportError("the record has " + std::to_string(bytes.size()) + " of " +
                          std::to_string(HealthRecord::kWireSize) + " bytes");
    }
    if (bytes.size() > kReportLimitBytes) {
        throw ReportError("the report has " + std::to_string(bytes.size()) + " bytes, at most " +
                          std::to_string(kReportLimitBytes) + " are allowed");
    }
    Report report;
    report.record = DecodeHealthRecord(bytes.first<HealthRecord::kWireSize>());
    if (report.record.struct_version != HealthRecord::kLayoutVersion) {
        throw ReportError("layout version " + std::to_string(report.record.struct_version) + " instead of " +
                          std::to_string(HealthRecord::kLayoutVersion));
    }

    const auto rest = bytes.subspan(HealthRecord::kWireSize);
    if (report.record.mode != Mode::preUpdate) {
        if (!rest.empty()) {
            throw ReportError(std::to_string(rest.size()) + " bytes follow a record that has no text block");
        }
        return report;
    }
    if (rest.size() < kBlockLengthSize) {
        throw ReportError("the text block of a pre-update record is missing");
    }
    const auto block = rest.subspan(kBlockLengthSize);
    const std::size_t length = static_cast<std::size_t>(rest[0]) | static_cast<std::size_t>(rest[1]) << 8;
    if (length != block.size()) {
        throw ReportError("the text block has " + std::to_string(block.size()) + " bytes, its length says " +
                          std::to_string(length));
    }
    report.textItems = SplitItems(block);
    return report;
}

} // namespace vantor
