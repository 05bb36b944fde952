#include "health/protection/access_protection.h"

#include "support/log_capture.h"
#include "support/product_module.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vantor {
namespace {

constexpr char kNoExclusion[] = "TRACE: Failed in initialization of ScopedAccessProtectionExclusionObject.Error code :";
constexpr char kNoRule[] = "Failed to add rule for exclusion to AAC policy";

/// Asks for a file, a key and a key's values, and ends the exclusion. "+" for each that was granted, "-" for others.
std::string AskForAll(DWORD result)
{
    ScopedAccessProtectionExclusionObject exclusion;
    EXPECT_EQ(exclusion.InitialisationResult(), result);
    const bool file = exclusion.AllowFilePathAccessToProcess(L"C:\\logs\\*", 0x14201B);
    const bool key = exclusion.GetRegistryKeyAccessToProcess(L"HKLM\\a\\b", 0x2);
    const bool values = exclusion.GetRegistryValueAccessToProcess(L"HKLM\\a\\b\\**", 0x20006);
    return {file ? '+' : '-', key ? '+' : '-', values ? '+' : '-'};
}

TEST(AccessProtection, ExclusionIsForThisProcessAndEndsWithItsObject)
{
    const Scratch scratch(L"signed");
    EXPECT_EQ(AskForAll(0), "+++");
    const std::string first = Scratch::Record();
    EXPECT_EQ(AskForAll(0), "+++");
    const std::string second = Scratch::Record().substr(first.size());
    EXPECT_NE(first, second); // each has a policy of its own
    for (const std::string& record : {first, second}) {
        const std::string policy = record.substr(record.find("BuildPolicy") + 11, 39);
        std::string expected = "NotComDllGetInterface AacControl6\nCreate {6B0E0C53-52B5-4F6C-9D13-1F6C2E9A74D8}\n"
                               "GetPolicyBuilder\nBuildPolicy" +
                               policy + "\nAddPolicy" + policy + "\n";
        for (const std::string object :
             {"FilePath C:\\logs\\* 0x14201B", "RegistryKey HKLM\\a\\b 0x2", "RegistryValue HKLM\\a\\b\\** 0x20006"}) {
            const std::string process = std::to_string(::GetCurrentProcessId());
            const std::string rule = " Exclusion rule for process: " + process + "," + object.substr(object.find(' '));
            expected += "GetRuleBuilder\nGetMatchObjectBuilder\nMatchProcess " + process + "\nMatch" + object +
                        "\nBuildExclusion" + rule + "\nAddRule" + policy + rule + "\n";
        }
        EXPECT_EQ(record, expected + "RemovePolicy" + policy + "\nRelease\n");
    }
}

TEST(AccessProtection, EveryRefusalIsLoggedAndSurvived)
{
    const struct {
        std::vector<std::string> refused; ///< one after the other
        DWORD result;
        std::string granted, line;
    } kCases[] = {
        {{"NotComDllGetInterface", "Create"}, 5, "---", "Failed in AacControlCreate. Error Code:5"},
        {{"NotComDllGetInterface:null"}, 13, "---", "Failed in AacControlCreate. Error Code:13"},
        {{"GetPolicyBuilder"}, 5, "---", "Failed to policy builder. Error code :5"},
        {{"GetPolicyBuilder:null"}, 13, "---", "Policy builder is NULL"},
        {{"BuildPolicy"}, 5, "---", "Policy is NULL."},
        {{"BuildPolicy:null"}, 13, "---", "Policy is NULL."},
        {{"AddPolicy"}, 5, "---", "Failed to add policy. Error code :5"},
        {{"GetRuleBuilder"}, 0, "---", "Failed to get rule builder. Error code :5"},
        {{"GetRuleBuilder:null"}, 0, "---", "Failed to get rule builder. Error code :0"},
        {{"GetMatchObjectBuilder"}, 0, "---", "Failed to get Match object builder. Error code :5"},
        {{"GetMatchObjectBuilder:null"}, 0, "---", "Failed to get Match object builder. Error code :0"},
        {{"MatchProcess", "MatchProcess:null", "BuildExclusion", "BuildExclusion:null", "AddRule"}, 0, "---", kNoRule},
        {{"MatchFilePath", "MatchFilePath:null"}, 0, "-++", kNoRule},
        {{"MatchRegistryKey"}, 0, "+-+", kNoRule},
        {{"MatchRegistryValue"}, 0, "++-", kNoRule},
        {{"RemovePolicy"}, 0, "+++", ""},
    };
    for (const auto& [operations, result, granted, line] : kCases) {
        for (const std::string& refused : operations) {
            SCOPED_TRACE(refused);
            const Scratch scratch(L"signed", nullptr, refused);
            const LogCapture log;
            EXPECT_EQ(AskForAll(result), granted);
            const auto refusals = static_cast<std::size_t>(std::count(granted.begin(), granted.end(), '-'));
            std::vector<std::string> expected(result ? 1 : refusals, "TRACE: " + line);
            if (result != 0) {
                expected.push_back(kNoExclusion + std::to_string(result));
            }
            EXPECT_EQ(log.Lines(), expected);
            const std::string record = Scratch::Record();
            EXPECT_EQ(record.ends_with("\nRelease\n"), !refused.starts_with("NotCom"));
            EXPECT_EQ(record.find("RemovePolicy") != std::string::npos, result == 0);
        }
    }
}

} // namespace
} // namespace vantor
