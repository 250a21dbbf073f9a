#include <frontpanel_displays/display_choice.h>

#include <gtest/gtest.h>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

TEST(DisplayChoice, TellsDisplayAddressAndPort) {
    EXPECT_EQ(Display_choice().kind, Display_choice::USUAL);
    EXPECT_EQ(parse_display("terminal").kind, Display_choice::TERMINAL);
    EXPECT_EQ(parse_display("text").kind, Display_choice::TEXT);

    struct Server_case {
        std::string text;
        std::string host;
        int port;
    };
    const Server_case CASES[] = {
        {"lcdproc", "127.0.0.1", 13666},         {"lcdproc:localhost", "127.0.0.1", 13666},
        {"lcdproc:localhost:1", "127.0.0.1", 1}, {"lcdproc:127.0.0.2:65535", "127.0.0.2", 65535},
        {"lcdproc:[::1]", "::1", 13666},         {"lcdproc:[::1]:2000", "::1", 2000},
    };
    for (const Server_case& expected : CASES) {
        const Display_choice choice = parse_display(expected.text);
        EXPECT_EQ(choice.kind, Display_choice::LCDPROC) << expected.text;
        EXPECT_EQ(choice.host, expected.host) << expected.text;
        EXPECT_EQ(choice.port, expected.port) << expected.text;
    }
}

TEST(DisplayChoice, WhatIsNoDisplayIsTold) {
    for (const std::string bad :
         {"", "lcd", "Text", "lcdprocs", "lcdproc:", "lcdproc::13666", "lcdproc:display.invalid",
          "lcdproc:localhost:", "lcdproc:localhost:0", "lcdproc:localhost:65536",
          "lcdproc:localhost:13666x", "lcdproc:localhost:1:2", "lcdproc:300.0.0.1", "lcdproc:127.1",
          "lcdproc:::1", "lcdproc:[::1", "lcdproc:[]", "lcdproc:[::1]2000",
          "lcdproc:[127.0.0.1]"}) {
        EXPECT_THROW(parse_display(bad), Input_error) << bad;
    }
    try {
        parse_display("screen\n");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(),
                     "expected terminal, text or lcdproc[:ADDRESS[:PORT]], found \"screen?\"");
    }
}

}  // namespace
}  // namespace frontpanel
