#include <frontpanel_displays/key_map.h>

#include <gtest/gtest.h>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

std::string key_error(const std::string& text) {
    try {
        parse_key_map(text);
    } catch (const Input_error& error) {
        return error.what();
    }
    return "";
}

TEST(KeyMap, TheUsualSixKeysReachEveryPlaceOfAValue) {
    const Key_map keys = usual_keys();
    ASSERT_EQ(keys.size(), 6U);
    EXPECT_EQ(keys.at("Up").kind, Key::UP);
    EXPECT_EQ(keys.at("Down").kind, Key::DOWN);
    EXPECT_EQ(keys.at("Enter").kind, Key::SELECT);
    EXPECT_EQ(keys.at("Escape").kind, Key::BACK);
    EXPECT_EQ(keys.at("Left").kind, Key::LEFT);
    EXPECT_EQ(keys.at("Right").kind, Key::RIGHT);
}

TEST(KeyMap, KeysAreWhatTheTextSays) {
    const Key_map keys =
        parse_key_map("A=select,+=coarser,-=finer,F1=1,Z=99,==back,<=left,>=right,X=erase");
    ASSERT_EQ(keys.size(), 9U);
    EXPECT_EQ(keys.at("A").kind, Key::SELECT);
    EXPECT_EQ(keys.at("+").kind, Key::COARSER);
    EXPECT_EQ(keys.at("-").kind, Key::FINER);
    EXPECT_EQ(keys.at("F1").kind, Key::SHORTCUT);
    EXPECT_EQ(keys.at("F1").button, 1);
    EXPECT_EQ(keys.at("Z").button, 99);
    EXPECT_EQ(keys.at("=").kind, Key::BACK);
    EXPECT_EQ(keys.at("<").kind, Key::LEFT);
    EXPECT_EQ(keys.at(">").kind, Key::RIGHT);
    EXPECT_EQ(keys.at("X").kind, Key::ERASE);
}

TEST(KeyMap, WhatIsNoMapIsTold) {
    for (const std::string bad : {"", "Up", "Up=", "=up", "Up=sideways", "Up=0", "Up=100", "Up=1x",
                                  "Up=-1", "U p=up", "U\np=up", "Up=up,", ",Up=up", "Up= up"}) {
        EXPECT_EQ(key_error("A=select," + bad).rfind("expected KEY=", 0), 0U) << bad;
    }
    EXPECT_EQ(key_error("A=select,A=up"), "duplicate key \"A\"");
    EXPECT_EQ(key_error("A=up,B=down"), "no key selects");
    EXPECT_EQ(parse_some_keys("A=up,B=down").size(), 2U);
    EXPECT_NE(key_error(std::string(41, 'k') + "=select"), "");
}

TEST(KeyMap, TakesAsManyKeysAsAServerDoesWithOneCommand) {
    std::string text = "k=select";
    for (int i = 1; i < 32; ++i) {
        text += ",k" + std::to_string(i) + "=up";
    }
    EXPECT_EQ(parse_key_map(text).size(), 32U);
    EXPECT_EQ(key_error(text + ",k32=up"), "more than 32 keys");
}

}  // namespace
}  // namespace frontpanel
