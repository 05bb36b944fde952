#include "inspect/inspect_command.h"

#include "inspect/fleet/fleet_command.h"
#include "inspect/input.h"
#include "inspect/printable_text.h"
#include "inspect/pulse_difference.h"
#include "inspect/run_text.h"
#include "vantor_version.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <limits>
#include <ostream>
#include <utility>

namespace vantor::inspect {
namespace {

constexpr int kExitMalformed = 1;
constexpr int kExitWrongOptions = 2;
constexpr std::string_view kStandardInput = "-";
constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

constexpr char kPurpose[] = "Shows what pulses say and what became of a run of vantor.exe.";

constexpr char kNotes[] =
    R"(A FILE, or standard input when there is none or it is "-", holds one of these, which is found out by itself:
  a report       Base64 text, as "vantor" in a body holds it
  a body         the JSON that a pulse posts, one or one a line
  pulses         the lines that vantor-receiver writes for --pulses
  a log          of vantor.exe, with one or more runs

Bytes that are no printable ASCII are shown as \xNN, passwords in a log as ***. Exit code: 0 all is well, 1 something is
malformed, cannot be read or is left out (standard error says what and where), 2 wrong options.
)";

struct Options {
    bool json = false;
    bool fleet = false;
    bool csv = false;
    std::string page;
    bool difference = false;
    std::size_t last = kAll;
    std::vector<std::string> files = {std::string(kStandardInput)};
};

/// Declares the command line, whose values are stored in `options`.
void Describe(CLI::App& app, Options& options)
{
    app.footer(kNotes);
    app.set_help_flag("--help", "show this text");
    app.set_version_flag("--version", "vantor-inspect " VANTOR_VERSION_TEXT, "show the version");
    app.allow_windows_style_options(false); // a path may begin with a slash
    app.add_flag("--json", options.json,
                 "one JSON object a line: a pulse, a run with its time line and its pulse, or a fleet's report");
    CLI::Option* const difference =
        app.add_flag("--diff", options.difference,
                     "the difference of the last two pulses of one FILE, or of the last pulses of two");
    app.add_option("--last", options.last, "only the last N runs or pulses of a FILE")
        ->type_name("N")
        ->check(CLI::Validator(
            [](const std::string& text) {
                const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
                return isNumber && text.find_first_not_of('0') != std::string::npos ? "" : "needs a number from 1";
            },
            ""))
        ->take_last()
        ->excludes(difference);
    CLI::Option* const fleet =
        app.add_flag("--fleet", options.fleet,
                     "what the pulses of many hosts say of each content version; a FILE holds the receiver's lines")
            ->excludes("--diff", "--last");
    app.add_flag("--csv", options.csv, "with --fleet: a flat line a pulse, for a database")
        ->needs(fleet)
        ->excludes("--json");
    app.add_option("--html", options.page, "with --fleet: write a page of the same, too")
        ->type_name("PAGE")
        ->needs(fleet);
    app.add_option("FILE", options.files)->type_name("")->expected(-1);
}

class Inspector {
public:
    Inspector(Options options, std::istream& input, std::ostream& output, std::ostream& errors)
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

    const Options m_options;
    std::istream& m_input;
    std::ostream& m_output;
    std::ostream& m_errors;
    int m_exitCode = 0;
};

} // namespace

int RunInspect(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
               std::ostream& errors)
{
    Options options;
    CLI::App app(kPurpose, "vantor-inspect");
    Describe(app, options);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        if (options.difference && options.files.size() > 2) {
            throw CLI::ValidationError("--diff takes one file or two");
        }
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) { // --help and --version
            return app.exit(error, output, errors);
        }
        errors << "vantor-inspect: " << PrintableText(error.what()) << " (--help lists the options)\n";
        return kExitWrongOptions;
    }
    if (options.fleet) {
        using Output = fleet::FleetOptions::Output;
        const Output kind = options.csv ? Output::csv : options.json ? Output::json : Output::text;
        return fleet::RunFleet({kind, options.page, options.files, {}}, input, output, errors);
    }
    return Inspector(std::move(options), input, output, errors).Run();
}

} // namespace vantor::inspect
