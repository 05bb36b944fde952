#include "platform/text/multi_string.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantor {
namespace {

TEST(MultiString, NeverReadsPastTheData)
{
    using namespace std::string_literals;
    const std::pair<std::u16string, bool> kCases[] = {
        {u"", false},
        {u"vxedisk", true}, // no terminator at all
        {u"partmgr\0vxedisk\0\0"s, true},
        {u"\0vxedisk\0"s, true}, // behind an empty entry
        {u"vxedisk2\0xvxedisk\0vxedis\0VXEDISK\0"s, false},
    };
    for (const auto& [text, found] : kCases) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
        for (const std::size_t odd : {0u, 1u}) { // a last byte that is half a character
            std::vector<std::uint8_t> data(bytes, bytes + 2 * text.size());
            data.resize(data.size() + odd, 'x');
            EXPECT_EQ(MultiStringContains(data, u"vxedisk"), found) << data.size();
        }
    }
}

} // namespace
} // namespace vantor
