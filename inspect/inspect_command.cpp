#include "inspect/inspect_command.h"

#include "inspect/fleet/fleet_command.h"
#include "inspect/input.h"
#include "inspect/inspect_options.h"
#include "inspect/printable_text.h"
#include "inspect/pulse_difference.h"
#include "inspect/run_text.h"

#include <fstream>
#include <ostream>
#include <utility>

namespace vantor::inspect {
namespace {

constexpr int kExitMalformed = 1;

class Inspector {
public:
    Inspector(InspectOptions options, std::istream& input, std::ostream& output, std::ostream& errors)
        : m_options(std::move(options)), m_input(input), m_output(output), m_errors(errors)
    {
    }

    int Run()
    {
        std::vector<DatedPulse> compared;
        for (const std::string& file : m_options.files) {
            try {
                const Input input = Read(file);
                for (const std::string& problem : input.problems.Texts()) {
                    Complain(file, problem);
                }
                if (m_options.difference) {
                    const std::size_t wanted = 3 - m_options.files.size();
                    const auto pulses = LastPulses(input, wanted);
                    if (pulses.size() < wanted) {
                        Complain(file, wanted == 1 ? "there is no pulse in it" : "there are no two pulses to compare");
                    }
                    compared.insert(compared.end(), pulses.begin(), pulses.end());
                } else {
                    Show(file, input);
                }
            } catch (const InputError& error) {
                Complain(file, error.what());
            }
        }
        if (compared.size() == 2) {
            ShowDifference(compared[0], compared[1]);
        }
        return m_exitCode;
    }

private:
    Input Read(const std::string& file)
    {
        if (file == kStandardInput) {
            return ReadInput(m_input, m_options.last);
        }
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            throw InputError("it cannot be opened");
        }
        return ReadInput(stream, m_options.last);
    }

    void Show(const std::string& file, const Input& input)
    {
        if (m_options.files.size() > 1 && !m_options.json) {
            m_output << "==> " << PrintableText(file) << " <==\n";
        }
        const RunLog& log = input.log;
        std::size_t number = log.count - log.runs.size();
        for (const auto& run : log.runs) {
            ++number;
            if (m_options.json) {
                m_output << JsonLine(RunJson(run, number)) << '\n';
                continue;
            }
            m_output << RunBlock(run, number, log.count) << '\n';
            if (run.pulse) {
                m_output << PulseBlock({{}, *run.pulse}) << '\n';
            }
        }
        if (log.count == 0) {
            for (const DatedPulse& pulse : LastPulses(input, m_options.last)) {
                m_output << (m_options.json ? JsonLine(PulseJson(pulse)) : PulseBlock(pulse)) << '\n';
            }
        }
    }

    void ShowDifference(const DatedPulse& before, const DatedPulse& after)
    {
        const PulseDifference difference = Compare(before.pulse, after.pulse);
        if (m_options.json) {
            m_output << JsonLine(DifferenceJson(difference)) << '\n';
        } else {
            m_output << PulseTitle(before) << "  -> " << PulseTitle(after) << DifferenceBlock(difference);
        }
    }

    void Complain(const std::string& file, const std::string& what)
    {
        m_errors << "vantor-inspect: " << (file == kStandardInput ? "standard input" : PrintableText(file)) << ": "
                 << what << '\n';
        m_exitCode = kExitMalformed;
    }

    const InspectOptions m_options;
    std::istream& m_input;
    std::ostream& m_output;
    std::ostream& m_errors;
    int m_exitCode = 0;
};

} // namespace

int RunInspect(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
               std::ostream& errors)
{
    InspectOptions options;
    if (const auto exitCode = ReadInspectOptions(arguments, options, output, errors)) {
        return *exitCode;
    }
    if (options.fleet) {
        using Output = fleet::FleetOptions::Output;
        const Output kind = options.csv ? Output::csv : options.json ? Output::json : Output::text;
        return fleet::RunFleet({kind, options.page, options.files, {}}, input, output, errors);
    }
    return Inspector(std::move(options), input, output, errors).Run();
}

} // namespace vantor::inspect
