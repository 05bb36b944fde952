// The report that a pulse sends: the health record, followed in a pre-update run by a block of text items.
#pragma once

#include "health/record/health_record.h"

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantor {

using ReportBytes = std::vector<std::uint8_t>;

/// The maximum size of a report in bytes; the telemetry client refuses a larger one.
inline constexpr std::size_t kReportLimitBytes = 14336;

/// The text item for a source that cannot be read.
inline constexpr char kUnavailable[] = "Unavailable";

/// The text items of a pre-update report, each followed by one NUL.
struct TextBlock {
    std::vector<std::uint8_t> bytes;
    std::vector<std::string> leftOut; ///< items that did not fit
};

/// Lays out the items in order. An item ends at its first NUL. An item that would make the report exceed
/// kReportLimitBytes is left out.
TextBlock BuildTextBlock(std::span<const std::string> items);

/// The record's 46 bytes.
ReportBytes EncodeReport(const HealthRecord& record);

/// The record's 46 bytes, the block's length in two bytes (little-endian), and the block.
ReportBytes EncodeReport(const HealthRecord& record, const TextBlock& block);

/// A decoded report.
struct Report {
    HealthRecord record;
    std::vector<std::string> textItems; ///< empty unless the mode is predatupdate
};

/// what() says what is wrong with a report's bytes.
class ReportError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Decodes a report. Throws ReportError if the bytes are too few or too many, if the layout version is not
/// HealthRecord::kLayoutVersion, or if the text block is missing in a pre-update report, present in another one, or
/// does not match its length.
Report DecodeReport(std::span<const std::uint8_t> bytes);

} // namespace vantor
