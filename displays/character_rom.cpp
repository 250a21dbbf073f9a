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

// Characters that look the same on a display: a ROM with the second shows the first by it.
constexpr std::pair<char32_t, char32_t> ALIKE[] = {
    // Cyrillic
    {U'А', U'A'},
    {U'В', U'B'},
    {U'Е', U'E'},
    {U'К', U'K'},
    {U'М', U'M'},
    {U'Н', U'H'},
    {U'О', U'O'},
    {U'Р', U'P'},
    {U'С', U'C'},
    {U'Т', U'T'},
    {U'Х', U'X'},
    {U'Ѕ', U'S'},
    {U'І', U'I'},
    {U'Ј', U'J'},
    {U'а', U'a'},
    {U'е', U'e'},
    {U'о', U'o'},
    {U'р', U'p'},
    {U'с', U'c'},
    {U'у', U'y'},
    {U'х', U'x'},
    {U'ѕ', U's'},
    {U'і', U'i'},
    {U'ј', U'j'},
    {U'Г', U'Γ'},
    {U'Ф', U'Φ'},
    // Greek
    {U'Α', U'A'},
    {U'Β', U'B'},
    {U'Ε', U'E'},
    {U'Ζ', U'Z'},
    {U'Η', U'H'},
    {U'Ι', U'I'},
    {U'Κ', U'K'},
    {U'Μ', U'M'},
    {U'Ν', U'N'},
    {U'Ο', U'O'},
    {U'Ρ', U'P'},
    {U'Τ', U'T'},
    {U'Υ', U'Y'},
    {U'Χ', U'X'},
    {U'ο', U'o'},
    {U'Π', U'П'},
    // others
    {U'Đ', U'Ð'},
    {U'\u00BA', U'°'},
    {U'\u02DA', U'°'},
    {U'\u212A', U'K'},
    {U'\u212B', U'Å'},
    {U'\u2219', U'·'},
    {U'\u22C5', U'·'},
};

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
    {'g', {0, 0, 0b01111, 0b10001, 0b01111, 0b00001, 0b01110, 0}},
    {'i', {0, 0, 0b01100, 0b00100, 0b00100, 0b00100, 0b01110, 0}},
    {'n', {0, 0, 0b10110, 0b11001, 0b10001, 0b10001, 0b10001, 0}},
    {'o', {0, 0, 0b01110, 0b10001, 0b10001, 0b10001, 0b01110, 0}},
    {'r', {0, 0, 0b10110, 0b11001, 0b10000, 0b10000, 0b10000, 0}},
    {'s', {0, 0, 0b01111, 0b10000, 0b01110, 0b00001, 0b11110, 0}},
    {'t', {0, 0b01000, 0b11100, 0b01000, 0b01000, 0b01001, 0b00110, 0}},
    {'u', {0, 0, 0b10001, 0b10001, 0b10001, 0b10011, 0b01101, 0}},
    {'w', {0, 0, 0b10001, 0b10001, 0b10101, 0b10101, 0b01010, 0}},
    {'y', {0, 0, 0b10001, 0b10001, 0b01111, 0b00001, 0b01110, 0}},
    {'z', {0, 0, 0b11111, 0b00010, 0b00100, 0b01000, 0b11111, 0}},
    {'A', {0, 0b01110, 0b10001, 0b10001, 0b11111, 0b10001, 0b10001, 0}},
    {'C', {0, 0b01111, 0b10000, 0b10000, 0b10000, 0b10000, 0b01111, 0}},
    {'D', {0, 0b11110, 0b10001, 0b10001, 0b10001, 0b10001, 0b11110, 0}},
    {'E', {0, 0b11111, 0b10000, 0b11110, 0b10000, 0b10000, 0b11111, 0}},
    {'G', {0, 0b01111, 0b10000, 0b10011, 0b10001, 0b10001, 0b01111, 0}},
    {'I', {0, 0b01110, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110, 0}},
    {'N', {0, 0b10001, 0b11001, 0b10101, 0b10011, 0b10001, 0b10001, 0}},
    {'O', {0, 0b01110, 0b10001, 0b10001, 0b10001, 0b10001, 0b01110, 0}},
    {'R', {0, 0b11110, 0b10001, 0b11110, 0b10100, 0b10010, 0b10001, 0}},
    {'S', {0, 0b01111, 0b10000, 0b01110, 0b00001, 0b00001, 0b11110, 0}},
    {'T', {0, 0b11111, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0}},
    {'U', {0, 0b10001, 0b10001, 0b10001, 0b10001, 0b10001, 0b01110, 0}},
    {'W', {0, 0b10001, 0b10001, 0b10101, 0b10101, 0b10101, 0b01010, 0}},
    {'Y', {0, 0b10001, 0b01010, 0b00100, 0b00100, 0b00100, 0b00100, 0}},
    {'Z', {0, 0b11111, 0b00010, 0b00100, 0b01000, 0b10000, 0b11111, 0}},
};

struct Accent {
    uint8_t upper;
    uint8_t lower;
    uint8_t over_capital;
    uint8_t below = 0;
};
constexpr Accent GRAVE{0b01000, 0b00100, 0b01000};
constexpr Accent ACUTE{0b00010, 0b00100, 0b00010};
constexpr Accent CIRCUMFLEX{0b00100, 0b01010, 0b00100};
constexpr Accent TILDE{0b01101, 0b10110, 0b01101};
constexpr Accent DIAERESIS{0b01010, 0, 0b01010};
constexpr Accent RING{0b00100, 0, 0b00100};
constexpr Accent CARON{0b01010, 0b00100, 0b01010};
constexpr Accent MACRON{0b01110, 0, 0b01110};
constexpr Accent BREVE{0b10001, 0b01110, 0b01010};
constexpr Accent DOUBLE_ACUTE{0b00101, 0b01010, 0b00101};
constexpr Accent OGONEK{0, 0, 0, 0b00010};
constexpr Accent CEDILLA{0, 0, 0, 0b00100};
constexpr Accent NONE{0, 0, 0};

struct Accented {
    char32_t character;
    char letter;
    Accent accent;
};
constexpr Accented ACCENTED[] = {
    {U'À', 'A', GRAVE},        {U'Á', 'A', ACUTE},        {U'Â', 'A', CIRCUMFLEX},
    {U'Ã', 'A', TILDE},        {U'Ä', 'A', DIAERESIS},    {U'È', 'E', GRAVE},
    {U'É', 'E', ACUTE},        {U'Ê', 'E', CIRCUMFLEX},   {U'Ë', 'E', DIAERESIS},
    {U'Ì', 'I', GRAVE},        {U'Í', 'I', ACUTE},        {U'Î', 'I', CIRCUMFLEX},
    {U'Ï', 'I', DIAERESIS},    {U'Ñ', 'N', TILDE},        {U'Ò', 'O', GRAVE},
    {U'Ó', 'O', ACUTE},        {U'Ô', 'O', CIRCUMFLEX},   {U'Õ', 'O', TILDE},
    {U'Ö', 'O', DIAERESIS},    {U'Ù', 'U', GRAVE},        {U'Ú', 'U', ACUTE},
    {U'Û', 'U', CIRCUMFLEX},   {U'Ü', 'U', DIAERESIS},    {U'Ý', 'Y', ACUTE},
    {U'à', 'a', GRAVE},        {U'á', 'a', ACUTE},        {U'â', 'a', CIRCUMFLEX},
    {U'ã', 'a', TILDE},        {U'ä', 'a', DIAERESIS},    {U'å', 'a', RING},
    {U'è', 'e', GRAVE},        {U'é', 'e', ACUTE},        {U'ê', 'e', CIRCUMFLEX},
    {U'ë', 'e', DIAERESIS},    {U'ì', 'i', GRAVE},        {U'í', 'i', ACUTE},
    {U'î', 'i', CIRCUMFLEX},   {U'ï', 'i', DIAERESIS},    {U'ñ', 'n', TILDE},
    {U'ò', 'o', GRAVE},        {U'ó', 'o', ACUTE},        {U'ô', 'o', CIRCUMFLEX},
    {U'õ', 'o', TILDE},        {U'ö', 'o', DIAERESIS},    {U'ù', 'u', GRAVE},
    {U'ú', 'u', ACUTE},        {U'û', 'u', CIRCUMFLEX},   {U'ü', 'u', DIAERESIS},
    {U'ý', 'y', ACUTE},        {U'ÿ', 'y', DIAERESIS},    {U'Č', 'C', CARON},
    {U'č', 'c', CARON},        {U'Ć', 'C', ACUTE},        {U'ć', 'c', ACUTE},
    {U'ě', 'e', CARON},        {U'ń', 'n', ACUTE},        {U'Ń', 'N', ACUTE},
    {U'ň', 'n', CARON},        {U'Ň', 'N', CARON},        {U'ř', 'r', CARON},
    {U'Š', 'S', CARON},        {U'š', 's', CARON},        {U'Ś', 'S', ACUTE},
    {U'ś', 's', ACUTE},        {U'ů', 'u', RING},         {U'Ž', 'Z', CARON},
    {U'ž', 'z', CARON},        {U'ź', 'z', ACUTE},        {U'Ź', 'Z', ACUTE},
    {U'ż', 'z', RING},         {U'Ż', 'Z', RING},         {U'ā', 'a', MACRON},
    {U'Ā', 'A', MACRON},       {U'ē', 'e', MACRON},       {U'Ē', 'E', MACRON},
    {U'ī', 'i', MACRON},       {U'Ī', 'I', MACRON},       {U'ō', 'o', MACRON},
    {U'Ō', 'O', MACRON},       {U'ū', 'u', MACRON},       {U'Ū', 'U', MACRON},
    {U'ă', 'a', BREVE},        {U'ğ', 'g', BREVE},        {U'Ğ', 'G', BREVE},
    {U'ŭ', 'u', BREVE},        {U'ő', 'o', DOUBLE_ACUTE}, {U'Ő', 'O', DOUBLE_ACUTE},
    {U'ű', 'u', DOUBLE_ACUTE}, {U'Ű', 'U', DOUBLE_ACUTE}, {U'ą', 'a', OGONEK},
    {U'Ą', 'A', OGONEK},       {U'ę', 'e', OGONEK},       {U'Ę', 'E', OGONEK},
    {U'į', 'i', OGONEK},       {U'Į', 'I', OGONEK},       {U'ų', 'u', OGONEK},
    {U'Ų', 'U', OGONEK},       {U'ş', 's', CEDILLA},      {U'Ş', 'S', CEDILLA},
    {U'ș', 's', CEDILLA},      {U'Ș', 'S', CEDILLA},      {U'ţ', 't', CEDILLA},
    {U'Ţ', 'T', CEDILLA},      {U'ț', 't', CEDILLA},      {U'Ț', 'T', CEDILLA},
    {U'ņ', 'n', CEDILLA},      {U'Ņ', 'N', CEDILLA},      {U'ė', 'e', RING},
    {U'ċ', 'c', RING},         {U'ġ', 'g', RING},         {U'ı', 'i', NONE},
    {U'ŕ', 'r', ACUTE},        {U'Ŕ', 'R', ACUTE},        {U'Ř', 'R', CARON},
    {U'Ď', 'D', CARON},        {U'Ť', 'T', CARON},        {U'ŵ', 'w', CIRCUMFLEX},
    {U'Ŵ', 'W', CIRCUMFLEX},   {U'ŷ', 'y', CIRCUMFLEX},   {U'Ŷ', 'Y', CIRCUMFLEX},
    {U'Ÿ', 'Y', DIAERESIS},    {U'ĉ', 'c', CIRCUMFLEX},   {U'Ĉ', 'C', CIRCUMFLEX},
    {U'ĝ', 'g', CIRCUMFLEX},   {U'Ĝ', 'G', CIRCUMFLEX},   {U'ŝ', 's', CIRCUMFLEX},
    {U'Ŝ', 'S', CIRCUMFLEX},
};

// Letters whose accent finds no room.
constexpr std::pair<char32_t, char> PLAIN_LETTERS[] = {
    {U'ď', 'd'}, {U'ť', 't'}, {U'ľ', 'l'}, {U'Ľ', 'L'}, {U'ĺ', 'l'}, {U'Ĺ', 'L'},
    {U'đ', 'd'}, {U'Đ', 'D'}, {U'ķ', 'k'}, {U'Ķ', 'K'}, {U'ļ', 'l'}, {U'Ļ', 'L'},
    {U'ģ', 'g'}, {U'Ģ', 'G'}, {U'Ă', 'A'}, {U'Ŭ', 'U'}, {U'ĥ', 'h'}, {U'Ĥ', 'H'},
    {U'ĵ', 'j'}, {U'Ĵ', 'J'}, {U'ħ', 'h'}, {U'Ħ', 'H'},
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
    {U'Ċ', 'C', {0b00100, 0, 0b01111, 0b10000, 0b10000, 0b10000, 0b01111, 0}},
    {U'Ė', 'E', {0b00100, 0, 0b11111, 0b10000, 0b11110, 0b10000, 0b11111, 0}},
    {U'Ġ', 'G', {0b00100, 0, 0b01111, 0b10000, 0b10011, 0b10001, 0b01111, 0}},
    {U'İ', 'I', {0b00100, 0, 0b01110, 0b00100, 0b00100, 0b00100, 0b01110, 0}},
    {U'Ů', 'U', {0b00100, 0, 0b10001, 0b10001, 0b10001, 0b10001, 0b01110, 0}},
    {U'ç', 'c', {0, 0, 0b01110, 0b10000, 0b10001, 0b01110, 0b00100, 0b01100}},
    {U'Ç', 'C', {0b01110, 0b10001, 0b10000, 0b10000, 0b10001, 0b01110, 0b00100, 0b01100}},
    {U'ø', 'o', {0, 0b00001, 0b01110, 0b10011, 0b10101, 0b11001, 0b01110, 0b10000}},
    {U'Ø', 'O', {0b00001, 0b01110, 0b10011, 0b10101, 0b10101, 0b11001, 0b01110, 0b10000}},
    {U'æ', '\0', {0, 0, 0b11010, 0b00101, 0b01111, 0b10100, 0b01011, 0}},
    {U'Æ', '\0', {0b01111, 0b10100, 0b10100, 0b11111, 0b10100, 0b10100, 0b10111, 0}},
    {U'œ', '\0', {0, 0, 0b01010, 0b10101, 0b10111, 0b10100, 0b01011, 0}},
    {U'Œ', '\0', {0b01111, 0b10100, 0b10100, 0b10111, 0b10100, 0b10100, 0b01111, 0}},
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
    const bool is_small = accented.letter >= 'a';
    rows[0] |= is_small ? accented.accent.upper : accented.accent.over_capital;
    rows[1] |= is_small ? accented.accent.lower : uint8_t{0};
    rows[7] |= accented.accent.below;
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

void Character_rom::add_alike() {
    for (const auto& [character, known] : ALIKE) {
        if (const std::optional<char> code = code_of(known)) {
            m_codes.emplace(character, *code);
        }
    }
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
        rom.add_alike();
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
        rom.add_alike();
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
        rom.add_alike();
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
    for (const auto& [letter, plain] : PLAIN_LETTERS) {
        if (letter == character) {
            return plain;
        }
    }
    for (auto base = base_letter_of(character); base; base = base_letter_of(*base)) {
        if (*base <= U'z') {
            return static_cast<char>(*base);
        }
    }
    return plain_form_of(character);
}

bool can_show(const Character_rom& rom, char32_t character) {
    return rom.code_of(character) || glyph_of(character) != nullptr || plain_letter_of(character);
}

}  // namespace frontpanel
