// Shows a warning text until any key acknowledges it. The text cannot be changed.
#ifndef FRONTPANEL_EDITORS_WARNING_EDITOR_H
#define FRONTPANEL_EDITORS_WARNING_EDITOR_H

#include <frontpanel_editors/editor_base.h>
#include <frontpanel_editors/line_text.h>

namespace frontpanel {

class Warning_editor : public Editor_base<WarnSelection, String_entry> {
public:
    Warning_editor();
    ~Warning_editor() override;

protected:
    void start() override;
    void remember() override;
    bool put_back() override;
    void step(Editor_key key, int steps) override;
    bool is_stored() override;
    bool accept() override;
    void draw(int columns, Editor_view& shown) override;
    void show_value() override;
    bool is_editable() const override;
    bool view_ends_with(Editor_key key) const override;

private:
    Scrolling_text m_text;
};

}  // namespace frontpanel

#endif
