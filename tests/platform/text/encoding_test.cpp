#include "platform/text/encoding.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace vantor {

TEST(Text, NoCharacterBecomesOneThatLooksLikeIt)
{
    const std::string narrow = ToNarrow(L"\uFF02\u2033\uFF0F\uFF3C"); // wide and double quotes, slashes
    EXPECT_EQ(narrow.find_first_of("\"/\\"), narrow.npos) << narrow << " in code page " << ::GetACP();
    EXPECT_EQ(ToUtf8(L"\uFF02"), "\xEF\xBC\x82");
}

} // namespace vantor
