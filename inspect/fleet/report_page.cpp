#include "inspect/field_texts.h"
#include "inspect/fleet/number_text.h"
#include "inspect/fleet/plot.h"
#include "inspect/fleet/report_page_style.h"
#include "inspect/fleet/report_text.h"
#include "inspect/html_text.h"
#include "inspect/utc_time.h"

#include <algorithm>
#include <span>
#include <sstream>
#include <utility>

namespace vantor::fleet {
namespace {

using inspect::HtmlText;

constexpr std::size_t kPlottedVersions = 40;
constexpr std::size_t kPlottedDays = 400;
constexpr std::size_t kShownVersions = 100;
constexpr std::size_t kShownValues = 20;

std::string Number(const std::string& text)
{
    return "<td class=\"number\">" + text + "</td>";
}

class PageWriter {
public:
    explicit PageWriter(const FleetReport& report) : m_report(report) {}

    std::string Write()
    {
        m_html << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                  "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                  "<title>What updates did to the fleet</title>\n<style>"
               << kReportPageStyle << "</style>\n</head>\n<body>\n<h1>What updates did to the fleet</h1>\n";
        WriteHead();
        WriteVerdicts();
        WriteHarmPlots();
        WriteMemoryPlots();
        WriteVersions();
        WriteBits();
        WriteGroups();
        m_html << "</body>\n</html>\n";
        return m_html.str();
    }

private:
    void WriteHead()
    {
        m_html << "<p>" << Count(m_report.hosts) << " hosts, " << Count(m_report.pulses) << " pulses";
        if (m_report.pulses != 0) {
            m_html << " from " << inspect::FormatUtc(m_report.first, kReadableTime) << " to "
                   << inspect::FormatUtc(m_report.last, kReadableTime) << " UTC";
        }
        m_html << "</p>\n<p class=\"soft\">Not counted:";
        const char* separator = " ";
        for (const LeftOut& part : LeftOutOf(m_report)) {
            m_html << separator << Count(part.count) << ' ' << part.text
                   << (part.first.empty() ? "" : " (the first: " + HtmlText(part.first) + ')');
            separator = ", ";
        }
        m_html << ".</p>\n";
    }

    void WriteVerdicts()
    {
        m_html << "<h2>Content versions, worst first</h2>\n<div class=\"card verdicts\">\n"
               << (m_report.versions.empty() ? "<p>There were no updates.</p>\n" : "");
        for (const VersionReport& version : Shown()) {
            m_html << (version.StandsOut() ? "<p class=\"out\">" : "<p>") << HtmlText(Verdict(version)) << "</p>\n";
        }
        m_html << (m_report.versions.size() > kShownVersions ? "<p>The others are left out here.</p>\n" : "")
               << "</div>\n";
    }

    std::span<const VersionReport> Shown() const
    {
        return std::span(m_report.versions).first(std::min(m_report.versions.size(), kShownVersions));
    }

    /// The worst versions, in order of their numbers.
    std::vector<const VersionReport*> Plotted() const
    {
        std::vector<const VersionReport*> versions;
        for (const VersionReport& version : Shown().first(std::min(Shown().size(), kPlottedVersions))) {
            versions.push_back(&version);
        }
        std::ranges::sort(versions, [](const VersionReport* one, const VersionReport* other) {
            return std::pair(one->version.size(), one->version) < std::pair(other->version.size(), other->version);
        });
        return versions;
    }

    void WriteHarmPlots()
    {
        if (m_report.versions.empty()) {
            return;
        }
        m_html
            << "<h2>What went wrong, by content version</h2>\n<p class=\"soft\">Share of the updates with a pulse before and "
               "after; the lines are Wilson intervals. Red stands out.</p>\n<div class=\"grid\">\n";
        for (std::size_t harm = 0; harm < kHarms.size(); ++harm) {
            std::vector<ShareBar> bars;
            for (const VersionReport* const version : Plotted()) {
                const HarmRate& rate = version->harms[harm];
                bars.push_back({version->version, rate.Rate(), rate.interval.low, rate.interval.high, rate.standsOut,
                                version->version + ": " + Count(rate.hits) + " of " + Count(rate.tries) + ", " +
                                    Percent(rate.Rate())});
            }
            m_html << "<div class=\"card\"><h3>" << HtmlText(kHarms[harm].text) << "</h3>" << SharePlot(bars)
                   << "</div>\n";
        }
        m_html << "</div>\n";
    }

    void WriteMemoryPlots()
    {
        if (m_report.versions.empty()) {
            return;
        }
        m_html
            << "<h2>Memory before and after, by content version</h2>\n<p class=\"soft\">Mean working set, <span class=\"key "
               "old\">before</span> and <span class=\"key new\">after</span> the update.</p>\n<div class=\"grid\">\n";
        WriteMemoryPlot("vxshield.exe", &VersionReport::shieldMemory);
        WriteMemoryPlot("vxeatp.exe", &VersionReport::eatpMemory);
        m_html << "</div>\n";
    }

    void WriteMemoryPlot(const char* process, MemoryChange VersionReport::*memory)
    {
        std::vector<Change> changes;
        for (const VersionReport* const version : Plotted()) {
            const MemoryChange& sizes = version->*memory;
            changes.push_back({version->version, sizes.BeforeMib(), sizes.AfterMib(),
                               version->version + ": " + Decimal(sizes.BeforeMib(), 1) + " MiB before, " +
                                   Decimal(sizes.AfterMib(), 1) + " MiB after, " + Count(sizes.pairs) + " updates"});
        }
        m_html << "<div class=\"card\"><h3>" << process << "</h3>" << ChangePlot(changes, "MiB") << "</div>\n";
    }

    void WriteVersions()
    {
        m_html << (m_report.versions.empty() ? "" : "<h2>Each version</h2>\n");
        for (const VersionReport& version : Shown()) {
            m_html << "<details class=\"card\"" << (version.StandsOut() ? " open" : "") << "><summary>Content "
                   << HtmlText(version.version) << ": " << Count(version.updates) << " updates, "
                   << Count(version.pairs)
                   << " with a pulse before and after</summary>\n<table><thead><tr><th>After the update</th>"
                      "<th class=\"number\">Updates</th><th class=\"number\">Rate</th><th class=\"number\">Others</th>"
                      "<th>Client ids</th></tr></thead><tbody>\n";
            for (const HarmRate& rate : version.harms) {
                WriteHarm(rate);
            }
            m_html << "</tbody></table></details>\n";
        }
    }

    void WriteHarm(const HarmRate& rate)
    {
        if (rate.hits == 0) {
            return;
        }
        m_html << (rate.standsOut ? "<tr class=\"out\"><td>" : "<tr><td>") << HtmlText(rate.harm->text)
               << (rate.standsOut ? " (stands out)" : "") << "</td>" << Number(Count(rate.hits))
               << Number(Percent(rate.Rate())) << Number(Percent(rate.OtherRate())) << "<td>";
        for (const std::string& example : rate.examples) {
            m_html << "<code>" << HtmlText(example) << "</code> ";
        }
        m_html << "</td></tr>\n";
    }

    void WriteBits()
    {
        const auto names = ResultBitNames();
        const std::size_t days = std::min(m_report.days.size(), kPlottedDays);
        m_html
            << "<h2>Results over the days</h2>\n<div class=\"card\"><table><thead><tr><th>Result</th>"
               "<th class=\"number\">Hosts</th><th class=\"number\">Share</th><th>Share by day, 0 to 100 %</th><th>Holds "
               "when</th></tr></thead><tbody>\n";
        for (std::size_t bit = 0; bit < names.size(); ++bit) {
            std::vector<double> shares;
            std::string hint;
            for (const DayBits& day : std::span(m_report.days).last(days)) {
                shares.push_back(Share(day.bits[bit], day.hosts));
                hint += day.day + ' ' + Percent(shares.back()) + "; ";
            }
            m_html << "<tr><td>" << names[bit].key << "</td>" << Number(Count(m_report.bits[bit]))
                   << Number(Percent(Share(m_report.bits[bit], m_report.hosts))) << "<td>" << SharesLine(shares, hint)
                   << "</td><td class=\"soft\">" << HtmlText(inspect::BitText(names[bit].bit)) << "</td></tr>\n";
        }
        m_html << "</tbody></table></div>\n";
    }

    void WriteGroups()
    {
        m_html << "<h2>Hosts and pulses</h2>\n<div class=\"grid\">\n";
        for (const Group& group : m_report.groups) {
            m_html << "<div class=\"card\"><table><thead><tr><th>" << group.text
                   << "</th><th class=\"number\">Hosts</th><th class=\"number\">Pulses</th></tr></thead><tbody>\n";
            const auto values = std::span(group.values);
            const std::size_t shown = std::min(values.size(), kShownValues);
            for (const CountedValue& value : IsOfDays(group) ? values.last(shown) : values.first(shown)) {
                m_html << "<tr><td>" << HtmlText(value.name) << "</td>" << Number(Count(value.hosts))
                       << Number(Count(value.pulses)) << "</tr>\n";
            }
            m_html << "</tbody></table>"
                   << (shown < values.size() ? "<p class=\"soft\">and " + Count(values.size() - shown) + " more</p>"
                                             : "")
                   << "</div>\n";
        }
        m_html << "</div>\n";
    }

    const FleetReport& m_report;
    std::ostringstream m_html;
};

} // namespace

std::string ReportPage(const FleetReport& report)
{
    return PageWriter(report).Write();
}

} // namespace vantor::fleet
