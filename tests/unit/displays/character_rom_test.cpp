#include <frontpanel_displays/character_rom.h>

#include <gtest/gtest.h>

#include <set>
#include <string_view>
#include <vector>

#include "support/charlcd_emulator.h"

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

// Characters that look the same, pair by pair.
constexpr std::u32string_view ALIKE =
    U"АAВBЕEКKМMНHОOРPСCТTХXЅSІIЈJаaеeоoрpсcуyхxѕsіiјjГΓФΦΑAΒBΕEΖZΗHΙIΚKΜMΝNΟOΡPΤTΥYΧXοoΠПĐÐ"
    U"\u00BA°\u02DA°\u212AK\u212BÅ\u2219·\u22C5·";

std::set<char32_t> alike_ones(std::set<char32_t> others) {
    for (size_t i = 0; i < ALIKE.size(); i += 2) {
        others.insert(ALIKE[i]);
    }
    return others;
}

// What a code of the ROM shows is the character itself, or one that looks the same.
void expect_table(const Character_rom& rom, const std::u32string& table,
                  const std::set<char32_t>& alike) {
    size_t count = 0;
    for (char32_t character = 0; character < 0x10000; ++character) {
        const std::optional<char> code = rom.code_of(character);
        if (code && static_cast<unsigned char>(*code) >= 0x20 && alike.count(character) == 0) {
            ++count;
            EXPECT_EQ(table.at(static_cast<unsigned char>(*code) - 0x20U), character)
                << rom.name() << " code " << static_cast<int>(static_cast<unsigned char>(*code));
        }
    }
    EXPECT_GE(count, 150U);
}

TEST(CharacterRom, CodesShowTheirCharacters) {
    std::set<char32_t> alike_a00 = alike_ones({0xA0, U'ß', U'\u03BC', U'\u2126', U'\u2211', U'·'});
    for (char32_t half_width = 0xFF61; half_width <= 0xFF9F; ++half_width) {
        alike_a00.insert(half_width);
    }
    EXPECT_EQ(Character_rom::a00().code_of(U'\uFF71'), '\xB1');
    size_t count = 0;
    for (char32_t character = 0x20; character < 0x10000; ++character) {
        const std::optional<char> code = Character_rom::a00().code_of(character);
        if (code && alike_a00.count(character) == 0) {
            ++count;
            EXPECT_EQ(support::shown_by_a00().at(static_cast<unsigned char>(*code) - 0x20U),
                      character);
        }
    }
    EXPECT_GE(count, 115U);
    std::set<char32_t> alike_a02 = alike_ones({0xA0, U'\u03BC', U'\u2126', U'\u2211'});
    alike_a02.erase(U'\u00BA');
    expect_table(Character_rom::a02(), support::shown_by_a02(), alike_a02);
}

TEST(CharacterRom, CharactersThatLookTheSameHaveTheSameCodeUnlessTheRomHasBoth) {
    for (const Character_rom* const rom :
         {&Character_rom::a00(), &Character_rom::a02(), &Character_rom::iso_8859_1()}) {
        for (size_t i = 0; i < ALIKE.size(); i += 2) {
            SCOPED_TRACE(rom->name() + " " + std::to_string(static_cast<unsigned>(ALIKE[i])));
            const bool has_both = rom != &Character_rom::a00() && ALIKE[i] == U'\u00BA';
            EXPECT_EQ(rom->code_of(ALIKE[i]) == rom->code_of(ALIKE[i + 1]), !has_both);
        }
    }
    EXPECT_EQ(Character_rom::a02().code_of(U'Г'), '\x92');
    EXPECT_FALSE(Character_rom::a00().code_of(U'Г'));
}

TEST(CharacterRom, HaveTheirCodes) {
    struct Case {
        char32_t character;
        int a00;
        int a02;
        int latin;
    };
    constexpr int NONE = -1;
    const Case CASES[] = {
        {U'A', 0x41, 0x41, 0x41}, {U'~', NONE, 0x7E, 0x7E},      {U'\\', NONE, 0x5C, 0x5C},
        {U'¥', 0x5C, 0xA5, 0xA5}, {U'ä', 0xE1, 0xE4, 0xE4},      {U'Ä', NONE, 0xC4, 0xC4},
        {U'°', 0xDF, 0xB0, 0xB0}, {U'µ', 0xE4, 0xB5, 0xB5},      {U'\u03BC', 0xE4, 0xB5, NONE},
        {U'Ω', 0xF4, 0x9A, NONE}, {U'\u2126', 0xF4, 0x9A, NONE}, {U'→', 0x7E, 0x1A, NONE},
        {U'←', 0x7F, NONE, NONE}, {U'é', NONE, 0xE9, 0xE9},      {U'Ø', NONE, NONE, 0xD8},
        {0x7F, NONE, NONE, NONE}, {0x0A, NONE, NONE, NONE},      {U'€', NONE, NONE, NONE},
    };
    const auto number = [](std::optional<char> code) {
        return code ? static_cast<int>(static_cast<unsigned char>(*code)) : NONE;
    };
    for (const Case& expected : CASES) {
        SCOPED_TRACE(static_cast<unsigned>(expected.character));
        EXPECT_EQ(number(Character_rom::a00().code_of(expected.character)), expected.a00);
        EXPECT_EQ(number(Character_rom::a02().code_of(expected.character)), expected.a02);
        EXPECT_EQ(number(Character_rom::iso_8859_1().code_of(expected.character)), expected.latin);
    }
}

TEST(CharacterRom, AreChosenByName) {
    EXPECT_EQ(&parse_character_rom("a00"), &Character_rom::a00());
    EXPECT_EQ(&parse_character_rom("a02"), &Character_rom::a02());
    EXPECT_EQ(&parse_character_rom("iso-8859-1"), &Character_rom::iso_8859_1());
    EXPECT_EQ(character_rom_names(), "a00, a02, iso-8859-1");
    try {
        parse_character_rom("latin1");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(), "expected a00, a02 or iso-8859-1, found \"latin1\"");
    }
}

TEST(CharacterRom, NoTwoDrawnCharactersLookTheSame) {
    std::set<Glyph> seen;
    for (char32_t character = 0; character < 0x10000; ++character) {
        const Glyph* const glyph = glyph_of(character);
        const bool is_the_same_letter =
            std::u32string_view(U"\u03BC\u2126\u2206șȘțȚ").find(character) != std::u32string::npos;
        if (glyph == nullptr || is_the_same_letter) {
            continue;
        }
        EXPECT_TRUE(seen.insert(*glyph).second) << static_cast<unsigned>(character);
        for (const uint8_t row : *glyph) {
            EXPECT_LT(row, 32);
        }
        EXPECT_NE(*glyph, Glyph{}) << static_cast<unsigned>(character);
    }
    EXPECT_GE(seen.size(), 100U);
}

TEST(CharacterRom, APlainFormNeverReadsAsANumberOrAnotherSign) {
    EXPECT_EQ(plain_letter_of(U'é'), 'e');
    EXPECT_EQ(plain_letter_of(U'µ'), 'u');
    EXPECT_EQ(plain_letter_of(U'\u2013'), '-');
    for (const char32_t character : {U'²', U'½', U'±', U'Ω', U'€', U'°', U'~'}) {
        EXPECT_FALSE(plain_letter_of(character)) << static_cast<unsigned>(character);
    }
}

TEST(CharacterRom, EveryLatinLetterOfEuropeIsShown) {
    for (const Character_rom* const rom : {&Character_rom::a00(), &Character_rom::a02()}) {
        for (const char32_t character : std::u32string(U"ÄÖÜäöüßÉéÈèÊêçÇÅåØøÆæÑñ€Ω°µ±²½→≤\\~")) {
            EXPECT_TRUE(can_show(*rom, character))
                << rom->name() << static_cast<unsigned>(character);
        }
        // Polish, Czech, Slovak, Hungarian, Romanian, Turkish, Croatian, Baltic, Maltese, Welsh, Esperanto
        for (
            const char32_t character : std::u32string(
                U"ĄąĆćĘęŁłŃńŚśŹźŻżČčĎďĚěŇňŘřŠšŤťŮůŽžĹĺĽľŔŕŐőŰűĂăȘșȚțŞşŢţĞğİıĐđĀāĒēĢģĪīĶķĻļŅņŪūĖėĮįŲų"
                U"ĊċĠġĦħŴŵŶŷŸÿĈĉĜĝĤĥĴĵŜŝŬŭŒœ")) {
            EXPECT_TRUE(can_show(*rom, character))
                << rom->name() << static_cast<unsigned>(character);
        }
        EXPECT_FALSE(can_show(*rom, 0x1F50A));
        EXPECT_FALSE(can_show(*rom, 0x7));
    }
}

}  // namespace
}  // namespace frontpanel
