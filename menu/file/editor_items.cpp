#include "file/editor_items.h"

#include <set>
#include <string>
#include <vector>

#include <frontpanel_menu/entry_access.h>

namespace frontpanel {
namespace {

constexpr int LARGEST_STEP = 1000000000;
constexpr int LARGEST_ACCELERATION = 1000;
constexpr size_t MOST_CHARACTERS = 95;  // as many as are printable

std::vector<const char*> members_of(const Data_entry& entry) {
    switch (entry.Get_entry_type()) {
        case Data_entry::RANGE_LEAF:
            return {"preview", "wrap", "step", "acceleration"};
        case Data_entry::STRING_LEAF:
            return is_warning(entry) ? std::vector<const char*>()
                                     : std::vector<const char*>{"preview", "wrap", "characters"};
        case Data_entry::ENUM_LEAF:
        case Data_entry::SLOT_ENUM:
        case Data_entry::IP_LEAF:
        case Data_entry::TIME_LEAF:
            return {"preview", "wrap"};
        default:
            return {};
    }
}

bool boolean_or(const Json_value& owner, const char* name, bool otherwise) {
    const auto member = owner.find(name);
    return member ? member->boolean() : otherwise;
}

int number_or(const Json_value& owner, const char* name, int most, int otherwise) {
    const auto member = owner.find(name);
    return member ? static_cast<int>(member->integer(1, most)) : otherwise;
}

std::string characters_of(const Json_value& list) {
    std::string characters = list.text_of_length(1, MOST_CHARACTERS);
    if (std::set<char>(characters.begin(), characters.end()).size() != characters.size()) {
        list.fail("expected each character once");
    }
    return characters;
}

}  // namespace

Editor_settings editor_settings_of(const Json_value& editor, const Data_entry& entry) {
    const std::vector<const char*> members = members_of(entry);
    if (members.empty()) {
        editor.fail("this item is not edited");
    }
    editor.expect_members(members);
    Editor_settings settings;
    settings.preview = boolean_or(editor, "preview", settings.preview);
    settings.step = number_or(editor, "step", LARGEST_STEP, settings.step);
    settings.acceleration =
        number_or(editor, "acceleration", LARGEST_ACCELERATION, settings.acceleration);
    if (const auto wrap = editor.find("wrap")) {
        settings.wrap = wrap->boolean();
    }
    if (const auto characters = editor.find("characters")) {
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
