#include "inspect/pulse_decoder.h"

#include "inspect/base64.h"
#include "inspect/printable_text.h"

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace vantor::inspect {
namespace {

using nlohmann::ordered_json;

enum class Type { object, string, protocolVersion, integer, literalTrue };
constexpr const char* kTypeTexts[] = {"an object", "a string", "the number 1.2", "an integer of 64 bits with sign",
                                      "true"};

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

std::string Quoted(std::string_view key)
{
    return '"' + PrintableText(key, kShownKeyBytes) + '"';
}

/// Handles parser events, so that order and repetitions are checked and nothing is built from data that does not belong
/// in a pulse. Rejects a body by throwing PulseError.
class BodyReader : public nlohmann::json_sax<ordered_json> {
public:
    ordered_json TakeClient() { return std::move(m_client); }
    std::string TakeReport() { return std::move(m_report); }

    bool start_object(std::size_t /*size*/) override
    {
        const Member& object = m_open.empty() ? kBody : Accept(Type::object);
        m_open.push_back({&object, 0});
        return true;
    }

    bool key(string_t& name) override
    {
        const Member* const next = NextMember(name);
        if (next == nullptr || next->key != name) {
            const std::string expected = next == nullptr ? "the end" : Quoted(next->key);
            throw PulseError(Where() + ": " + Quoted(name) + " stands where " + expected + " belongs");
        }
        ++m_open.back().next;
        return true;
    }

    bool end_object() override
    {
        if (const Member* const next = NextMember({})) {
            throw PulseError(Where() + ": " + Quoted(next->key) + " is missing");
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
        constexpr auto kMax = static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max());
        return value <= kMax ? Store(member, static_cast<std::int64_t>(value)) : Refuse(member);
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
        std::size_t next; ///< index of the next member
    };

    std::string Where() const
    {
        const Member* object = m_open.back().object;
        return object == &kBody ? std::string(kBody.key) : Quoted(object->key);
    }

    /// The next member, skipping optional ones with another name; null at the end of the object.
    const Member* NextMember(std::string_view name)
    {
        auto& [object, next] = m_open.back();
        while (next < object->members.size() && object->members[next].optional && object->members[next].key != name) {
            ++next;
        }
        return next < object->members.size() ? &object->members[next] : nullptr;
    }

    /// The member whose key has been read and whose value comes next.
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
        throw PulseError(Where() + ": " + Quoted(member.key) + " is not " + kTypeTexts[static_cast<int>(member.type)]);
    }

    std::vector<Place> m_open;
    ordered_json m_client = ordered_json::object();
    std::string m_report;
};

} // namespace

Pulse DecodePulse(std::string_view body)
{
    // The parser would skip a byte order mark, and a body of another JSON type has no members to check.
    if (!body.starts_with('{')) {
        throw PulseError(R"(the body does not begin with "{")");
    }
    BodyReader reader;
    ordered_json::sax_parse(body.begin(), body.end(), &reader);

    Pulse pulse;
    const std::string base64 = reader.TakeReport();
    try {
        pulse = DecodeReportText(base64);
    } catch (const PulseError& error) {
        throw PulseError(R"("rpt": )" + std::string(error.what()));
    }
    pulse.client = reader.TakeClient();
    return pulse;
}

Pulse DecodeReportText(std::string_view base64)
{
    const auto bytes = DecodeBase64(base64);
    if (!bytes) {
        throw PulseError("the report is not strict Base64");
    }
    try {
        return {ordered_json::object(), DecodeReport(*bytes), std::string(base64)};
    } catch (const ReportError& error) {
        throw PulseError(error.what());
    }
}

} // namespace vantor::inspect
