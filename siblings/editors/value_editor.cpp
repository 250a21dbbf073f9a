#include <frontpanel_editors/value_editor.h>

Value_editor::Value_editor() = default;
Value_editor::~Value_editor() = default;
