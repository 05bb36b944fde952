// The options of the command vantor-inspect.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantor::inspect {

inline constexpr std::string_view kStandardInput = "-"; ///< the file name that stands for standard input

struct InspectOptions {
    bool json = false;
    bool fleet = false;
    bool csv = false;
    std::string page; ///< file to write the fleet's page to; empty: none
    bool difference = false;
    std::size_t last = std::numeric_limits<std::size_t>::max(); ///< how many of a file's last runs or pulses are shown
    std::vector<std::string> files = {std::string(kStandardInput)};
};

/// Reads the arguments after the program's name. Returns nothing if the command is to run, otherwise the exit code: 0
/// after --help and --version, whose text goes to `output`, 2 if the options are wrong, which `errors` then explains.
std::optional<int> ReadInspectOptions(const std::vector<std::string>& arguments, InspectOptions& options,
                                      std::ostream& output, std::ostream& errors);

} // namespace vantor::inspect
