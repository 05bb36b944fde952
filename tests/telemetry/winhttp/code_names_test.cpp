#include "telemetry/winhttp/code_names.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <tuple>

namespace vantor {
namespace {

TEST(CodeNames, AreThoseOfTheFileAndNoOther)
{
    std::map<std::string, std::map<std::uint32_t, std::string>> names; // of each kind
    std::ifstream file(VANTOR_SOURCE_DIRECTORY "/tests/telemetry/winhttp/code_names.tsv", std::ios::binary);
    for (std::string kind, code, name;
         std::getline(file, kind, '\t') && std::getline(file, code, '\t') && std::getline(file, name);) {
        names[kind][static_cast<std::uint32_t>(std::stoul(code, nullptr, 0))] = name;
    }
    const std::tuple<std::string, std::string (*)(std::uint32_t), std::string, std::size_t> kKinds[] = {
        {"error", WinHttpErrorName, "Unknown error (", 50},
        {"callback", WinHttpStatusName, "Unknown status (", 25},
        {"phrase", HttpReasonPhrase, "Unknown status (", 54},
    };
    for (const auto& [kind, nameOf, unknown, count] : kKinds) {
        ASSERT_EQ(names[kind].size(), count);
        std::uint32_t code = 0;
        do { // one by one, then from bit to bit
            const auto known = names[kind].find(code);
            const bool isKnown = known != names[kind].end();
            ASSERT_EQ(nameOf(code), isKnown ? known->second : unknown + std::to_string(code) + ")");
            code += code < 0x4000 ? 1 : code;
        } while (code != 0);
    }
    EXPECT_EQ(NamedWinHttpError(12029), "ERROR_WINHTTP_CANNOT_CONNECT 12029");
}

} // namespace
} // namespace vantor
