// Edits a time field by field.
//
// Times of the forms "HH:MM", "HH:MM:SS", "YYYY-MM-DD" and a date with a time of day, separated by a blank or "T" and
// with or without "Z" at its end, can be edited. COARSER and FINER choose the field, the encoder changes it within the
// limits of the calendar. Typed digits replace it; a full field, or one of the signs between fields, moves to the next
// one. An impossible time of the device, such as month 0, starts as the nearest possible one. A text of another form is
// only viewed.
#ifndef FRONTPANEL_EDITORS_TIME_EDITOR_H
#define FRONTPANEL_EDITORS_TIME_EDITOR_H

#include <frontpanel_editors/editor_base.h>
#include <frontpanel_editors/field_line.h>
#include <frontpanel_editors/line_text.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace frontpanel {

// Whether the text is a possible time in one of these forms.
bool is_time(const std::string& text);

class Time_editor : public Editor_base<TimeSelection, Time_entry> {
public:
    Time_editor();
    ~Time_editor() override;

    // Empty for a text of another form.
    std::string proposed_time() const { return m_fields.text(); }
    // The field that the encoder changes, from 0 at the left.
    std::size_t field() const { return m_fields.chosen(); }

protected:
    void start() override;
    void remember() override;
    bool put_back() override;
    void step(Editor_key key, int steps) override;
    bool is_stored() override;
    bool accept() override;
    void draw(int columns, Editor_view& shown) override;
    std::string typed_characters() const override;
    void put(char character) override;
    bool is_typing() const override;
    void show_value() override;
    bool is_editable() const override;

private:
    Field_line::Limits limits_of(std::size_t field) const;
    void keep_limits();

    std::string m_kinds;  // of each field: a letter of the form; empty for a text of another form
    Field_line m_fields;
    Scrolling_text m_viewed;
    std::string m_opened;  // the entry's text when it was opened
};

}  // namespace frontpanel

#endif
