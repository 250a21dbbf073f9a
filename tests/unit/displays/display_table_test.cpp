#include <frontpanel_displays/display_table.h>

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

TEST(DisplayTable, EachDisplayHasANameAndIsForAPersonOrForScripts) {
    std::set<std::string> names;
    for (const Display_row& row : display_table()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_EQ(std::string(row.name).find(':'), std::string::npos) << row.name;
        EXPECT_NE(row.open_front == nullptr, row.open_display == nullptr) << row.name;
        EXPECT_EQ(row.is_interactive(), row.open_front != nullptr) << row.name;
        EXPECT_EQ(row.accepts == nullptr, *row.syntax == '\0') << row.name;
    }
}

TEST(DisplayTable, TheDefaultsAreTheTerminalAndText) {
    EXPECT_STREQ(default_display(true).name, "terminal");
    EXPECT_STREQ(default_display(false).name, "text");
}

TEST(DisplayTable, ADisplayIsChosenByNameAndArgument) {
    EXPECT_EQ(Display_choice().display, nullptr);
    for (const Display_row& row : display_table()) {
        const Display_choice choice = parse_display(row.name);
        EXPECT_EQ(choice.display, &row);
        EXPECT_EQ(choice.argument, "");
    }
    const Display_choice server = parse_display("lcdproc:[::1]:2000");
    EXPECT_STREQ(server.display->name, "lcdproc");
    EXPECT_EQ(server.argument, "[::1]:2000");
}

TEST(DisplayTable, WhatIsNoDisplayIsTold) {
    for (const std::string bad :
         {"", "lcd", "Text", "lcdprocs", "terminal:", "text:1", "lcdproc:", "lcdproc::13666",
          "lcdproc:display.invalid", "charlcd:", ":terminal"}) {
        EXPECT_THROW(parse_display(bad), Input_error) << bad;
    }
    try {
        parse_display("screen\n");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(
            error.what(),
            "expected terminal, text, lcdproc[:IP[:PORT]] or charlcd[:PATH], found \"screen?\"");
    }
    EXPECT_EQ(display_names(), "terminal, text, lcdproc[:IP[:PORT]], charlcd[:PATH]");
}

TEST(DisplayTable, ADisplayShowsTheCharactersThatItHas) {
    const Character_rom& rom = Character_rom::a00();
    for (const Display_row& row : display_table()) {
        EXPECT_TRUE(row.shows(U'\u00B0', rom)) << row.name;
        EXPECT_TRUE(row.shows(U'\u2013', rom)) << row.name;
        EXPECT_EQ(row.shows(U'\u03A9', rom), row.name != std::string("lcdproc")) << row.name;
        EXPECT_EQ(row.shows(U'\u03A8', rom), row.characters == Display_characters::ALL) << row.name;
        EXPECT_FALSE(row.shows(U'\u4E2D', rom)) << row.name;
        EXPECT_FALSE(row.shows(U'\u0301', rom)) << row.name;
    }
}

TEST(DisplayTable, OpensTheDisplay) {
    std::ostringstream out;
    std::ostringstream messages;
    const Display_setup setup{"127.0.0.1:9", std::nullopt, usual_keys(), -1, out, messages};
    parse_display("text").display->open_display(setup)->show({Lcd({16, 2}), Leds()});
    EXPECT_NE(out.str(), "");
    const auto front = parse_display("lcdproc").display->open_front(setup);
    EXPECT_EQ(front->source().fd, -1);
}

}  // namespace
}  // namespace frontpanel
