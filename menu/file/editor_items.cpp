#include "file/editor_items.h"

#include <set>
#include <string>
#include <vector>

#include <frontpanel_base/json_members.h>
#include <frontpanel_menu/entry_kind.h>

namespace frontpanel {
namespace {

constexpr int LARGEST_STEP = 1000000000;
constexpr int LARGEST_ACCELERATION = 1000;
constexpr size_t MOST_CHARACTERS = 95;  // as many as are printable

std::string characters_of(const Json_value& list) {
    std::string characters = list.text_of_length(1, MOST_CHARACTERS);
    if (std::set<char>(characters.begin(), characters.end()).size() != characters.size()) {
        list.fail("expected each character once");
    }
    return characters;
}

}  // namespace

Editor_settings editor_settings_of(const Json_value& editor, const Data_entry& entry) {
    using namespace editor_member;
    const std::vector<const char*>& members = kind_of(entry).editor_members;
    if (members.empty()) {
        editor.fail("this item is not edited");
    }
    editor.expect_members(members);
    Editor_settings settings;
    settings.preview = boolean_or(editor, PREVIEW, settings.preview);
    settings.step = integer_or(editor, STEP, 1, LARGEST_STEP, settings.step);
    settings.acceleration =
        integer_or(editor, ACCELERATION, 1, LARGEST_ACCELERATION, settings.acceleration);
    if (const auto wrap = editor.find(WRAP)) {
        settings.wrap = wrap->boolean();
    }
    if (const auto characters = editor.find(CHARACTERS)) {
        settings.characters = characters_of(*characters);
    }
    return settings;
}

Encoder_settings encoder_settings_of(const Json_value& encoder) {
    encoder.expect_members({"reversed", "wrap", "acceleration"});
    const Encoder_settings usual;
    return {boolean_or(encoder, "reversed", usual.reversed),
            boolean_or(encoder, "wrap", usual.wrap),
            boolean_or(encoder, "acceleration", usual.acceleration)};
}

}  // namespace frontpanel
