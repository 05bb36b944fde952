#include "run/options/usage.h"

#include "run/options/options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace vantor {
namespace {

/// The options that stand in what the pattern finds.
std::set<std::string> OptionsIn(const std::string& text, const std::string& pattern)
{
    const std::regex row(pattern), option(R"((/|--)[a-z?]+)");
    std::set<std::string> options;
    for (std::sregex_iterator found(text.begin(), text.end(), row), end; found != end; ++found) {
        const std::string names = found->str(1);
        std::transform(std::sregex_iterator(names.begin(), names.end(), option), end,
                       std::inserter(options, options.end()), [](const auto& match) { return match.str(); });
    }
    return options;
}

TEST(Options, UsageAndReadmeNameEachAndNoOther)
{
    std::ifstream file(VANTOR_SOURCE_DIRECTORY "/README.md");
    const std::string readme{std::istreambuf_iterator<char>(file), {}};
    const std::set<std::string> options = OptionsIn(UsageText(), "\\n  (/.{0,24})");
    EXPECT_EQ(OptionsIn(readme, "\\n\\| (`/[^|]*)"), options);
    EXPECT_EQ(options.size(), 22u);
    for (const std::string& option : options) {
        const char* const arguments[] = {"/?", option.c_str()};
        EXPECT_NE(IsOption(option), AsksForUsage(arguments)) << option;
        EXPECT_FALSE(AsksForUsage({arguments, 1}));
    }
    EXPECT_FALSE(std::regex_search(UsageText(), std::regex("[^\r\n]{80}|[^\r]\n")));
}

} // namespace
} // namespace vantor
