// Entries to edit, with every argument at a value that suits most tests, and what tests do to editors.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_EDITORS_EDITOR_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_EDITORS_EDITOR_FIXTURE_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/selection.h>
#include <frontpanel_editors/value_editor.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/indexes.h"

namespace editor_fixture {

using namespace frontpanel;

// An entry of a text class (string, address or time) with a text.
template <class Entry>
struct Text_leaf : Entry {
    template <class... Length>
    explicit Text_leaf(unsigned int pid, Data_entry::Data_access access, Length... length)
        : Entry("Label", "A text", pid, support::any_index(), length..., nullptr, access,
                Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr,
                nullptr) {}

    void put(const std::string& text) {
        this->m_model.Set(text.data(), static_cast<unsigned int>(text.size()));
    }
    std::string text() {
        char buffer[MAX_STRING_LENGTH + 1] = {};
        this->Get_value(buffer, sizeof buffer);
        return buffer;
    }
};

// "U" and "D" turn the encoder, "<" and ">" are the coarser and the finer key, "I" and "X" insert and delete; a
// number repeats the key that follows it, as in "12U<3D". Every key leaves the editor open.
inline void press_keys(Value_editor& editor, const std::string& keys) {
    int times = 0;
    for (const char key : keys) {
        if (key >= '0' && key <= '9') {
            times = times * 10 + (key - '0');
            continue;
        }
        const Editor_key pressed = key == 'U'   ? Editor_key::UP
                                   : key == 'D' ? Editor_key::DOWN
                                   : key == '<' ? Editor_key::COARSER
                                   : key == 'I' ? Editor_key::INSERT
                                   : key == 'X' ? Editor_key::DELETE
                                   : key == 'E' ? Editor_key::ERASE
                                                : Editor_key::FINER;
        for (int i = 0; i < (times == 0 ? 1 : times); ++i) {
            EXPECT_EQ(editor.press(pressed), Editor_result::OPEN);
        }
        times = 0;
    }
}

// Each of the keys is told that the value is only viewed.
inline void press_locked_keys(Value_editor& editor) {
    for (const Editor_key key :
         {Editor_key::UP, Editor_key::DOWN, Editor_key::INSERT, Editor_key::DELETE}) {
        EXPECT_EQ(editor.press(key), Editor_result::LOCKED);
    }
}

// What `count` draws in a row show.
inline std::vector<std::string> frames(Value_editor& editor, int columns, int count) {
    std::vector<std::string> shown;
    for (int i = 0; i < count; ++i) {
        shown.push_back(editor.view(columns).text);
    }
    return shown;
}

// Performs one dispatcher step on the entry with the editor.
inline void operate(Data_entry& entry, Selection& selection, int step, void* argument = nullptr) {
    Data_entry::EntryTypeSpecificOperation(&entry, nullptr, &selection, false, step, &argument);
}

}  // namespace editor_fixture

#endif
