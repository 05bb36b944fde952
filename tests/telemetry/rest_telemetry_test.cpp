#include "telemetry/rest_telemetry.h"

#include "support/log_capture.h"
#include "support/scratch_registry.h"
#include "support/scripted_winhttp.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

const RunConfig kProxied = {
    .server = "p", .port = 8080, .username = "u", .password = "pw", .domain = "d"}; // nothing is to be discovered

class RestTelemetryTest : public ::testing::Test {
protected:
    void Send(std::size_t reportBytes) { SendTelemetry(std::vector<std::uint8_t>(reportBytes), kProxied, m_http); }

    ScratchRegistry m_registry;
    std::shared_ptr<ScriptedHttp> m_http = std::make_shared<ScriptedHttp>();
    LogCapture m_log;
};

TEST_F(RestTelemetryTest, ConnectsToTheServiceAsItsSettingsSay)
{
    for (const std::string server : {"vri.vexora.example 443", "vri6.vexora.example 443", "localhost 8000"}) {
        m_http->calls.clear();
        Send(46);
        EXPECT_TRUE(m_http->calls.starts_with("Open 3 p:8080;SetTimeouts 3000 3000 3000 3000;SetOption 84 2048;"
                                              "SetOption 133 0;Connect " +
                                              server + ";OpenRequest POST /1 8388608;"))
            << m_http->calls;
        m_registry.Set(L"SOFTWARE\\Vexora\\AVSolution\\VXSHIELDGLOBAL\\GLOBAL", L"vriuseipv6", DWORD{1});
        if (server.starts_with("vri6")) {
            m_registry.Create(L"SOFTWARE\\Vexora\\AVSolution\\SetVriLocalHost");
        }
    }
    EXPECT_TRUE(m_log.Has("TRACE: ProxyConfig.m_username = d\\u") && m_log.Has("TRACE: ProxyConfig.m_password = pw"));
    EXPECT_TRUE(m_log.Has("TRACE: ProxyConfig.m_repAuthSchemes[0] = 4"));
}

TEST_F(RestTelemetryTest, WithoutAConnectionSaysWhyAndThatNothingIsSent)
{
    m_http->errors["Open"] = {12001};
    Send(46);
    EXPECT_TRUE(m_log.Has("ERROR: Initialise failed: Reset failed."));
    EXPECT_TRUE(m_log.Has("ERROR: Send telemetry failed: http not initialised"));
    EXPECT_EQ(m_log.Lines().back(), "TRACE: Leaving SendTelemetry");
}

TEST_F(RestTelemetryTest, SendsReportsOfOneByteToTheLimit)
{
    for (const auto& [bytes, isSent] : {std::pair(0, false), {1, true}, {14'336, true}, {14'337, false}}) {
        m_http->ways.clear();
        Send(static_cast<std::size_t>(bytes));
        EXPECT_EQ(m_http->ways, isSent ? "p:8080;" : "") << bytes;
        const std::string sizeText = ", size=" + std::to_string(bytes);
        const auto isRefused = [&](const std::string& line) {
            return line.starts_with("ERROR: Send telemetry failed: invalid arguments: data=") &&
                   line.ends_with(sizeText);
        };
        EXPECT_EQ(std::ranges::any_of(m_log.Lines(), isRefused), !isSent) << bytes;
    }
}

} // namespace
} // namespace vantor
