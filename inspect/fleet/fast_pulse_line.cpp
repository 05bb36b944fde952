// The reader of lines with simdjson. It takes what is laid out as the receiver does it, and leaves the verdict on anything
// else to the general reader.
#include "inspect/base64.h"
#include "inspect/fleet/pulse_line.h"
#include "inspect/utc_time.h"

#include <simdjson.h>

#include <utility>

namespace vantor::fleet {
namespace {

namespace ondemand = simdjson::ondemand;

static_assert(kLinePadding >= simdjson::SIMDJSON_PADDING);

bool TakeText(ondemand::value value, std::string& text)
{
    std::string_view view;
    if (value.get_string().get(view) != simdjson::SUCCESS) {
        return false;
    }
    text.assign(view);
    return true;
}

template <std::string FleetPulse::*Member>
bool Text(ondemand::value value, FleetPulse& pulse)
{
    return TakeText(value, pulse.*Member);
}

bool ProtocolVersion(ondemand::value value, FleetPulse& /*pulse*/)
{
    return value.raw_json_token() == "1.2";
}

bool RequestId(ondemand::value value, FleetPulse& pulse)
{
    return value.get_int64().get(pulse.rid) == simdjson::SUCCESS;
}

bool TestMarker(ondemand::value value, FleetPulse& pulse)
{
    return value.get_bool().get(pulse.isTest) == simdjson::SUCCESS && pulse.isTest;
}

struct Member {
    std::string_view key;
    bool (*take)(ondemand::value value, FleetPulse& pulse);
    bool isOptional = false;
};

/// "ci", in its order.
constexpr Member kClient[] = {
    {"affid", Text<&FleetPulse::affid>},
    {"cid", Text<&FleetPulse::cid>},
    {"cliid", Text<&FleetPulse::cliid>},
    {"xpoid", Text<&FleetPulse::xpoid>, true},
    {"pev", ProtocolVersion},
    {"prn", Text<&FleetPulse::prn>},
    {"pv", Text<&FleetPulse::pv>},
    {"rid", RequestId},
    {"ro", TestMarker, true},
    {"sdkv", Text<&FleetPulse::sdkv>},
};

bool TakeClient(ondemand::value value, FleetPulse& pulse)
{
    ondemand::object client;
    if (value.get_object().get(client) != simdjson::SUCCESS) {
        return false;
    }
    pulse.xpoid.clear();
    pulse.isTest = false;
    const Member* next = std::begin(kClient);
    for (auto result : client) {
        ondemand::field field;
        std::string_view key;
        if (std::move(result).get(field) != simdjson::SUCCESS || field.unescaped_key().get(key) != simdjson::SUCCESS) {
            return false;
        }
        while (next != std::end(kClient) && next->isOptional && next->key != key) {
            ++next;
        }
        if (next == std::end(kClient) || next->key != key || !next->take(field.value(), pulse)) {
            return false;
        }
        ++next;
    }
    return next == std::end(kClient) && pulse.cliid.size() <= kMaxClientIdBytes;
}

bool TakeReport(ondemand::value value, FleetPulse& pulse)
{
    std::string_view base64;
    if (value.get_string().get(base64) != simdjson::SUCCESS || base64.empty()) {
        return false;
    }
    const auto bytes = inspect::DecodeBase64(base64);
    if (!bytes) {
        return false;
    }
    try {
        pulse.report = DecodeReport(*bytes);
        return true;
    } catch (const ReportError&) {
        return false;
    }
}

/// "rpt" of a body.
bool TakeBodyReport(ondemand::value value, FleetPulse& pulse)
{
    ondemand::object body;
    ondemand::value report;
    return value.get_object().get(body) == simdjson::SUCCESS &&
           body.find_field("vantor").get(report) == simdjson::SUCCESS && TakeReport(report, pulse);
}

bool TakeTime(ondemand::value value, FleetPulse& pulse)
{
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS) {
        return false;
    }
    const auto time = inspect::ParseUtc(text, inspect::kIsoTime);
    pulse.received = time.value_or(pulse.received);
    return time.has_value();
}

/// What is read of a line; each must stand there once, of the reports one.
constexpr struct {
    std::string_view key;
    unsigned mark;
    bool (*take)(ondemand::value value, FleetPulse& pulse);
} kLine[] = {
    {"received", 1, TakeTime},
    {"ci", 2, TakeClient},
    {"report", 4, TakeReport},
    {"rpt", 4, TakeBodyReport},
};
constexpr unsigned kAllMarks = 7;

} // namespace

class PulseLineReader::Fast {
public:
    bool Read(std::string_view line, FleetPulse& pulse)
    {
        ondemand::document document;
        ondemand::object object;
        const simdjson::padded_string_view padded(line.data(), line.size(), line.size() + kLinePadding);
        if (m_parser.iterate(padded).get(document) != simdjson::SUCCESS ||
            document.get_object().get(object) != simdjson::SUCCESS) {
            return false;
        }
        unsigned marks = 0;
        for (auto result : object) {
            ondemand::field field;
            std::string_view key;
            if (std::move(result).get(field) != simdjson::SUCCESS ||
                field.unescaped_key().get(key) != simdjson::SUCCESS) {
                return false;
            }
            for (const auto& [name, mark, take] : kLine) {
                if (key == name) {
                    if ((marks & mark) != 0 || !take(field.value(), pulse)) {
                        return false;
                    }
                    marks |= mark;
                }
            }
        }
        // Anything behind the object makes the line another's to judge.
        return marks == kAllMarks && document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    }

private:
    ondemand::parser m_parser;
};

PulseLineReader::PulseLineReader() : m_fast(std::make_unique<Fast>()) {}
PulseLineReader::~PulseLineReader() = default;

void PulseLineReader::Read(std::string_view line, FleetPulse& pulse)
{
    if (!m_fast->Read(line, pulse)) {
        ReadPulseLine(line, pulse);
    }
}

} // namespace vantor::fleet
