#include "health/protection/access_protection.h"

#include "health/protection/trusted_module.h"
#include "platform/program.h"
#include "platform/text/encoding.h"
#include "support/log_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace vantor {
namespace {

constexpr wchar_t kModule[] = L"vxeaaca.dll";
constexpr char kNoExclusion[] = "TRACE: Failed in initialization of ScopedAccessProtectionExclusionObject.Error code :";
constexpr char kNoRule[] = "Failed to add rule for exclusion to AAC policy";

/// A current folder of its own with one build of the product's module, or none. What the module keeps loaded is
/// unloaded at the end, so that the folder can go.
class Scratch {
public:
    explicit Scratch(const std::wstring& build, const char* versions = nullptr, const std::string& refused = "")
    {
        std::filesystem::remove_all(m_folder); // of a run that crashed
        std::filesystem::create_directory(m_folder);
        std::filesystem::current_path(m_folder);
        if (!build.empty()) {
            const auto tests = std::filesystem::path(*ProgramPath()).parent_path();
            std::filesystem::copy_file(tests / L"modules" / build / kModule, kModule);
        }
        ::SetEnvironmentVariableA("VXEAACA_RECORD", "record.txt");
        ::SetEnvironmentVariableA("VXEAACA_VERSIONS", versions);
        ::SetEnvironmentVariableA("VXEAACA_REFUSE", refused.c_str());
    }
    ~Scratch()
    {
        for (int most = 10; most > 0 && ::GetModuleHandleW(kModule); --most) {
            ::FreeLibrary(::GetModuleHandleW(kModule));
        }
        std::filesystem::current_path(m_folder.parent_path());
        std::error_code error;
        std::filesystem::remove_all(m_folder, error);
    }

    /// What the module was asked.
    static std::string Record()
    {
        std::ifstream file("record.txt");
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    const std::filesystem::path m_folder =
        std::filesystem::current_path() / ("access_protection_" + std::to_string(::GetCurrentProcessId()));
};

std::string debugOutput;
DWORD writeError = 0;

/// Catches what goes to a debugger: UTF-16 on Windows, narrow text under Wine. While a module is refused it tries to
/// open it for writing. GoogleTest reports to debuggers, too: nothing can be expected in here.
LONG CALLBACK CatchDebugOutput(EXCEPTION_POINTERS* raised)
{
    const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
    const ULONG_PTR text = record.ExceptionInformation[1];
    if (record.ExceptionCode != 0x4001000A && record.ExceptionCode != 0x40010006) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    debugOutput += record.ExceptionCode == 0x4001000A ? ToNarrow(reinterpret_cast<const wchar_t*>(text))
                                                      : reinterpret_cast<const char*>(text);
    if (debugOutput.find("failed") != std::string::npos) {
        const FileHandle file(::CreateFileW(kModule, GENERIC_WRITE, 7, nullptr, OPEN_EXISTING, 0, nullptr));
        writeError = file ? ERROR_SUCCESS : ::GetLastError();
    }
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(TrustedModule, IsUsedOnlyWithAWholeSignatureAndTheExport)
{
    const struct {
        std::wstring build;
        char letter; ///< put into the text for DOS, if any
        DWORD error;
        std::string distrust;
    } kCases[] = {
        {L"", 0, ERROR_FILE_NOT_FOUND},
        {L"unsigned", 0, 0x800B0100, "800b0100"},
        {L"signed", '!', 0x80096010, "80096010"},
        {L"exportless", 0, ERROR_PROC_NOT_FOUND},
        {L"signed", 0, ERROR_SUCCESS},
    };
    void* const handler = ::AddVectoredExceptionHandler(1, &CatchDebugOutput);
    for (const auto& [build, letter, error, distrust] : kCases) {
        SCOPED_TRACE(ToNarrow(build) + distrust);
        const Scratch scratch(build);
        if (letter) {
            std::fstream(kModule, std::ios::in | std::ios::out | std::ios::binary).seekp(0x50).put(letter);
        }
        std::string expected = "NCPrivateLoadAndValidateVPTDll: Looking in EXE directory\n"
                               "NCPrivateLoadAndValidateVPTDll: Looking in current directory\n";
        if (!distrust.empty()) {
            expected += "NotComDllGetInterface: " + ToNarrow(*ProgramPath()) + " loading " +
                        std::filesystem::absolute(kModule).string() + ", WinVerifyTrust failed with " + distrust + "\n";
        }
        debugOutput.clear();
        writeError = 0;
        const ModuleInterface result = GetModuleInterface(kModule, L"AacControl6", false);
        EXPECT_EQ(result.error, error);
        EXPECT_EQ(debugOutput, expected);
        EXPECT_EQ(writeError, distrust.empty() ? 0 : DWORD{ERROR_SHARING_VIOLATION}); // held while it is checked
        EXPECT_EQ(result.pointer != nullptr, error == ERROR_SUCCESS);
        EXPECT_EQ(::GetModuleHandleW(kModule) != nullptr, error == ERROR_SUCCESS);
    }
    ::RemoveVectoredExceptionHandler(handler);
}

TEST(TrustedModule, IsAskedForOlderVersionsIfThatIsAllowed)
{
    std::string asked;
    for (const std::string only :
         {"AacControl6", "AacControl5", "AacControl4", "AacControl3", "AacControl2", "AacControl", "none"}) {
        const Scratch scratch(L"signed", only.c_str());
        asked += only == "none" ? "" : "NotComDllGetInterface " + only + "\n";
        EXPECT_EQ(GetModuleInterface(kModule, L"AacControl6", true).error, only == "none" ? ERROR_NOT_SUPPORTED : 0);
        EXPECT_EQ(Scratch::Record(), asked);
    }
    const Scratch scratch(L"signed", "AacControl5");
    EXPECT_EQ(GetModuleInterface(kModule, L"AacControl6", false).error, DWORD{ERROR_NOT_SUPPORTED});
    EXPECT_EQ(Scratch::Record(), "NotComDllGetInterface AacControl6\n");
    EXPECT_EQ(GetModuleInterface(std::wstring(32768, L'x'), L"AacControl6", true).error, ERROR_INVALID_PARAMETER);
    EXPECT_NE(GetModuleInterface(std::wstring(32767, L'x'), L"AacControl6", true).error, ERROR_INVALID_PARAMETER);
}

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
            std::vector<std::string> expected(result ? 1 : std::count(granted.begin(), granted.end(), '-'),
                                              "TRACE: " + line);
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
