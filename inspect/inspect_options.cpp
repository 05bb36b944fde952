#include "inspect/inspect_options.h"

#include "inspect/printable_text.h"
#include "vantor_version.h"

#include <CLI/CLI.hpp>

#include <ostream>

namespace vantor::inspect {
namespace {

constexpr int kExitWrongOptions = 2;

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

/// Declares the command line, whose values are stored in `options`.
void Describe(CLI::App& app, InspectOptions& options)
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

} // namespace

std::optional<int> ReadInspectOptions(const std::vector<std::string>& arguments, InspectOptions& options,
                                      std::ostream& output, std::ostream& errors)
{
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
    return std::nullopt;
}

} // namespace vantor::inspect
