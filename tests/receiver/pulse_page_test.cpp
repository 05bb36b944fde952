#include "receiver/pulse_page.h"

#include "inspect/sample_pulse.h"
#include "receiver/receiver.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

namespace vantor::receiver {
namespace {

/// A pulse, one of another host whose every text is an attack, and a later one of the first host.
std::vector<inspect::DatedPulse> Pulses()
{
    std::string attack = inspect::SampleBody();
    attack.replace(attack.find("c-1"), 3, R"(\"><script>document.title='x'</script>&\u202e)");
    return {{{}, inspect::DecodePulse(inspect::SampleBody(inspect::kEarlyReport))},
            {{}, inspect::DecodePulse(attack)},
            {std::chrono::sys_seconds(std::chrono::seconds(60)),
             inspect::DecodePulse(inspect::SampleBody(inspect::kLaterReport))}};
}

TEST(PulsePage, MarksChangesEscapesAndFilters)
{
    const std::string page = PulsePage(Pulses(), {});
    for (const char* text : {
             "1970-01-01 00:01:00 UTC &middot; predatupdate",
             "title=\"the product prefers IPv6\"><s>ipv6</s> no longer<",
             "<li>B</li><li class=\"changed\">C new</li><li class=\"changed\"><s>A</s> no longer</li>",
             "<tr class=\"changed\"><th>os_build</th><td>19046 <span class=\"was\">was 19045<",
             "&quot;&gt;&lt;script&gt;document.title=&#39;x&#39;&lt;/script&gt;&amp;\\xE2\\x80\\xAE",
         }) {
        EXPECT_NE(page.find(text), std::string::npos) << text;
    }
    EXPECT_LT(page.find("UTC &middot; predatupdate"), page.find("time &middot; postdatupdate")); // the latest first

    EXPECT_NE(PulsePage(Pulses(), {"\"<", "nobit"}).find("3 of 3 pulses"), std::string::npos);
}

/// The document that a browser makes of a page.
std::string Browse(const std::string& address)
{
    const std::string place = testing::TempDir() + "pulse_page_" + std::to_string(::getpid());
    const std::string command = "timeout 60 chromium --headless=new --no-sandbox --disable-gpu --dump-dom "
                                "--ignore-certificate-errors --user-data-dir=" +
                                place + " '" + address + "' 2>/dev/null >" + place + ".html";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    std::ifstream document(place + ".html");
    const std::string text{std::istreambuf_iterator<char>(document), {}};
    std::error_code error;
    std::filesystem::remove_all(place, error);
    std::filesystem::remove(place + ".html");
    return text;
}

TEST(PulsePage, ABrowserShowsItAndNothingInAPulseBecomesMarkup)
{
    Receiver receiver({VANTOR_PKI_DIRECTORY "/server-a.pem", VANTOR_PKI_DIRECTORY "/server-a.key", 0});
    std::ranges::for_each(Pulses(), [&](const auto& pulse) { receiver.AddPulse(pulse); });
    receiver.Start();
    const std::regex article("<article>");
    for (const auto& [query, count] : {std::pair("", 3), {"?mode=predatupdate&bit=ipv6", 1}}) {
        const std::string document = Browse("https://localhost:" + std::to_string(receiver.Port()) + '/' + query);
        EXPECT_EQ(std::distance(std::sregex_iterator(document.begin(), document.end(), article), {}), count);
        EXPECT_EQ(document.find("<script"), std::string::npos);
        EXPECT_EQ(document.find("customer \"&gt;&lt;script&gt;document.title='x'&lt;") != std::string::npos,
                  count == 3);
    }
}

TEST(PulsePage, FitsAPhone)
{
    std::string page = PulsePage(Pulses(), {}) +
                       "<script>for (const details of document.querySelectorAll('details')) details.open = true;"
                       "const root = document.documentElement;"
                       "parent.document.title = innerWidth + ' ' + (root.scrollWidth - root.clientWidth)</script>";
    page = std::regex_replace(std::regex_replace(page, std::regex("&"), "&amp;"), std::regex("\""), "&quot;");
    // A browser's own window would be wider.
    const std::string file = testing::TempDir() + "pulse_page_" + std::to_string(::getpid()) + "_phone.html";
    std::ofstream(file) << "<iframe style='width: 390px; border: 0' srcdoc=\"" << page << "\"></iframe>";
    EXPECT_NE(Browse("file://" + file).find("<title>390 0</title>"), std::string::npos);
    std::filesystem::remove(file);
}

} // namespace
} // namespace vantor::receiver
