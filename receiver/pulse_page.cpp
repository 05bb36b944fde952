#include "receiver/pulse_page.h"

#include "health/record/content_version.h"
#include "inspect/field_texts.h"
#include "inspect/html_text.h"
#include "inspect/pulse_difference.h"
#include "inspect/utc_time.h"
#include "receiver/pulse_page_style.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <sstream>
#include <string_view>

namespace vantor::receiver {
namespace {

using inspect::Change;
using inspect::DatedPulse;
using inspect::HtmlText;
using inspect::PulseDifference;

/// Text within the query of an address.
std::string Encoded(std::string_view text)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0 || byte == '-') {
            encoded += character;
        } else {
            encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return encoded;
}

std::string ClientText(const DatedPulse& pulse, const char* key)
{
    const auto member = pulse.pulse.client.find(key);
    return member != pulse.pulse.client.end() && member->is_string() ? member->get<std::string>() : std::string();
}

/// Empty if the pulse does not identify its host.
std::string HostOf(const DatedPulse& pulse)
{
    return ClientText(pulse, "cliid").empty() ? std::string()
                                              : ClientText(pulse, "cid") + '\0' + ClientText(pulse, "cliid");
}

std::string TimeOf(const DatedPulse& pulse)
{
    return pulse.received ? inspect::FormatUtc(*pulse.received, kReadableTime) + " UTC" : "unknown time";
}

/// A pulse and the one before it of the same host.
struct Entry {
    const DatedPulse* pulse;
    const DatedPulse* before; ///< null when none is kept
};

const Change* FindChange(const std::vector<Change>& changes, std::string_view name)
{
    const auto change = std::ranges::find(changes, name, &Change::name);
    return change == changes.end() ? nullptr : &*change;
}

class PageWriter {
public:
    std::string Write(const std::vector<DatedPulse>& pulses, const PageFilter& filter)
    {
        const std::vector<Entry> entries = Select(pulses, filter);
        m_filter = &filter;
        m_html << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                  "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                  "<title>Safety pulses</title>\n<style>"
               << kPageStyle << "</style>\n</head>\n<body>\n<main>\n<h1>Safety pulses</h1>\n";
        WriteForm(filter);
        m_html << "<p><a href=\"/fleet\">What updates did to these hosts</a></p>\n";
        const std::size_t shown = std::min(entries.size(), kMaxShown);
        m_html
            << "<p class=\"soft\" role=\"status\">" << shown << " of " << pulses.size() << " pulses, the latest first. "
            << "<span class=\"changed\">&nbsp;Marked&nbsp;</span> is what changed since the host's last pulse.</p>\n";
        std::for_each_n(entries.rbegin(), shown, [this](const Entry& entry) { WriteEntry(entry); });
        m_html << (shown == 0 ? "<p>There is no such pulse.</p>\n" : "") << "</main>\n</body>\n</html>\n";
        return m_html.str();
    }

private:
    static std::vector<Entry> Select(const std::vector<DatedPulse>& pulses, const PageFilter& filter)
    {
        const bool isMode = std::ranges::any_of(kModeNames, [&](const auto& one) { return one.name == filter.mode; });
        const auto names = ResultBitNames();
        const auto bit = std::ranges::find(names, std::string_view(filter.bit),
                                           [](const ResultBitName& name) { return std::string_view(name.key); });
        std::map<std::string, const DatedPulse*> latest;
        std::vector<Entry> entries;
        for (const DatedPulse& pulse : pulses) {
            const std::string host = HostOf(pulse);
            const DatedPulse*& before = latest[host];
            const HealthRecord& record = pulse.pulse.report.record;
            if ((filter.host.empty() || ClientText(pulse, "cliid") == filter.host) &&
                (!isMode || inspect::ModeText(record.mode) == filter.mode) &&
                (bit == names.end() || record.bitfield_test_results.Test(bit->bit))) {
                entries.push_back({&pulse, before});
            }
            before = host.empty() ? nullptr : &pulse;
        }
        return entries;
    }

    void WriteOption(std::string_view name, std::string_view chosen)
    {
        m_html << "<option" << (name == chosen ? " selected" : "") << '>' << name << "</option>";
    }

    void WriteForm(const PageFilter& filter)
    {
        m_html << "<form method=\"get\" action=\"/\" aria-label=\"Which pulses\">\n"
                  "<label>Mode <select name=\"mode\"><option value=\"\">any</option>";
        for (const auto& one : kModeNames) {
            WriteOption(one.name, filter.mode);
        }
        m_html << "</select></label>\n<label>Bit that is set <select name=\"bit\"><option value=\"\">any</option>";
        for (const ResultBitName& name : ResultBitNames()) {
            WriteOption(name.key, filter.bit);
        }
        m_html
            << "</select></label>\n<label>Host's client id <input name=\"host\" placeholder=\"any\" spellcheck=\"false\" "
               "autocomplete=\"off\" value=\""
            << HtmlText(filter.host) << "\"></label>\n<button>Filter</button> <a href=\"/\">Show all</a>\n</form>\n";
    }

    void WriteEntry(const Entry& entry)
    {
        const HealthRecord& record = entry.pulse->pulse.report.record;
        const PulseDifference difference =
            entry.before == nullptr ? PulseDifference() : inspect::Compare(entry.before->pulse, entry.pulse->pulse);
        const std::string host = ClientText(*entry.pulse, "cliid");
        const std::string customer = ClientText(*entry.pulse, "cid");
        m_html << "<article>\n<h2>" << TimeOf(*entry.pulse) << " &middot; " << inspect::ModeText(record.mode)
               << "</h2>\n<p>Host ";
        if (host.empty()) {
            m_html << "without a client id";
        } else {
            m_html << "<a href=\"/?mode=" << Encoded(m_filter->mode) << "&amp;bit=" << Encoded(m_filter->bit)
                   << "&amp;host=" << Encoded(host) << "\" title=\"this host's pulses alone\">" << HtmlText(host)
                   << "</a>";
        }
        m_html << (customer.empty() ? ", no customer id" : ", customer ") << HtmlText(customer) << ", "
               << HtmlText(ClientText(*entry.pulse, "prn")) << "</p>\n";
        WriteVersions(record);
        m_html << "<p class=\"soft\">"
               << (host.empty()              ? "It is compared with no other."
                   : entry.before == nullptr ? "No earlier pulse of this host is kept."
                   : difference.IsEmpty()
                       ? "Nothing changed since " + TimeOf(*entry.before) + '.'
                       : "Compared with " + TimeOf(*entry.before) + ", " +
                             std::string(inspect::ModeText(entry.before->pulse.report.record.mode)) + ':')
               << "</p>\n";
        WriteChanges(difference);
        WriteChips(record.bitfield_test_results, difference);
        WriteItems(entry.pulse->pulse.report.textItems, difference);
        WriteFields(record, entry.pulse->pulse.client, difference);
        m_html << "</article>\n";
    }

    void WriteVersions(const HealthRecord& record)
    {
        m_html << "<p class=\"soft\">Windows " << record.os_major << '.' << record.os_minor << '.' << record.os_build
               << " &middot; engine ";
        if (inspect::IsEngineUnknown(record)) {
            m_html << "unknown";
        } else {
            m_html << +record.vxcore_major << '.' << +record.vxcore_minor << '.' << +record.vxcore_patch << '.'
                   << record.vxcore_build;
        }
        m_html << " &middot; content ";
        const auto part = [](std::uint16_t number) {
            return number == ContentVersion::kUnknown ? std::string("unknown") : std::to_string(number);
        };
        const bool isUnknown =
            record.dat_major == ContentVersion::kUnknown && record.dat_minor == ContentVersion::kUnknown;
        m_html << (isUnknown ? "unknown" : part(record.dat_major) + '.' + part(record.dat_minor)) << " &middot; VANTor "
               << +record.vantor_major << '.' << +record.vantor_minor << '.' << +record.vantor_patch << '.'
               << record.vantor_build << "</p>\n";
    }

    /// Client members and fields; bits and items are marked where they stand.
    void WriteChanges(const PulseDifference& difference)
    {
        if (difference.client.empty() && difference.record.empty()) {
            return;
        }
        m_html << "<ul aria-label=\"Changes\">";
        for (const auto* changes : {&difference.client, &difference.record}) {
            for (const auto& [name, before, after] : *changes) {
                m_html << "<li class=\"changed\">" << HtmlText(name) << ' ' << HtmlText(before) << " &rarr; "
                       << HtmlText(after) << "</li>";
            }
        }
        m_html << "</ul>\n";
    }

    void WriteChips(const TestResultBits& bits, const PulseDifference& difference)
    {
        m_html << "<h3>Results that hold</h3>\n<ul>";
        bool isAny = false;
        for (const ResultBitName& name : ResultBitNames()) {
            const bool holds = bits.Test(name.bit);
            const bool hasChanged = FindChange(difference.bits, name.key) != nullptr;
            if (holds || hasChanged) {
                m_html << (hasChanged ? "<li class=\"changed\"" : "<li") << " title=\""
                       << HtmlText(inspect::BitText(name.bit)) << "\">" << (holds ? "" : "<s>") << name.key
                       << (holds ? "" : "</s>")
                       << (!hasChanged ? ""
                           : holds     ? " new"
                                       : " no longer")
                       << "</li>";
                isAny = true;
            }
        }
        m_html << (isAny ? "" : "<li>none</li>") << "</ul>\n";
    }

    void WriteItems(const std::vector<std::string>& items, const PulseDifference& difference)
    {
        if (items.empty() && difference.itemsGone.empty()) {
            return;
        }
        m_html << "<h3>Text items</h3>\n<ul>";
        for (const std::string& item : items) {
            const bool isNew = std::ranges::find(difference.itemsNew, item) != difference.itemsNew.end();
            m_html << (isNew ? "<li class=\"changed\">" : "<li>") << HtmlText(item) << (isNew ? " new</li>" : "</li>");
        }
        for (const std::string& item : difference.itemsGone) {
            m_html << "<li class=\"changed\"><s>" << HtmlText(item) << "</s> no longer</li>";
        }
        m_html << "</ul>\n";
    }

    void WriteRow(std::string_view name, const std::string& value, const std::string& meaning,
                  const std::vector<Change>& changes)
    {
        const Change* const change = FindChange(changes, name);
        m_html << (change == nullptr ? "<tr>" : "<tr class=\"changed\">") << "<th scope=\"row\">" << HtmlText(name)
               << "</th><td>" << HtmlText(value);
        if (change != nullptr) {
            m_html << " <span class=\"was\">was " << HtmlText(change->before) << "</span>";
        }
        m_html << "</td><td>" << HtmlText(meaning) << "</td></tr>\n";
    }

    void WriteFields(const HealthRecord& record, const nlohmann::ordered_json& client,
                     const PulseDifference& difference)
    {
        m_html << "<details><summary>All fields</summary>\n<table><thead><tr><th scope=\"col\">Field</th>"
                  "<th scope=\"col\">Value</th><th scope=\"col\">Meaning</th></tr></thead><tbody>\n";
        for (const auto& [key, value] : client.items()) {
            WriteRow(key, value.is_string() ? value.get<std::string>() : value.dump(), "client", difference.client);
        }
        for (const HealthRecordField& field : HealthRecordFields()) {
            WriteRow(field.key, std::to_string(field.Value(record)), inspect::FieldText(field, record),
                     difference.record);
        }
        for (const ResultBitName& name : ResultBitNames()) {
            WriteRow(name.key, record.bitfield_test_results.Test(name.bit) ? "1" : "0",
                     std::string(inspect::BitText(name.bit)), difference.bits);
        }
        m_html << "</tbody></table></details>\n";
    }

    std::ostringstream m_html;
    const PageFilter* m_filter = nullptr; ///< while Write runs
};

} // namespace

std::string PulsePage(const std::vector<DatedPulse>& pulses, const PageFilter& filter)
{
    return PageWriter().Write(pulses, filter);
}

} // namespace vantor::receiver
