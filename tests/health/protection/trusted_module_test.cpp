#include "health/protection/trusted_module.h"

#include "platform/owner.h"
#include "platform/text/encoding.h"
#include "support/product_module.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

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

} // namespace
} // namespace vantor
