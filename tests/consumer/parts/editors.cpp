// An editor over an entry of the application's own, drawn by the application.
#include <frontpanel_data/data_entry.h>
#include <frontpanel_editors/number_editor.h>

#include "device.h"

int main() {
    using namespace frontpanel;
    Device device;
    const Index_t index = {0, {0}};
    char format[] = "%d dB", conversion[] = "v";
    Node_entry menu("Main", "Main", &index, nullptr, Data_entry::VISIBLE_ALL, -1, nullptr, nullptr,
                    nullptr);
    Range_entry level("Level", "Level", 100, &index, 0, 100, 0, format, conversion, &menu,
                      Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true, -1, nullptr, nullptr,
                      nullptr);
    level.setValidRangeAndValues({{0, 101, {}}});

    Number_editor editor;
    editor.Prepare(&level);
    editor.press(Editor_key::UP, 3);
    const bool is_shown = editor.view(16).text == "3 dB";
    const bool is_accepted = editor.press(Editor_key::SELECT) == Editor_result::ACCEPTED;
    editor.ExitLEDs();
    level.Commit(&device);
    return is_shown && is_accepted && device.values[100] == 3 ? 0 : 1;
}
