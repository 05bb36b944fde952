#include "inspect/fleet/fleet_command.h"

#include "inspect/fleet/number_text.h"
#include "inspect/fleet/pulse_csv.h"
#include "inspect/fleet/pulse_stream.h"
#include "inspect/fleet/report_text.h"
#include "inspect/printable_text.h"

#include <deque>
#include <fstream>
#include <ostream>

namespace vantor::fleet {
namespace {

constexpr std::string_view kStandardInput = "-";

class FleetRun {
public:
    FleetRun(const FleetOptions& options, std::istream& input, std::ostream& output, std::ostream& errors)
        : m_options(options), m_input(input), m_output(output), m_errors(errors)
    {
    }

    int Run()
    {
        for (const std::string& file : m_options.files) {
            Open(file);
        }
        Fleet fleet(m_options.limits);
        ReadAll(fleet);
        FleetReport report = fleet.Finish();
        report.malformed = m_pulses.Malformed();
        for (const std::string& place : m_pulses.Failures()) {
            Complain(place + ": reading fails");
        }
        ComplainOf(report);
        if (m_options.output != FleetOptions::Output::csv) {
            m_output << (m_options.output == FleetOptions::Output::json ? ReportJson(report) + '\n'
                                                                        : ReportText(report));
        }
        if (!m_options.page.empty()) {
            WritePage(report);
        }
        return m_exitCode;
    }

private:
    void Open(const std::string& file)
    {
        if (file == kStandardInput) {
            m_pulses.Add("standard input", m_input);
            return;
        }
        std::ifstream& stream = m_streams.emplace_back(file, std::ios::binary);
        if (stream) {
            m_pulses.Add(inspect::PrintableText(file), stream);
        } else {
            Complain(inspect::PrintableText(file) + ": it cannot be opened");
        }
    }

    void ReadAll(Fleet& fleet)
    {
        constexpr std::size_t kFlushBytes = 64U << 10;
        const bool isCsv = m_options.output == FleetOptions::Output::csv;
        std::string lines = isCsv ? CsvHeading() : std::string();
        std::uint64_t place = 0;
        while (const FleetPulse* const pulse = m_pulses.Next()) {
            const Fate fate = fleet.Add(*pulse);
            if (isCsv && (fate == Fate::counted || fate == Fate::withoutId)) {
                AppendCsvLine(*pulse, ++place, lines);
            }
            if (lines.size() > kFlushBytes) {
                m_output << lines;
                lines.clear();
            }
        }
        m_output << lines;
    }

    void ComplainOf(const FleetReport& report)
    {
        for (const LeftOut& part : LeftOutOf(report)) {
            if (!part.first.empty()) {
                Complain(std::string(part.text) + ": " + Count(part.count) + "; the first: " + part.first);
            }
        }
    }

    void WritePage(const FleetReport& report)
    {
        std::ofstream page(m_options.page, std::ios::binary);
        page << ReportPage(report) << std::flush;
        if (!page) {
            Complain(inspect::PrintableText(m_options.page) + ": it cannot be written");
        }
    }

    void Complain(const std::string& what)
    {
        m_errors << "vantor-inspect: " << what << '\n';
        m_exitCode = 1;
    }

    const FleetOptions& m_options;
    std::istream& m_input;
    std::ostream& m_output;
    std::ostream& m_errors;
    std::deque<std::ifstream> m_streams;
    PulseStream m_pulses;
    int m_exitCode = 0;
};

} // namespace

int RunFleet(const FleetOptions& options, std::istream& input, std::ostream& output, std::ostream& errors)
{
    return FleetRun(options, input, output, errors).Run();
}

} // namespace vantor::fleet
