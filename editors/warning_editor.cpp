#include <frontpanel_editors/warning_editor.h>

#include <frontpanel_editors/value_text.h>

namespace frontpanel {

Warning_editor::Warning_editor() = default;
Warning_editor::~Warning_editor() = default;

void Warning_editor::start() {
    m_text.set(value_text(edited()));
}

void Warning_editor::show_value() {
    m_text.update(value_text(edited()));
}

void Warning_editor::remember() {}

bool Warning_editor::put_back() {
    return false;
}

void Warning_editor::step(Editor_key /*key*/, int /*steps*/) {}

bool Warning_editor::is_stored() {
    return true;
}

bool Warning_editor::accept() {
    return false;
}

bool Warning_editor::is_editable() const {
    return false;
}

bool Warning_editor::view_ends_with(Editor_key /*key*/) const {
    return true;
}

void Warning_editor::draw(int columns, Editor_view& shown) {
    shown.text = m_text.show(columns);
}

}  // namespace frontpanel
