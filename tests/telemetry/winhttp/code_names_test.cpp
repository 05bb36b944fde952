#include "telemetry/winhttp/code_names.h"

#include <gtest/gtest.h>

namespace vantor {
namespace {

TEST(CodeNames, KnownAndUnknown)
{
    EXPECT_EQ(WinHttpErrorName(0), "ERROR_SUCCESS");
    EXPECT_EQ(WinHttpErrorName(12003), "Unknown error (12003)");
    EXPECT_EQ(WinHttpErrorName(0xFFFFFFFF), "Unknown error (4294967295)");
    EXPECT_EQ(NamedWinHttpError(12029), "ERROR_WINHTTP_CANNOT_CONNECT 12029");
    EXPECT_EQ(WinHttpStatusName(0x4000000), "WINHTTP_CALLBACK_STATUS_SHUTDOWN_COMPLETE");
    EXPECT_EQ(WinHttpStatusName(3), "Unknown status (3)");
    EXPECT_EQ(WinHttpStatusName(0x2000), "Unknown status (8192)");
}

TEST(CodeNames, ReasonPhrasesAreThoseOfExactlyTheseCodes)
{
    const struct {
        std::uint32_t from, to; ///< without a gap
    } kKnown[] = {{100, 101}, {103, 103}, {200, 206}, {300, 304}, {307, 308}, {400, 418}, {422, 422},
                  {425, 426}, {428, 429}, {431, 431}, {451, 451}, {500, 508}, {510, 511}};
    for (std::uint32_t code = 0; code < 1000; ++code) {
        bool known = false;
        for (const auto& range : kKnown) {
            known = known || (code >= range.from && code <= range.to);
        }
        EXPECT_EQ(HttpReasonPhrase(code) != "Unknown status (" + std::to_string(code) + ")", known) << code;
    }
    EXPECT_EQ(HttpReasonPhrase(418), "I'm a teapot");
    EXPECT_EQ(HttpReasonPhrase(203), "Non-Authoritative Information");
    EXPECT_EQ(HttpReasonPhrase(413), "Payload Too Large");
    EXPECT_EQ(HttpReasonPhrase(407), "Proxy Authentication Required");
}

} // namespace
} // namespace vantor
