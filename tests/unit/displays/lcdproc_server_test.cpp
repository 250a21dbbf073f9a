#include <frontpanel_displays/lcdproc_server.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(LcdprocServer, IsAnAddressAndAPort) {
    struct Server_case {
        std::string text;
        std::string host;
        int port;
    };
    const Server_case CASES[] = {
        {"localhost", "127.0.0.1", 13666},
        {"localhost:1", "127.0.0.1", 1},
        {"127.0.0.2:65535", "127.0.0.2", 65535},
        {"127.0.0.2", "127.0.0.2", 13666},
        {"[::1]", "::1", 13666},
        {"[::1]:2000", "::1", 2000},
    };
    for (const Server_case& expected : CASES) {
        const std::optional<Lcdproc_server> server = parse_lcdproc_server(expected.text);
        ASSERT_TRUE(server) << expected.text;
        EXPECT_EQ(server->host, expected.host) << expected.text;
        EXPECT_EQ(server->port, expected.port) << expected.text;
    }
}

TEST(LcdprocServer, IsNothingElse) {
    for (const std::string bad :
         {"", ":13666", "display.invalid", "localhost:", "localhost:0", "localhost:65536",
          "localhost:13666x", "localhost:1:2", "300.0.0.1", "127.1", "::1", "[::1", "[]",
          "[::1]2000", "[127.0.0.1]"}) {
        EXPECT_EQ(parse_lcdproc_server(bad), std::nullopt) << bad;
    }
}

}  // namespace
}  // namespace frontpanel
