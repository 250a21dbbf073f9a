#include <frontpanel_menu/character_check.h>

#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

Lines warnings_of(const std::string& text, const Shows_character& shows) {
    Menu_document document("menu.json", text);
    warn_of_characters(document, shows);
    return document.problems().warnings();
}

bool is_latin(char32_t character) {
    return character <= 0xFF;
}

TEST(CharacterCheck, EachTextWithACharacterThatTheDisplayLacksIsWarnedOf) {
    const std::string text = with_item(
        R"({"type": "range", "name": "Ger\u00e4t", "pid": 5, "format": "%d k\u03a9 \u03a9"},
           {"type": "enum", "name": "\u03c0", "pid": 7, "choices": ["off", {"text": "\u4e2d"}]})");
    EXPECT_EQ(warnings_of(text, is_latin),
              (Lines{placed(text,
                            "menu.json: /menu/items/0/format: warning: the display cannot "
                            "show \"\u03a9\" (U+03A9)"),
                     placed(text,
                            "menu.json: /menu/items/1/name: warning: the display cannot show "
                            "\"\u03c0\" (U+03C0)"),
                     placed(text,
                            "menu.json: /menu/items/1/choices/1/text: warning: the display "
                            "cannot show \"\u4e2d\" (U+4E2D)")}));
    EXPECT_TRUE(warnings_of(text, [](char32_t) { return true; }).empty());
}

TEST(CharacterCheck, CombiningCharactersAreJudgedWithTheirLetter) {
    const std::string text = with_item(
        R"({"type": "range", "name": "e\u0301", "pid": 5},
           {"type": "range", "name": "x\u0301x\u0301", "pid": 5},
           {"type": "range", "name": "r\u030c", "pid": 5},
           {"type": "range", "name": "\u0301e", "pid": 5})");
    EXPECT_EQ(warnings_of(text, is_latin),
              (Lines{placed(text,
                            "menu.json: /menu/items/1/name: warning: the display cannot show the "
                            "combining character U+0301"),
                     placed(text,
                            "menu.json: /menu/items/2/name: warning: the display cannot show "
                            "\"\u0159\" (U+0159)"),
                     placed(text,
                            "menu.json: /menu/items/3/name: warning: the display cannot show "
                            "\"\u0301\" (U+0301)")}));
}

TEST(CharacterCheck, WhatIsNeverShownIsNotJudged) {
    EXPECT_EQ(warnings_of(R"({"device": {"drivers": {"d": {"driver": "file", "folder": "/\u4e2d"}},
        "parameters": [{"description": "\u4e2d", "source": {"path": "\u4e2d"}}]}})",
                          is_latin),
              Lines());
}

TEST(CharacterCheck, ADamagedDocumentIsNoMatterOfTheDisplay) {
    EXPECT_EQ(warnings_of("{", is_latin), Lines());
    Menu_document rules("menu.json", R"({"binding": "a\nb", "name": "\u0007"})");
    warn_of_characters(rules, is_latin);
    EXPECT_EQ(rules.problems().error_count(), 0U);
    EXPECT_EQ(warnings_of("[1, null, {\"a\": 2.5}]", is_latin), Lines());
}

}  // namespace
}  // namespace frontpanel
