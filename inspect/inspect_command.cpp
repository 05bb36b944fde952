#include "inspect/inspect_command.h"

#include "inspect/input.h"
#include "inspect/printable_text.h"
#include "inspect/pulse_difference.h"
#include "inspect/run_text.h"
#include "vantor_version.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <limits>
#include <ostream>

namespace vantor::inspect {
namespace {

constexpr int kExitMalformed = 1;
constexpr int kExitWrongOptions = 2;
constexpr std::string_view kStandardInput = "-";

constexpr char kHelp[] =
    R"(usage: vantor-inspect [OPTION...] [FILE...]

Shows what pulses say and what became of a run of vantor.exe. A FILE, or standard input when there is none or it is "-",
holds one of these, which is found out by itself:
  a report       Base64 text, as "vantor" in a body holds it
  a body         the JSON that a pulse posts, one or one a line
  pulses         the lines that vantor-receiver writes for --pulses
  a log          of vantor.exe, with one or more runs

Options:
  --json         one JSON object a line: a pulse, or a run with its time line and its pulse
  --diff         the difference of the last two pulses of one FILE, or of the last pulses of two
  --last N       only the last N runs or pulses of a FILE
  --help         show this text
  --version      show the version

Bytes that are no printable ASCII are shown as \xNN, passwords in a log as ***. Exit code: 0 all is well, 1 something is
malformed or cannot be read (standard error says what and where), 2 wrong options.
)";

struct Options {
    bool json = false;
    bool difference = false;
    std::size_t last = std::numeric_limits<std::size_t>::max();
    std::vector<std::string> files;
};

/// what() says what is wrong with the command line.
class OptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::size_t Count(const std::string& text)
{
    std::size_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    if (error != std::errc() || stop != end || count == 0) {
        throw OptionError("--last needs a number from 1, not \"" + text + '"');
    }
    return count;
}

Options ParseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    const auto end = arguments.end();
    for (auto argument = arguments.begin(); argument != end; ++argument) {
        if (*argument == "--json") {
            options.json = true;
        } else if (*argument == "--diff") {
            options.difference = true;
        } else if (*argument == "--last") {
            if (++argument == end) {
                throw OptionError("--last needs a number");
            }
            options.last = Count(*argument);
        } else if (argument->starts_with('-') && *argument != kStandardInput) {
            throw OptionError("there is no option \"" + *argument + '"');
        } else {
            options.files.push_back(*argument);
        }
    }
    if (options.files.empty()) {
        options.files.emplace_back(kStandardInput);
    }
    if (options.difference && options.files.size() > 2) {
        throw OptionError("--diff takes one file or two");
    }
    if (options.difference && options.last != Options().last) {
        throw OptionError("--diff compares the last pulses, so --last does not go with it");
    }
    return options;
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
                for (const std::string& problem : input.problems) {
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
            return ReadInput(ReadWhole(m_input));
        }
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            throw InputError("it cannot be opened");
        }
        return ReadInput(ReadWhole(stream));
    }

    void Show(const std::string& file, const Input& input)
    {
        if (m_options.files.size() > 1 && !m_options.json) {
            m_output << "==> " << PrintableText(file) << " <==\n";
        }
        const std::size_t runs = input.runs.size();
        for (std::size_t index = runs - std::min(m_options.last, runs); index < runs; ++index) {
            const auto& run = input.runs[index];
            if (m_options.json) {
                m_output << JsonLine(RunJson(run, index + 1)) << '\n';
                continue;
            }
            m_output << RunBlock(run, index + 1, runs) << '\n';
            if (run.pulse) {
                m_output << PulseBlock({{}, *run.pulse}) << '\n';
            }
        }
        if (runs == 0) {
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

bool Has(const std::vector<std::string>& arguments, std::string_view option)
{
    return std::ranges::find(arguments, option) != arguments.end();
}

} // namespace

int RunInspect(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
               std::ostream& errors)
{
    if (Has(arguments, "--help")) {
        output << kHelp;
        return 0;
    }
    if (Has(arguments, "--version")) {
        output << "vantor-inspect " VANTOR_VERSION_TEXT "\n";
        return 0;
    }
    try {
        return Inspector(ParseOptions(arguments), input, output, errors).Run();
    } catch (const OptionError& error) {
        errors << "vantor-inspect: " << PrintableText(error.what()) << " (--help lists the options)\n";
        return kExitWrongOptions;
    }
}

} // namespace vantor::inspect
