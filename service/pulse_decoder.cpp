#include "service/pulse_decoder.h"

#include "service/base64.h"
#include "service/printable_text.h"

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace vantor::service {
namespace {

using nlohmann::ordered_json;

enum class Type { object, string, protocolVersion, integer, literalTrue };

constexpr std::string_view kProtocolVersion = "1.2";
constexpr std::size_t kShownKeyBytes = 40;

struct Member {
    std::string_view key;
    Type type;
    bool optional = false;
    std::span<const Member> members = {}; ///< of an object
};

constexpr Member kClientMembers[] = {
    {"affid", Type::string},         {"cid", Type::string},  {"cliid", Type::string}, {"xpoid", Type::string, true},
    {"pev", Type::protocolVersion},  {"prn", Type::string},  {"pv", Type::string},    {"rid", Type::integer},
    {"ro", Type::literalTrue, true}, {"sdkv", Type::string},
};
constexpr Member kReportMembers[] = {{"vantor", Type::string}};
constexpr Member kBodyMembers[] = {
    {"ci", Type::object, false, kClientMembers},
    {"rpt", Type::object, false, kReportMembers},
};
constexpr Member kBody{"the body", Type::object, false, kBodyMembers};

const char* TypeText(Type type)
{
    switch (type) {
    case Type::object:
        return "an object";
    case Type::string:
        return "a string";
    case Type::protocolVersion:
        return "the number 1.2";
    case Type::integer:
        return "an integer of 64 bits with sign";
    case Type::literalTrue:
        return "true";
    }
    return "";
}

std::string Quoted(std::string_view key)
{
    return '"' + PrintableText(key, kShownKeyBytes) + '"';
}

/// Follows the parser event by event, so that order and repetitions are seen, and nothing is built from what has no
/// place in a pulse. Refuses by throwing PulseError.
class BodyReader : public nlohmann::json_sax<ordered_json> {
public:
    ordered_json TakeClient() { return std::move(m_client); }
    std::string TakeReport() { return std::move(m_report); }

    bool start_object(std::size_t /*size*/) override
    {
        if (m_open.empty()) {
            m_open.push_back({&kBody, 0});
            return true;
        }
        const Member& member = Accept(Type::object);
        m_open.push_back({&member, 0});
        return true;
    }

    bool key(string_t& name) override
    {
        Place& place = m_open.back();
        const auto members = place.object->members;
        std::size_t index = place.next;
        while (index < members.size() && members[index].optional && members[index].key != name) {
            ++index;
        }
        if (index == members.size() || members[index].key != name) {
            throw PulseError(Where() + ": " + Quoted(name) + " stands where " + ExpectedText(place) + " belongs");
        }
        place.next = index + 1;
        return true;
    }

    bool end_object() override
    {
        Place& place = m_open.back();
        const auto members = place.object->members;
        while (place.next < members.size() && members[place.next].optional) {
            ++place.next;
        }
        if (place.next < members.size()) {
            throw PulseError(Where() + ": " + Quoted(members[place.next].key) + " is missing");
        }
        m_open.pop_back();
        return true;
    }

    bool string(string_t& value) override
    {
        const Member& member = Accept(Type::string);
        if (m_open.back().object->members.data() == kReportMembers) {
            m_report = value;
        } else {
            m_client[std::string(member.key)] = value;
        }
        return true;
    }

    bool number_float(number_float_t value, const string_t& text) override
    {
        const Member& member = Accept(Type::protocolVersion);
        return text == kProtocolVersion ? Store(member, value) : Refuse(member);
    }

    bool number_integer(number_integer_t value) override { return Store(Accept(Type::integer), value); }

    bool number_unsigned(number_unsigned_t value) override
    {
        const Member& member = Accept(Type::integer);
        constexpr auto kMost = static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max());
        return value <= kMost ? Store(member, static_cast<std::int64_t>(value)) : Refuse(member);
    }

    bool boolean(bool value) override
    {
        const Member& member = Accept(Type::literalTrue);
        return value ? Store(member, value) : Refuse(member);
    }

    bool null() override { return Refuse(Current()); }
    bool start_array(std::size_t /*size*/) override { return Refuse(Current()); }
    bool end_array() override { return false; }
    bool binary(binary_t& /*value*/) override { return Refuse(Current()); }

    bool parse_error(std::size_t position, const std::string& /*token*/,
                     const ordered_json::exception& /*error*/) override
    {
        throw PulseError("not valid JSON at byte " + std::to_string(position));
    }

private:
    struct Place {
        const Member* object;
        std::size_t next; ///< index of the member that comes next
    };

    std::string Where() const
    {
        const Member* object = m_open.back().object;
        return object == &kBody ? std::string(kBody.key) : Quoted(object->key);
    }

    static std::string ExpectedText(const Place& place)
    {
        const auto members = place.object->members;
        return place.next < members.size() ? Quoted(members[place.next].key) : "the end";
    }

    /// The member whose value comes now; its key has been read.
    const Member& Current() const { return m_open.back().object->members[m_open.back().next - 1]; }

    const Member& Accept(Type type) const
    {
        if (Current().type != type) {
            Refuse(Current());
        }
        return Current();
    }

    template <typename Value>
    bool Store(const Member& member, Value value)
    {
        m_client[std::string(member.key)] = value;
        return true;
    }

    [[noreturn]] bool Refuse(const Member& member) const
    {
        throw PulseError(Where() + ": " + Quoted(member.key) + " is not " + TypeText(member.type));
    }

    std::vector<Place> m_open;
    ordered_json m_client = ordered_json::object();
    std::string m_report;
};

} // namespace

Pulse DecodePulse(std::string_view body)
{
    // The parser would skip a byte order mark, and a body of another JSON type has no members to judge.
    if (!body.starts_with('{')) {
        throw PulseError(R"(the body does not begin with "{")");
    }
    BodyReader reader;
    ordered_json::sax_parse(body.begin(), body.end(), &reader);

    Pulse pulse;
    pulse.client = reader.TakeClient();
    pulse.reportBase64 = reader.TakeReport();
    const auto bytes = DecodeBase64(pulse.reportBase64);
    if (!bytes) {
        throw PulseError(R"("rpt": "vantor" is not strict Base64)");
    }
    try {
        pulse.report = DecodeReport(*bytes);
    } catch (const ReportError& error) {
        throw PulseError(R"("rpt": )" + std::string(error.what()));
    }
    return pulse;
}

} // namespace vantor::service
