#include "run/task/task_description.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>

namespace vantor {

TEST(TaskDescription, EachLanguageHasItsTextAndAnyOtherTheEnglishOne)
{
    std::map<unsigned long, std::string> texts;
    std::ifstream file(VANTOR_SOURCE_DIRECTORY "/tests/run/task/task_descriptions.tsv", std::ios::binary);
    for (std::string id, text; std::getline(file, id, '\t') && std::getline(file, text);) {
        texts[std::stoul(id, nullptr, 16)] = std::regex_replace(text, std::regex(R"(\\u00A0)"), "\xC2\xA0");
    }
    ASSERT_EQ(texts.size(), 31u);
    for (unsigned language = 0; language <= 0xFFFF; ++language) {
        const auto text = std::filesystem::path(TaskDescription(static_cast<std::uint16_t>(language))).u8string();
        ASSERT_EQ(std::string(text.begin(), text.end()), texts[texts.contains(language) ? language : 0x0409]);
    }
}

} // namespace vantor
