// Edits the number of a range entry with the encoder.
//
// One detent changes the value by the entry's step, or by 10, 100 ... times that step, as chosen with the coarser and
// finer keys. A step that would end in a gap between two ranges goes on to the next allowed value. In a quick turn a
// detent counts as several steps, up to the entry's acceleration. A value of the device that lies in a gap is shown
// unchanged, and never stored. The proposed value and the step are shown in the entry's format.
//
// A number is typed as it is shown. Any key except ERASE ends typing, and the number becomes the proposed value. If no
// allowed value shows that number, SELECT proposes the nearest one (MOVED).
#ifndef FRONTPANEL_EDITORS_NUMBER_EDITOR_H
#define FRONTPANEL_EDITORS_NUMBER_EDITOR_H

#include <frontpanel_editors/editor_base.h>
#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/number_scale.h>

#include <cstdint>
#include <string>

namespace frontpanel {

class Number_editor : public Editor_base<NumericRangeSelection, Range_entry> {
public:
    Number_editor();
    ~Number_editor() override;

    // A step is never larger than the whole range, and never smaller than the entry's.
    void Coarser_step() override;
    void Finer_step() override;

    int proposed_value() const { return m_proposed; }
    int step_size() const { return m_step; }

protected:
    void start() override;
    void remember() override;
    bool put_back() override;
    void step(Editor_key key, int steps) override;
    bool is_stored() override;
    bool accept() override;
    bool move_to_allowed() override;
    void draw(int columns, Editor_view& shown) override;
    Editor_change adapt() override;
    std::string typed_characters() const override;
    void put(char character) override;
    bool is_typing() const override { return !m_typed.empty(); }

private:
    bool take_typed();
    bool correct();
    void turn(int64_t change);
    bool has_allowed_value() const;

    int m_proposed = 0;
    int m_opened = 0;  // the entry's value when it was opened
    int m_step = 1;
    Scrolling_text m_text;  // for a text without a digit, which has no cursor
    Number_scale m_scale;
    std::string m_typed;
};

}  // namespace frontpanel

#endif
