#include "receiver/pulse_page.h"

#include "inspect/sample_pulse.h"
#include "receiver/fleet_page.h"

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
             "<tr class=\"changed\"><th scope=\"row\">os_build</th><td>19046 <span class=\"was\">was 19045<",
             "<a href=\"/?mode=&amp;bit=&amp;host=h-1\"",
             "&quot;&gt;&lt;script&gt;document.title=&#39;x&#39;&lt;/script&gt;&amp;\\xE2\\x80\\xAE",
         }) {
        EXPECT_NE(page.find(text), std::string::npos) << text;
    }
    EXPECT_LT(page.find("UTC &middot; predatupdate"), page.find("time &middot; postdatupdate")); // the latest first

    EXPECT_NE(PulsePage(Pulses(), {"", "", "h-2"}).find("0 of 3 pulses"), std::string::npos);
    EXPECT_NE(PulsePage(Pulses(), {"\"<", "nobit", ""}).find("3 of 3 pulses"), std::string::npos);
    EXPECT_NE(PulsePage(Pulses(), {"predatupdate", "ipv6", "h-1"}).find("1 of 3 pulses"), std::string::npos);
}

TEST(PulsePage, FitsAPhoneAndNothingInAPulseBecomesMarkup)
{
    std::string page = PulsePage(Pulses(), {}) +
                       "<script>for (const details of document.querySelectorAll('details')) details.open = true;"
                       "const root = document.documentElement, count = name => root.querySelectorAll(name).length;"
                       "parent.document.title = [document.title, innerWidth, root.scrollWidth - root.clientWidth, "
                       "count('article'), count('script')].join()</script>";
    page = std::regex_replace(std::regex_replace(page, std::regex("&"), "&amp;"), std::regex("\""), "&quot;");
    const std::string place = testing::TempDir() + "pulse_page_" + std::to_string(::getpid());
    // A browser's own window would be wider.
    std::ofstream(place + ".html") << "<iframe style='width: 360px; border: 0' srcdoc=\"" << page << "\"></iframe>";
    const std::string command = "timeout 60 chromium --headless=new --no-sandbox --disable-gpu --dump-dom "
                                "--user-data-dir=" +
                                place + " 'file://" + place + ".html' 2>/dev/null >" + place + ".shown.html";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    std::ifstream document(place + ".shown.html");
    const std::string shown{std::istreambuf_iterator<char>(document), {}};
    EXPECT_NE(shown.find("<title>Safety pulses,360,0,3,1</title>"), std::string::npos) << shown.substr(0, 200);
    for (const char* const file : {"", ".html", ".shown.html"}) {
        std::filesystem::remove_all(place + file);
    }
}

TEST(FleetPage, SaysWhatItsPulsesTell)
{
    std::vector<inspect::DatedPulse> pulses = Pulses();
    for (std::size_t index = 0; index < pulses.size(); ++index) {
        pulses[index].pulse.client["rid"] = index;
        pulses[index].received = std::chrono::sys_seconds(std::chrono::hours(30 * index));
    }
    EXPECT_NE(FleetPage(pulses).find("3 pulses marked as tests"), std::string::npos);
    for (inspect::DatedPulse& pulse : pulses) {
        pulse.pulse.client.erase("ro");
    }
    pulses[0].pulse.client["cliid"] = "<script>";
    const std::string page = FleetPage(pulses);
    EXPECT_NE(page.find("Content unknown does not stand out in 1 updates"), std::string::npos);
    EXPECT_NE(page.find("<code>&lt;script&gt;</code>"), std::string::npos);
    EXPECT_EQ(page.find("<script"), std::string::npos);
}

} // namespace
} // namespace vantor::receiver
