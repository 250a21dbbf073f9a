#include <frontpanel_editors/value_editor.h>

namespace frontpanel {

Value_editor::Value_editor() = default;
Value_editor::~Value_editor() = default;

}  // namespace frontpanel
