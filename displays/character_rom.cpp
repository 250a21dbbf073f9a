#include <frontpanel_displays/character_rom.h>

#include <iterator>
#include <utility>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

using Code = std::pair<char32_t, int>;

// Beside the katakana, which stand in the order of their code points. Letters with a descender are a second form.
constexpr Code A00[] = {
    {U'¥', 0x5C}, {U'→', 0x7E}, {U'←', 0x7F}, {U'·', 0xA5},  {U'°', 0xDF},      {U'α', 0xE0},
    {U'ä', 0xE1}, {U'β', 0xE2}, {U'ß', 0xE2}, {U'ε', 0xE3},  {U'μ', 0xE4},      {U'µ', 0xE4},
    {U'σ', 0xE5}, {U'ρ', 0xE6}, {U'√', 0xE8}, {U'¢', 0xEC},  {U'£', 0xED},      {U'ñ', 0xEE},
    {U'ö', 0xEF}, {U'θ', 0xF2}, {U'∞', 0xF3}, {U'Ω', 0xF4},  {U'\u2126', 0xF4}, {U'ü', 0xF5},
    {U'Σ', 0xF6}, {U'∑', 0xF6}, {U'π', 0xF7}, {U'千', 0xFA}, {U'万', 0xFB},     {U'円', 0xFC},
    {U'÷', 0xFD}, {U'█', 0xFF},
};
constexpr char32_t FIRST_KATAKANA = 0xFF61;
constexpr int FIRST_KATAKANA_CODE = 0xA1;
constexpr int LAST_KATAKANA_CODE = 0xDF;

// Beside what it shares with ISO-8859-1. The code of U+2190 is that of the escape.
constexpr Code A02[] = {
    {U'▶', 0x10}, {U'◀', 0x11}, {U'“', 0x12},      {U'”', 0x13}, {U'●', 0x16}, {U'↑', 0x18},
    {U'↓', 0x19}, {U'→', 0x1A}, {U'≤', 0x1C},      {U'≥', 0x1D}, {U'▲', 0x1E}, {U'▼', 0x1F},
    {U'Б', 0x80}, {U'Д', 0x81}, {U'Ж', 0x82},      {U'З', 0x83}, {U'И', 0x84}, {U'Й', 0x85},
    {U'Л', 0x86}, {U'П', 0x87}, {U'У', 0x88},      {U'Ц', 0x89}, {U'Ч', 0x8A}, {U'Ш', 0x8B},
    {U'Щ', 0x8C}, {U'Ъ', 0x8D}, {U'Ы', 0x8E},      {U'Э', 0x8F}, {U'α', 0x90}, {U'♪', 0x91},
    {U'Γ', 0x92}, {U'π', 0x93}, {U'Σ', 0x94},      {U'∑', 0x94}, {U'σ', 0x95}, {U'τ', 0x97},
    {U'Θ', 0x99}, {U'Ω', 0x9A}, {U'\u2126', 0x9A}, {U'δ', 0x9B}, {U'∞', 0x9C}, {U'♥', 0x9D},
    {U'ε', 0x9E}, {U'∩', 0x9F}, {U'ƒ', 0xA8},      {U'Ю', 0xAC}, {U'Я', 0xAD}, {U'‘', 0xAF},
    {U'₧', 0xB4}, {U'μ', 0xB5}, {U'ω', 0xB8},      {U'Φ', 0xD8}, {U'φ', 0xF8},
};
// Where it holds something else than ISO-8859-1.
constexpr char32_t NOT_IN_A02[] = {0xA0, 0xA8, 0xAC, 0xAD, 0xAF, 0xB4, 0xB8, 0xD8, 0xF8};

constexpr int FIRST_LATIN = 0xA0;
constexpr int LAST_LATIN = 0xFF;

bool is_in(const char32_t* begin, const char32_t* end, char32_t character) {
    for (; begin != end; ++begin) {
        if (*begin == character) {
            return true;
        }
    }
    return false;
}

// ---- drawn characters

struct Base {
    char letter;
    Glyph
        rows;  // of a small letter the upper two are free for an accent, of a capital the upper one
};
constexpr Base BASES[] = {
    {'a', {0, 0, 0b01110, 0b00001, 0b01111, 0b10001, 0b01111, 0}},
    {'c', {0, 0, 0b01110, 0b10000, 0b10000, 0b10001, 0b01110, 0}},
    {'e', {0, 0, 0b01110, 0b10001, 0b11111, 0b10000, 0b01110, 0}},
    {'i', {0, 0, 0b01100, 0b00100, 0b00100, 0b00100, 0b01110, 0}},
    {'n', {0, 0, 0b10110, 0b11001, 0b10001, 0b10001, 0b10001, 0}},
    {'o', {0, 0, 0b01110, 0b10001, 0b10001, 0b10001, 0b01110, 0}},
    {'r', {0, 0, 0b10110, 0b11001, 0b10000, 0b10000, 0b10000, 0}},
    {'s', {0, 0, 0b01111, 0b10000, 0b01110, 0b00001, 0b11110, 0}},
    {'u', {0, 0, 0b10001, 0b10001, 0b10001, 0b10011, 0b01101, 0}},
    {'y', {0, 0, 0b10001, 0b10001, 0b01111, 0b00001, 0b01110, 0}},
    {'z', {0, 0, 0b11111, 0b00010, 0b00100, 0b01000, 0b11111, 0}},
    {'A', {0, 0b01110, 0b10001, 0b10001, 0b11111, 0b10001, 0b10001, 0}},
    {'C', {0, 0b01111, 0b10000, 0b10000, 0b10000, 0b10000, 0b01111, 0}},
    {'E', {0, 0b11111, 0b10000, 0b11110, 0b10000, 0b10000, 0b11111, 0}},
    {'I', {0, 0b01110, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110, 0}},
    {'N', {0, 0b10001, 0b11001, 0b10101, 0b10011, 0b10001, 0b10001, 0}},
    {'O', {0, 0b01110, 0b10001, 0b10001, 0b10001, 0b10001, 0b01110, 0}},
    {'S', {0, 0b01111, 0b10000, 0b01110, 0b00001, 0b00001, 0b11110, 0}},
    {'U', {0, 0b10001, 0b10001, 0b10001, 0b10001, 0b10001, 0b01110, 0}},
    {'Y', {0, 0b10001, 0b01010, 0b00100, 0b00100, 0b00100, 0b00100, 0}},
    {'Z', {0, 0b11111, 0b00010, 0b00100, 0b01000, 0b10000, 0b11111, 0}},
};

struct Accent {
    uint8_t upper;
    uint8_t lower;
    uint8_t over_capital;
};
constexpr Accent GRAVE{0b01000, 0b00100, 0b01000};
constexpr Accent ACUTE{0b00010, 0b00100, 0b00010};
constexpr Accent CIRCUMFLEX{0b00100, 0b01010, 0b00100};
constexpr Accent TILDE{0b01101, 0b10110, 0b01101};
constexpr Accent DIAERESIS{0b01010, 0, 0b01010};
constexpr Accent RING{0b00100, 0, 0b00100};
constexpr Accent CARON{0b01010, 0b00100, 0b01010};

struct Accented {
    char32_t character;
    char letter;
    Accent accent;
};
constexpr Accented ACCENTED[] = {
    {U'À', 'A', GRAVE},      {U'Á', 'A', ACUTE},      {U'Â', 'A', CIRCUMFLEX},
    {U'Ã', 'A', TILDE},      {U'Ä', 'A', DIAERESIS},  {U'È', 'E', GRAVE},
    {U'É', 'E', ACUTE},      {U'Ê', 'E', CIRCUMFLEX}, {U'Ë', 'E', DIAERESIS},
    {U'Ì', 'I', GRAVE},      {U'Í', 'I', ACUTE},      {U'Î', 'I', CIRCUMFLEX},
    {U'Ï', 'I', DIAERESIS},  {U'Ñ', 'N', TILDE},      {U'Ò', 'O', GRAVE},
    {U'Ó', 'O', ACUTE},      {U'Ô', 'O', CIRCUMFLEX}, {U'Õ', 'O', TILDE},
    {U'Ö', 'O', DIAERESIS},  {U'Ù', 'U', GRAVE},      {U'Ú', 'U', ACUTE},
    {U'Û', 'U', CIRCUMFLEX}, {U'Ü', 'U', DIAERESIS},  {U'Ý', 'Y', ACUTE},
    {U'à', 'a', GRAVE},      {U'á', 'a', ACUTE},      {U'â', 'a', CIRCUMFLEX},
    {U'ã', 'a', TILDE},      {U'ä', 'a', DIAERESIS},  {U'å', 'a', RING},
    {U'è', 'e', GRAVE},      {U'é', 'e', ACUTE},      {U'ê', 'e', CIRCUMFLEX},
    {U'ë', 'e', DIAERESIS},  {U'ì', 'i', GRAVE},      {U'í', 'i', ACUTE},
    {U'î', 'i', CIRCUMFLEX}, {U'ï', 'i', DIAERESIS},  {U'ñ', 'n', TILDE},
    {U'ò', 'o', GRAVE},      {U'ó', 'o', ACUTE},      {U'ô', 'o', CIRCUMFLEX},
    {U'õ', 'o', TILDE},      {U'ö', 'o', DIAERESIS},  {U'ù', 'u', GRAVE},
    {U'ú', 'u', ACUTE},      {U'û', 'u', CIRCUMFLEX}, {U'ü', 'u', DIAERESIS},
    {U'ý', 'y', ACUTE},      {U'ÿ', 'y', DIAERESIS},  {U'Č', 'C', CARON},
    {U'č', 'c', CARON},      {U'Ć', 'C', ACUTE},      {U'ć', 'c', ACUTE},
    {U'ě', 'e', CARON},      {U'ń', 'n', ACUTE},      {U'Ń', 'N', ACUTE},
    {U'ň', 'n', CARON},      {U'Ň', 'N', CARON},      {U'ř', 'r', CARON},
    {U'Š', 'S', CARON},      {U'š', 's', CARON},      {U'Ś', 'S', ACUTE},
    {U'ś', 's', ACUTE},      {U'ů', 'u', RING},       {U'Ž', 'Z', CARON},
    {U'ž', 'z', CARON},      {U'ź', 'z', ACUTE},      {U'Ź', 'Z', ACUTE},
    {U'ż', 'z', RING},       {U'Ż', 'Z', RING},
};

struct Drawn {
    char32_t character;
    char plain;  // '\0' for none
    Glyph rows;
};
// clang-format off
constexpr Drawn DRAWN[] = {
    {U'\\', '\0', {0, 0b10000, 0b01000, 0b00100, 0b00010, 0b00001, 0, 0}},
    {U'~', '\0', {0, 0, 0b01000, 0b10101, 0b00010, 0, 0, 0}},
    {U'Å', 'A', {0b00100, 0b01010, 0b00100, 0b01110, 0b10001, 0b11111, 0b10001, 0}},
    {U'Ě', 'E', {0b01010, 0b00100, 0b11111, 0b10000, 0b11110, 0b10000, 0b11111, 0}},
    {U'ç', 'c', {0, 0, 0b01110, 0b10000, 0b10001, 0b01110, 0b00100, 0b01100}},
    {U'Ç', 'C', {0b01110, 0b10001, 0b10000, 0b10000, 0b10001, 0b01110, 0b00100, 0b01100}},
    {U'ø', 'o', {0, 0b00001, 0b01110, 0b10011, 0b10101, 0b11001, 0b01110, 0b10000}},
    {U'Ø', 'O', {0b00001, 0b01110, 0b10011, 0b10101, 0b10101, 0b11001, 0b01110, 0b10000}},
    {U'æ', '\0', {0, 0, 0b11010, 0b00101, 0b01111, 0b10100, 0b01011, 0}},
    {U'Æ', '\0', {0b01111, 0b10100, 0b10100, 0b11111, 0b10100, 0b10100, 0b10111, 0}},
    {U'ß', '\0', {0b01100, 0b10010, 0b10010, 0b10100, 0b10010, 0b10010, 0b10100, 0}},
    {U'ł', 'l', {0b01100, 0b00100, 0b00110, 0b00100, 0b01100, 0b00100, 0b01110, 0}},
    {U'Ł', 'L', {0b10000, 0b10100, 0b11000, 0b10000, 0b10000, 0b10000, 0b11111, 0}},
    {U'±', '\0', {0b00100, 0b00100, 0b11111, 0b00100, 0b00100, 0, 0b11111, 0}},
    {U'¹', '\0', {0b00100, 0b01100, 0b00100, 0b00100, 0b01110, 0, 0, 0}},
    {U'²', '\0', {0b01100, 0b10010, 0b00100, 0b01000, 0b11110, 0, 0, 0}},
    {U'³', '\0', {0b11100, 0b00010, 0b01100, 0b00010, 0b11100, 0, 0, 0}},
    {U'¼', '\0', {0b01000, 0b01001, 0b01010, 0b00100, 0b01001, 0b10011, 0b00111, 0b00001}},
    {U'½', '\0', {0b01000, 0b01001, 0b01010, 0b00100, 0b01011, 0b10001, 0b00010, 0b00011}},
    {U'×', 'x', {0, 0b10001, 0b01010, 0b00100, 0b01010, 0b10001, 0, 0}},
    {U'÷', '\0', {0, 0b00100, 0, 0b11111, 0, 0b00100, 0, 0}},
    {U'°', '\0', {0b01100, 0b10010, 0b10010, 0b01100, 0, 0, 0, 0}},
    {U'·', '\0', {0, 0, 0, 0b00100, 0, 0, 0, 0}},
    {U'µ', 'u', {0, 0b10001, 0b10001, 0b10001, 0b10011, 0b11101, 0b10000, 0b10000}},
    {U'μ', 'u', {0, 0b10001, 0b10001, 0b10001, 0b10011, 0b11101, 0b10000, 0b10000}},
    {U'€', '\0', {0b00111, 0b01000, 0b11110, 0b01000, 0b11110, 0b01000, 0b00111, 0}},
    {U'£', '\0', {0b00110, 0b01001, 0b01000, 0b11100, 0b01000, 0b01000, 0b11111, 0}},
    {U'¥', '\0', {0b10001, 0b01010, 0b11111, 0b00100, 0b11111, 0b00100, 0b00100, 0}},
    {U'§', '\0', {0b01110, 0b10000, 0b01110, 0b10001, 0b01110, 0b00001, 0b01110, 0}},
    {U'¡', '\0', {0b00100, 0, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0}},
    {U'¿', '\0', {0b00100, 0, 0b00100, 0b01000, 0b10000, 0b10001, 0b01110, 0}},
    {U'«', '"', {0, 0b00101, 0b01010, 0b10100, 0b01010, 0b00101, 0, 0}},
    {U'»', '"', {0, 0b10100, 0b01010, 0b00101, 0b01010, 0b10100, 0, 0}},
    {U'Ω', '\0', {0, 0b01110, 0b10001, 0b10001, 0b01010, 0b01010, 0b11011, 0}},
    {U'\u2126', '\0', {0, 0b01110, 0b10001, 0b10001, 0b01010, 0b01010, 0b11011, 0}},
    {U'Δ', '\0', {0, 0b00100, 0b00100, 0b01010, 0b01010, 0b10001, 0b11111, 0}},
    {U'∆', '\0', {0, 0b00100, 0b00100, 0b01010, 0b01010, 0b10001, 0b11111, 0}},
    {U'π', '\0', {0, 0b11111, 0b01010, 0b01010, 0b01010, 0b01010, 0b10011, 0}},
    {U'∞', '\0', {0, 0, 0b01010, 0b10101, 0b10101, 0b01010, 0, 0}},
    {U'≤', '\0', {0b00010, 0b00100, 0b01000, 0b00100, 0b00010, 0, 0b01110, 0}},
    {U'≥', '\0', {0b01000, 0b00100, 0b00010, 0b00100, 0b01000, 0, 0b01110, 0}},
    {U'≠', '\0', {0b00001, 0b00010, 0b11111, 0b00100, 0b11111, 0b01000, 0b10000, 0}},
    {U'≈', '\0', {0, 0b01101, 0b10110, 0, 0b01101, 0b10110, 0, 0}},
    {U'√', '\0', {0b00111, 0b00100, 0b00100, 0b00100, 0b10100, 0b01100, 0b00100, 0}},
    {U'→', '\0', {0, 0b00100, 0b00010, 0b11111, 0b00010, 0b00100, 0, 0}},
    {U'←', '\0', {0, 0b00100, 0b01000, 0b11111, 0b01000, 0b00100, 0, 0}},
    {U'↑', '\0', {0b00100, 0b01110, 0b10101, 0b00100, 0b00100, 0b00100, 0b00100, 0}},
    {U'↓', '\0', {0b00100, 0b00100, 0b00100, 0b00100, 0b10101, 0b01110, 0b00100, 0}},
    {U'▶', '\0', {0b10000, 0b11000, 0b11100, 0b11110, 0b11100, 0b11000, 0b10000, 0}},
    {U'◀', '\0', {0b00001, 0b00011, 0b00111, 0b01111, 0b00111, 0b00011, 0b00001, 0}},
    {U'▲', '\0', {0, 0b00100, 0b00100, 0b01110, 0b01110, 0b11111, 0, 0}},
    {U'▼', '\0', {0, 0b11111, 0b01110, 0b01110, 0b00100, 0b00100, 0, 0}},
    {U'•', '\0', {0, 0, 0b01110, 0b01110, 0b01110, 0, 0, 0}},
    {U'…', '\0', {0, 0, 0, 0, 0, 0, 0b10101, 0}},
    {U'✓', '\0', {0, 0b00001, 0b00011, 0b10110, 0b11100, 0b01000, 0, 0}},
    {U'█', '\0', {0b11111, 0b11111, 0b11111, 0b11111, 0b11111, 0b11111, 0b11111, 0b11111}},
};
// clang-format on

Glyph drawn(const Accented& accented) {
    Glyph rows{};
    for (const Base& base : BASES) {
        if (base.letter == accented.letter) {
            rows = base.rows;
        }
    }
    if (accented.letter >= 'a') {
        rows[0] = accented.accent.upper;
        rows[1] = accented.accent.lower;
    } else {
        rows[0] = accented.accent.over_capital;
    }
    return rows;
}

std::unordered_map<char32_t, Glyph> all_glyphs() {
    std::unordered_map<char32_t, Glyph> glyphs;
    for (const Accented& accented : ACCENTED) {
        glyphs[accented.character] = drawn(accented);
    }
    for (const Drawn& drawing : DRAWN) {
        glyphs[drawing.character] = drawing.rows;
    }
    return glyphs;
}

const Character_rom* const* all_roms() {
    static const Character_rom* const ROMS[] = {&Character_rom::a00(), &Character_rom::a02(),
                                                &Character_rom::iso_8859_1(), nullptr};
    return ROMS;
}

}  // namespace

void Character_rom::add(char32_t character, int code) {
    m_codes[character] = static_cast<char>(code);
}

void Character_rom::add_ascii() {
    for (int code = ' '; code <= '~'; ++code) {
        add(static_cast<char32_t>(code), code);
    }
}

const Character_rom& Character_rom::a00() {
    static const Character_rom ROM = [] {
        Character_rom rom("a00");
        rom.add_ascii();
        rom.m_codes.erase(U'\\');
        rom.m_codes.erase(U'~');
        rom.add(0xA0, ' ');
        for (int code = FIRST_KATAKANA_CODE; code <= LAST_KATAKANA_CODE; ++code) {
            rom.add(FIRST_KATAKANA + static_cast<char32_t>(code - FIRST_KATAKANA_CODE), code);
        }
        for (const auto& [character, code] : A00) {
            rom.add(character, code);
        }
        return rom;
    }();
    return ROM;
}

const Character_rom& Character_rom::a02() {
    static const Character_rom ROM = [] {
        Character_rom rom("a02");
        rom.add_ascii();
        rom.add(0xA0, ' ');
        for (int code = FIRST_LATIN; code <= LAST_LATIN; ++code) {
            const auto character = static_cast<char32_t>(code);
            if (!is_in(std::begin(NOT_IN_A02), std::end(NOT_IN_A02), character)) {
                rom.add(character, code);
            }
        }
        for (const auto& [character, code] : A02) {
            rom.add(character, code);
        }
        return rom;
    }();
    return ROM;
}

const Character_rom& Character_rom::iso_8859_1() {
    static const Character_rom ROM = [] {
        Character_rom rom("iso-8859-1");
        rom.add_ascii();
        for (int code = FIRST_LATIN; code <= LAST_LATIN; ++code) {
            rom.add(static_cast<char32_t>(code), code);
        }
        return rom;
    }();
    return ROM;
}

std::optional<char> Character_rom::code_of(char32_t character) const {
    const auto found = m_codes.find(character);
    return found == m_codes.end() ? std::nullopt : std::optional<char>(found->second);
}

const Character_rom& parse_character_rom(const std::string& text) {
    for (const Character_rom* const* rom = all_roms(); *rom != nullptr; ++rom) {
        if (text == (*rom)->name()) {
            return **rom;
        }
    }
    throw Input_error("expected " + character_rom_names(" or ") + ", found \"" + text + "\"");
}

std::string character_rom_names(const std::string& last) {
    std::string names;
    for (const Character_rom* const* rom = all_roms(); *rom != nullptr; ++rom) {
        names += (names.empty() ? "" : rom[1] == nullptr ? last : ", ") + (*rom)->name();
    }
    return names;
}

const Glyph* glyph_of(char32_t character) {
    static const std::unordered_map<char32_t, Glyph> GLYPHS = all_glyphs();
    const auto found = GLYPHS.find(character);
    return found == GLYPHS.end() ? nullptr : &found->second;
}

std::optional<char> plain_letter_of(char32_t character) {
    for (const Accented& accented : ACCENTED) {
        if (accented.character == character) {
            return accented.letter;
        }
    }
    for (const Drawn& drawing : DRAWN) {
        if (drawing.character == character && drawing.plain != '\0') {
            return drawing.plain;
        }
    }
    return plain_form_of(character);
}

bool can_show(const Character_rom& rom, char32_t character) {
    return rom.code_of(character) || glyph_of(character) != nullptr || plain_letter_of(character);
}

}  // namespace frontpanel
