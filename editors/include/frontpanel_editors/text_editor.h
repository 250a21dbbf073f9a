// Edits the text of a string entry character by character.
//
// COARSER and FINER move the cursor left and right, up to one place beyond the text. There the first step of the
// encoder adds a new character. A step on a character changes it to its neighbour in the character set: that of the
// entry's editor settings, or the printable characters. INSERT puts a new character at the cursor while the text has
// room. A new character is "A", or the first of the set that is no blank. A typed character replaces the one at the
// cursor, and the cursor moves on; a character that the set lacks is ignored, unless the set has it in the other case.
// DELETE removes the character at the cursor, or the last one from the place behind the text. ERASE does the same, but
// directly after typing it removes what was typed. A character beyond ASCII, which the device's text may have, is moved
// over, replaced and removed as a whole, but cannot be entered. The entry's text changes only when the new one is
// accepted.
#ifndef FRONTPANEL_EDITORS_TEXT_EDITOR_H
#define FRONTPANEL_EDITORS_TEXT_EDITOR_H

#include <frontpanel_editors/editor_base.h>
#include <frontpanel_editors/line_text.h>

#include <cstddef>
#include <optional>
#include <string>

namespace frontpanel {

class Text_editor : public Editor_base<StringSelection, String_entry> {
public:
    Text_editor();
    ~Text_editor() override;

    // The text as it would be accepted.
    std::string proposed_text();
    // The cursor's place counted in bytes from the text's right end: 0 is the last byte, -1 the place behind it. On a
    // character of several bytes it is the place of the first.
    int position() const { return m_position; }

protected:
    void start() override;
    void remember() override;
    bool put_back() override;
    void step(Editor_key key, int steps) override;
    bool is_stored() override;
    bool accept() override;
    void draw(int columns, Editor_view& shown) override;
    void show_value() override;
    std::string typed_characters() const override;
    void put(char character) override;
    bool has_typed() const override { return true; }

private:
    std::string working_text();
    void put_working_text(const std::string& text);
    std::size_t cursor() const;
    void move_left();
    void move_right();
    void stand_on_character();
    int bytes_behind();
    void replace(char character);
    void turn(int direction);
    int change_of(char character, int direction) const;
    char new_character() const;
    char in_set(char character) const;
    void insert(std::size_t at, char character);
    void insert();
    int remove(std::size_t at);
    void remove();
    void take_back();
    void widen(char character);
    int length() const;
    bool has_room() const;
    bool is_inside() const;

    std::optional<String_model> m_text;
    int m_position = 0;
    bool m_is_typing = false;  // the last key typed, or took back what was typed
    Scrolling_text m_viewed;   // shown while the text cannot be edited
    std::string m_opened;      // the entry's text when it was opened
};

}  // namespace frontpanel

#endif
