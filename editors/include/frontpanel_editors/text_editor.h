// Edits the text of a string entry character by character.
//
// COARSER and FINER move the cursor left and right, up to one place beyond the text. There the first step of
// the encoder widens the text by blanks; a step on a character changes it to its neighbour in the character
// set: the one that the entry is edited with, or the printable range. INSERT puts a blank under the cursor, as
// long as the text has room; DELETE takes the character under the cursor away, or the last one from the place
// behind the text. Works on a copy: the entry's text changes only when it is accepted, less the blanks at its
// ends that only widening put there.
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
    // The cursor's place counted from the text's right end: 0 is the last character, -1 the place behind it.
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

private:
    std::string working_text();
    void put_working_text(const std::string& text);
    std::size_t cursor() const;
    void move_left();
    void move_right();
    void turn(int direction);
    int change_of(char character, int direction) const;
    void insert();
    void remove();

    std::optional<String_model> m_text;
    std::string m_marks;  // for each character of the text: WIDENED, or TYPED
    int m_position = 0;
    Scrolling_text m_viewed;  // shown instead while the text cannot be edited
    std::string m_opened;     // the entry's text when it was opened
};

}  // namespace frontpanel

#endif
