// What the kernel's character displays do with the bytes that are written to their device file.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_CHARLCD_EMULATOR_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_CHARLCD_EMULATOR_H

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace support {

// What the codes from 0x20 on show, as tables of the controller print them; "\x7F" where a code is not used here.
inline const std::u32string& shown_by_a00() {
    static const std::u32string TABLE =
        U" !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[¥]^_`abcdefghijklmnopqrstuvwxyz{|}→←" +
        std::u32string(0xA0 - 0x80, U'\x7F') +
        U" 。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテトナニヌネノハヒフヘホマミムメモヤユヨラリルレロワン゛°"
        U"αäβεµσρ\x7F√\x7F\x7F\x7F¢£ñö\x7F\x7Fθ∞ΩüΣπ\x7F\x7F千万円÷ █";
    return TABLE;
}
inline const std::u32string& shown_by_a02() {
    static const std::u32string TABLE =
        U" !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~\x7F"
        U"БДЖЗИЙЛПУЦЧШЩЪЫЭα♪ΓπΣσ♬τ\x7FΘΩδ∞♥ε∩"
        U" ¡¢£¤¥¦§ƒ©ª«ЮЯ®‘°±²³₧µ¶·ω¹º»¼½¾¿ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ΦÙÚÛÜÝÞßàáâãäåæçèéêëìíîïðñòóôõö÷φùúûüýþÿ";
    return TABLE;
}

inline const std::u32string SHOWN_BY_A02_BELOW_ASCII = U"▶◀“”⏫⏬●↲↑↓→\x7F≤≥▲▼";

class Charlcd_emulator {
public:
    using Bitmap =
        std::array<uint8_t, 8>;  // the rows of a character, top first; the right column is bit 0

    // As its driver leaves it: a banner, and the cursor blinking.
    Charlcd_emulator(int columns, int rows) : m_columns(columns), m_rows(rows) {
        clear();
        put_banner();
    }

    void feed(std::string_view bytes) {
        m_bytes += bytes.size();
        for (const char byte : bytes) {
            feed_byte(byte);
        }
    }

    // The codes in the cells, a line each.
    const std::vector<std::string>& lines() const { return m_lines; }
    bool is_on() const { return m_is_on; }
    bool has_cursor() const { return m_has_cursor; }
    bool blinks() const { return m_blinks; }
    bool is_lit() const { return m_is_lit; }
    // Where the next character and the cursor are. The column behind the last one shows the cursor on the last.
    int row() const { return m_row; }
    int column() const { return m_column; }
    // The character that code 0 to 7 shows; nothing before it is defined.
    const std::optional<Bitmap>& defined(int code) const {
        return m_defined.at(static_cast<size_t>(code));
    }
    // Sequences that mean nothing to the display.
    int mistakes() const { return m_mistakes; }
    size_t bytes() const { return m_bytes; }

    // What a person reads in a line by a table of codes; a defined character is U+E000 and its code.
    std::u32string text(int row, const std::u32string& table) const {
        std::u32string read;
        for (const char code : m_lines.at(static_cast<size_t>(row))) {
            const auto number = static_cast<unsigned char>(code);
            read += number < 8      ? static_cast<char32_t>(0xE000 + number)
                    : number < 0x20 ? SHOWN_BY_A02_BELOW_ASCII.at(number - 0x10U)
                                    : table.at(number - 0x20U);
        }
        return read;
    }

    // The grid within a border, as a person sees it: a code that is no ASCII as '#', a defined one as its number.
    std::string picture() const {
        const std::string edge = "+" + std::string(static_cast<size_t>(m_columns), '-') + "+\n";
        std::string text = edge;
        for (const std::string& line : m_lines) {
            text += '|';
            for (const char code : line) {
                const auto number = static_cast<unsigned char>(code);
                text += number < 8             ? static_cast<char>('0' + number)
                        : std::isprint(number) ? code
                                               : '#';
            }
            text += "|\n";
        }
        return text + edge +
               (m_blinks ? "cursor " + std::to_string(m_column) + "," + std::to_string(m_row) + " "
                         : "") +
               (m_is_lit ? "lit" : "dark") + "\n";
    }

private:
    static constexpr size_t LONGEST_SEQUENCE = 24;

    void clear() {
        m_lines.assign(static_cast<size_t>(m_rows),
                       std::string(static_cast<size_t>(m_columns), ' '));
        m_row = 0;
        m_column = 0;
    }
    void put_banner() {
        for (const char byte : std::string_view("Linux")) {
            put(byte);
        }
    }
    // Beyond the last column nothing is shown, and nothing goes on to the next line.
    void put(char code) {
        if (m_column < m_columns) {
            m_lines[static_cast<size_t>(m_row)][static_cast<size_t>(m_column)] = code;
            ++m_column;
        }
    }
    void blank_to_end() {
        while (m_column < m_columns) {
            put(' ');
        }
    }

    void feed_byte(char byte) {
        if (m_sequence && byte != '\n') {
            *m_sequence += byte;
            if (is_done(*m_sequence)) {
                m_sequence.reset();
            } else if (m_sequence->size() >= LONGEST_SEQUENCE) {
                ++m_mistakes;
                m_sequence.reset();
            }
            return;
        }
        m_sequence.reset();
        switch (byte) {
            case '\x1B':
                m_sequence = "";
                break;
            case '\b':
                m_column = std::max(0, m_column - 1);
                put(' ');
                m_column = std::max(0, m_column - 1);
                break;
            case '\f':
                clear();
                break;
            case '\n':
                blank_to_end();
                m_column = 0;
                m_row = (m_row + 1) % m_rows;
                break;
            case '\r':
                m_column = 0;
                break;
            case '\t':
                put(' ');
                break;
            default:
                put(byte);
        }
    }

    // Whether the sequence behind the escape is whole; then it was carried out.
    bool is_done(const std::string& sequence) {
        if (sequence == "[2J") {
            clear();
            return true;
        }
        if (sequence == "[H") {
            m_row = 0;
            m_column = 0;
            return true;
        }
        return sequence.size() >= 3 && sequence.compare(0, 2, "[L") == 0 &&
               is_special_done(sequence.substr(2));
    }
    bool is_special_done(const std::string& sequence) {
        switch (sequence[0]) {
            case 'D':
            case 'd':
                m_is_on = sequence[0] == 'D';
                return true;
            case 'C':
            case 'c':
                m_has_cursor = sequence[0] == 'C';
                return true;
            case 'B':
            case 'b':
                m_blinks = sequence[0] == 'B';
                return true;
            case '+':
            case '-':
                m_is_lit = sequence[0] == '+';
                return true;
            case 'l':
                m_column = std::max(0, m_column - 1);
                return true;
            case 'r':
                m_column = std::min(m_columns - 1, m_column + 1);
                return true;
            case 'k': {
                const int column = m_column;
                blank_to_end();
                m_column = column;
                return true;
            }
            case 'I':
                clear();
                return true;
            case '*':
            case 'L':
            case 'R':
            case 'f':
            case 'F':
            case 'n':
            case 'N':
                return true;
            case 'G':
                return ends(sequence) && define(sequence);
            case 'x':
            case 'y':
                return ends(sequence) && move(sequence);
            default:
                return false;
        }
    }
    static bool ends(const std::string& sequence) { return sequence.back() == ';'; }

    // "G", the code, then two hexadecimal digits for each row: rows that are missing stay.
    bool define(const std::string& sequence) {
        const int code = sequence[1] - '0';
        if (code < 0 || code > 7 || sequence.size() % 2 == 0) {
            ++m_mistakes;
            return true;
        }
        Bitmap& bitmap = m_defined.at(static_cast<size_t>(code)).emplace();
        for (size_t row = 0; row < bitmap.size() && 2 * row + 4 < sequence.size(); ++row) {
            const std::string digits = sequence.substr(2 * row + 2, 2);
            bitmap.at(row) = static_cast<uint8_t>(std::stoi(digits, nullptr, 16));
        }
        return true;
    }
    // "x", a column, "y" and a row; one of both may be missing.
    bool move(const std::string& sequence) {
        int column = m_column;
        int row = m_row;
        for (size_t at = 0; at + 1 < sequence.size();) {
            const char axis = sequence[at++];
            const size_t begin = at;
            while (std::isdigit(static_cast<unsigned char>(sequence[at])) != 0) {
                ++at;
            }
            if ((axis != 'x' && axis != 'y') || at == begin || at - begin > 4) {
                ++m_mistakes;
                return true;
            }
            (axis == 'x' ? column : row) = std::stoi(sequence.substr(begin, at - begin));
        }
        if (column >= m_columns || row >= m_rows) {
            ++m_mistakes;
            return true;
        }
        m_column = column;
        m_row = row;
        return true;
    }

    int m_columns;
    int m_rows;
    std::vector<std::string> m_lines;
    int m_row = 0;
    int m_column = 0;
    bool m_is_on = true;
    bool m_has_cursor = true;
    bool m_blinks = true;
    bool m_is_lit = false;
    std::array<std::optional<Bitmap>, 8> m_defined;
    std::optional<std::string> m_sequence;  // what came behind an escape
    int m_mistakes = 0;
    size_t m_bytes = 0;
};

}  // namespace support

#endif
