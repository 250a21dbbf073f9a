// Chooses one option of an enumerated entry or a slot list with the encoder.
//
// The encoder moves through the visible options and stops at the first and the last, or wraps. The entry's own
// choice changes only when the proposed one is accepted. When the list of options is replaced, the proposed one is
// found again by its text.
#ifndef FRONTPANEL_EDITORS_ENUM_EDITOR_H
#define FRONTPANEL_EDITORS_ENUM_EDITOR_H

#include <frontpanel_editors/editor_base.h>
#include <frontpanel_editors/line_text.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace frontpanel {

class Enum_editor : public Editor_base<EnumSelection, Enum_entry> {
public:
    Enum_editor();
    ~Enum_editor() override;

    // Given before the editor opens. With line information, a slot list reads its lines anew when it opens and
    // at every step, so that the slots around the cursor show their products' aliases. It reads through
    // `VarIdDataInfStore::m_pDataAccessInf`, and not at all while that is null.
    void Set_use_line_info(bool use_line_info) override;
    void Set_selected(int32_t selected) override;
    void Set_selected_line(int32_t selected_line) override;

    // The visible position of the option that would be accepted.
    int proposed_position() const { return m_proposed; }

protected:
    void start() override;
    void remember() override;
    bool put_back() override;
    void step(Editor_key key, int steps) override;
    bool is_stored() override;
    bool accept() override;
    void draw(int columns, Editor_view& shown) override;
    Editor_change adapt() override;
    void show_value() override;

private:
    struct Positions {
        int first;
        int last;
        bool none() const { return first > last; }
    };
    struct Option {
        int key;
        std::string text;
        bool operator==(const Option& other) const {
            return key == other.key && text == other.text;
        }
    };
    Positions choices() const;
    int own_position();
    Option option_at(int position);
    std::vector<Option> options();
    std::optional<int> position_of(const Option& option);
    void take(int position);
    void propose(int position);
    void read_slot_lines();

    int m_proposed = 0;
    Option m_option{};              // the proposed one
    std::vector<Option> m_options;  // that could be chosen when it was proposed
    Option m_opened{};              // the entry's choice when it was opened
    Scrolling_text m_text;
    int32_t m_selected = 0;
    int32_t m_selected_line = 0;
    bool m_use_line_info = false;
    bool m_is_nowhere = false;  // the stored key has no option; the first step moves to one
};

}  // namespace frontpanel

#endif
