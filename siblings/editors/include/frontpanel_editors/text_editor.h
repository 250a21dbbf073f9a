// Edits the text of a string entry character by character.
//
// COARSER and FINER move the cursor left and right, up to one place beyond the text. There the first step of
// the encoder widens the text by blanks; a step on a character changes it to its neighbour in the character
// set, within the printable range. Works on a copy: the entry's text changes only when it is accepted, less
// the blanks at its ends that only widening put there.
#ifndef FRONTPANEL_EDITORS_TEXT_EDITOR_H
#define FRONTPANEL_EDITORS_TEXT_EDITOR_H

#include <frontpanel_editors/editor_base.h>
#include <frontpanel_editors/line_text.h>

#include <cstddef>
#include <optional>
#include <string>

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
    void step(Editor_key key) override;
    bool accept() override;
    void draw(int columns, Editor_view& shown) override;

private:
    std::string working_text();
    void move_left();
    void move_right();
    void turn(int change);

    std::optional<String_model> m_text;
    std::string m_marks;  // for each character of the text: WIDENED, or TYPED
    int m_position = 0;
    Scrolling_text m_viewed;  // shown instead while the text cannot be edited
};

#endif
