#include "service/pulse_page.h"

#include "inspect/sample_pulse.h"
#include "service/reputation_service.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vantor::service {
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
             "title=\"the service is reached over IPv6\"><s>ipv6</s> no longer<",
             "<li>B</li><li class=\"changed\">C new</li><li class=\"changed\"><s>A</s> no longer</li>",
             "<tr class=\"changed\"><th>os_build</th><td>19046 <span class=\"was\">was 19045<",
             "&quot;&gt;&lt;script&gt;document.title=&#39;x&#39;&lt;/script&gt;&amp;\\xE2\\x80\\xAE",
         }) {
        EXPECT_NE(page.find(text), std::string::npos) << text;
    }
    EXPECT_LT(page.find("UTC &middot; predatupdate"), page.find("time &middot; postdatupdate")); // the latest first

    const std::pair<PageFilter, std::string> kCases[] = {
        {{"predatupdate", ""}, "2 of 3 pulses"},
        {{"predatupdate", "ipv6"}, "1 of 3 pulses"},
        {{"\"<", "nobit"}, "3 of 3 pulses"},
    };
    for (const auto& [filter, count] : kCases) {
        EXPECT_NE(PulsePage(Pulses(), filter).find(count), std::string::npos) << filter.mode << filter.bit;
    }
}

TEST(PulsePage, ABrowserShowsItAndRunsNothingThatCameInAPulse)
{
    if (std::system("command -v chromium >/dev/null") != 0) {
        GTEST_SKIP() << "chromium is not installed (apt-get install chromium), so no browser looked at the page.";
    }
    ReputationService service({VANTOR_PKI_DIRECTORY "/server-a.pem", VANTOR_PKI_DIRECTORY "/server-a.key", 0});
    for (const auto& pulse : Pulses()) {
        service.AddPulse(pulse);
    }
    service.Start();
    const std::string command = "timeout 60 chromium --headless=new --no-sandbox --disable-gpu --dump-dom "
                                "--ignore-certificate-errors --user-data-dir=" +
                                testing::TempDir() + "pulse_page https://localhost:" + std::to_string(service.Port()) +
                                " 2>/dev/null | grep '<title>Safety pulses</title>'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

} // namespace
} // namespace vantor::service
