#include "run/task/registration_checks.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(TaskSchedule, APathThatOthersSeeOtherwiseAndATaskOfAnotherOwnerAreToldApart)
{
    const auto isOwnDrive = [](char letter) { return letter == 'C'; };
    for (const char* path : {"C:\\a", "C:/a", "\\\\?\\C:\\a"}) {
        EXPECT_TRUE(IsTheSameForEveryone(path, isOwnDrive)) << path;
    }
    for (const char* path :
         {"M:\\a", "a.log", "\\a", "C:a", "\\\\box\\share\\a", "\\\\?\\UNC\\box\\a", "1:\\a", "C:\\"}) {
        EXPECT_FALSE(IsTheSameForEveryone(path, isOwnDrive)) << path;
    }
    for (const wchar_t* owner : {L"O:SY", L"O:BAG:SYD:(A;;FA;;;BA)", L"O:S-1-5-18G:BA", L"O:S-1-5-32-544"}) {
        EXPECT_TRUE(IsOwnedByAdministrators(owner)) << owner;
    }
    for (const wchar_t* owner :
         {L"", L"O:", L"O::", L"O:BU", L"O:BAD", L"O:S-1-5-21-1-2-3-1001G:BA", L"G:BA", L"D:(A;;FA;;;BA)"}) {
        EXPECT_FALSE(IsOwnedByAdministrators(owner)) << owner;
    }
}

} // namespace vantor
