#include <frontpanel_displays/picture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include <frontpanel_base/input_error.h>
#include "support/folder.h"

namespace frontpanel {
namespace {

using testing::HasSubstr;
using testing::Not;

Frame frame_of(const std::string& first, const std::string& second = "", Lcd_size size = {20, 2}) {
    Frame frame{Lcd(size), Leds()};
    frame.lcd.put(0, 0, first);
    frame.lcd.put(1, 0, second);
    return frame;
}

int count(const std::string& text, const std::string& piece) {
    int found = 0;
    for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) {
        ++found;
    }
    return found;
}

TEST(Picture, HoldsTheDisplayLineByLine) {
    EXPECT_THAT(svg_of(frame_of("Gain 1", "0.3 dB")),
                HasSubstr("<desc>|Gain 1              |\n|0.3 dB              |</desc>"));
}

TEST(Picture, EveryCharacterButBlanksIsDrawnInItsCell) {
    const std::string svg = svg_of(frame_of("A b", "c"));
    EXPECT_EQ(count(svg, "class=\"ink\""), 3);
    EXPECT_EQ(count(svg, "class=\"cell\""), 40);
    const auto place_of = [&svg](const char* character) {
        std::smatch match;
        const std::regex pattern("<text x=\"(\\d+)\" y=\"(\\d+)\" class=\"ink\">" +
                                 std::string(character) + "<");
        EXPECT_TRUE(std::regex_search(svg, match, pattern)) << character;
        return std::make_pair(std::stoi(match[1]), std::stoi(match[2]));
    };
    EXPECT_EQ(place_of("A").second, place_of("b").second);
    EXPECT_EQ(place_of("A").first, place_of("c").first);
    EXPECT_EQ(place_of("b").first - place_of("A").first, 32);
    EXPECT_GT(place_of("c").second, place_of("A").second);
}

TEST(Picture, MarkupInATextIsEscaped) {
    const std::string svg = svg_of(frame_of("<a href=\"&\">'", "]]>"));
    EXPECT_THAT(svg, HasSubstr("|&lt;a href=\"&amp;\"&gt;'"));
    EXPECT_THAT(svg, HasSubstr(">&lt;</text>"));
    EXPECT_THAT(svg, HasSubstr("]]&gt;"));
    EXPECT_THAT(svg, Not(HasSubstr("<a")));
}

TEST(Picture, TheCursorIsOneInverseCell) {
    Frame frame = frame_of("Gain", "0.3 dB");
    EXPECT_EQ(count(svg_of(frame), "class=\"cursor\""), 0);
    frame.lcd.set_cursor(1, 2);
    const std::string svg = svg_of(frame);
    EXPECT_EQ(count(svg, "class=\"cursor\""), 1);
    EXPECT_EQ(count(svg, "class=\"cell\""), 39);
    EXPECT_THAT(svg, HasSubstr("class=\"inverse\">3</text>"));
}

TEST(Picture, ALitLedGlows) {
    Frame frame = frame_of("");
    const std::string dark = svg_of(frame);
    EXPECT_EQ(count(dark, "fill-opacity"), 0);
    frame.leds.edit = true;
    EXPECT_EQ(count(svg_of(frame), "\"#ffc53d\" fill-opacity"), 1);
    frame.leds.alarm = true;
    EXPECT_EQ(count(svg_of(frame), "\"#ff4b3e\" fill-opacity"), 1);
    EXPECT_EQ(count(svg_of(frame), "fill-opacity"), 2);
}

TEST(Picture, ADisplayThatNobodyLooksAtIsDim) {
    Frame frame = frame_of("Gain");
    EXPECT_EQ(count(svg_of(frame), "class=\"dim\""), 0);
    frame.dim = true;
    EXPECT_EQ(count(svg_of(frame), "class=\"dim\""), 1);
}

TEST(Picture, GrowsWithTheDisplay) {
    EXPECT_EQ(count(svg_of(frame_of("", "", LARGEST_LCD)), "class=\"cell\""), 80 * 16);
    EXPECT_EQ(count(svg_of(frame_of("", "", SMALLEST_LCD)), "class=\"cell\""), 16 * 2);
    EXPECT_THAT(svg_of(frame_of("", "", SMALLEST_LCD)),
                HasSubstr("width=\"462\" height=\"196\" viewBox=\"0 0 462 196\""));
}

TEST(Picture, TheFileHasTheLastFrame) {
    const support::Folder folder;
    Picture_display display(folder.file("a.svg"));
    display.finish();
    EXPECT_FALSE(std::filesystem::exists(folder.file("a.svg")));
    display.show(frame_of("first"));
    display.show(frame_of("last"));
    display.finish();
    EXPECT_EQ(read_input_file(folder.file("a.svg")), svg_of(frame_of("last")));
}

TEST(Picture, AFileThatCannotBeWrittenIsToldInOneLine) {
    const support::Folder folder;
    Picture_display display(folder.file("absent/a.svg"));
    display.show(frame_of("text"));
    EXPECT_THROW(display.finish(), Input_error);
}

}  // namespace
}  // namespace frontpanel
