#include "proxy/config/proxy_settings.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(ProxySettings, Address)
{
    const std::pair<const char*, const char*> kCases[] = {
        {"proxy.corp", "proxy.corp:8080"},
        {"10.0.0.1", "10.0.0.1:8080"},
        {"fe80::1", "[fe80::1]:8080"},
        {"[fe80::1]", "[fe80::1]:8080"},
        {"http://proxy.corp", "http://proxy.corp:8080"},
        {"https://proxy.corp", "https://proxy.corp:8080"},
    };
    for (const auto& [server, address] : kCases) {
        EXPECT_EQ(ProxyAddress({.server = server, .port = 8080}), address);
    }
    EXPECT_TRUE(HasExplicitProxy({.server = "s", .port = 1}));
    EXPECT_FALSE(HasExplicitProxy({.server = "s"}));
    EXPECT_FALSE(HasExplicitProxy({.port = 1}));
}

TEST(ProxySettings, UserName)
{
    const std::pair<RunConfig, const char*> kCases[] = {
        {{.username = "me"}, "me"},
        {{.username = "me", .domain = "D"}, "D\\me"},
        {{.username = "E\\me", .domain = "D"}, "E\\me"},
        {{.username = "me@corp", .domain = "D"}, "me@corp"},
        {{.domain = "D", .principal = "host/x"}, "D\\host/x"},
        {{.username = "me", .principal = "other"}, "me"},
        {{.domain = "D"}, ""},
    };
    for (const auto& [config, name] : kCases) {
        EXPECT_EQ(ProxyUserName(config), name);
    }
}

} // namespace vantor
