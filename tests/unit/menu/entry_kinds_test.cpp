#include <frontpanel_data/selection.h>
#include <frontpanel_menu/entry_kind.h>

#include <set>

#include "unit/menu/kinds_fixture.h"

namespace frontpanel {
namespace {

// The row that the first item of a menu has.
const Entry_kind& kind_in(Simulated_menu& loaded) {
    return kind_of(*loaded.menu->root().Get_child());
}

TEST(EntryKinds, EveryKindOfAMenuFileHasOneNameAndABuilder) {
    std::set<std::string> names;
    for (const Entry_kind& kind : entry_kinds()) {
        EXPECT_NE(kind.build, nullptr);
        if (kind.name != nullptr) {
            EXPECT_TRUE(names.insert(kind.name).second) << kind.name;
        }
    }
    EXPECT_EQ(names.size(), 11U);
}

TEST(EntryKinds, AnEntryHasTheRowOfTheItemThatItWasBuiltFrom) {
    const std::pair<const char*, const char*> ITEMS[] = {
        {"node", R"("items": [{"type": "range", "name": "L", "pid": 5}])"},
        {"range", R"("pid": 5)"},
        {"text", R"("pid": 20)"},
        {"address", R"("pid": 21)"},
        {"time", R"("pid": 20)"},
        {"enum", R"("pid": 5, "choices": ["A", "B", "C"])"},
        {"slot", R"("pid": 7)"},
        {"warning", ""},
        {"mount", R"("folder": ".")"},
    };
    for (const auto& [type, members] : ITEMS) {
        Simulated_menu loaded = simulated_text(with_item_of(type, members));
        EXPECT_STREQ(kind_in(loaded).name, type);
    }
}

TEST(EntryKinds, AListOfACardIsNoItemOfItsOwn) {
    Simulated_menu loaded = simulated_text(
        with_item_of("enum", R"("pid": 9001, "live": {"slot": 3, "web-type": "combobox"})"));
    EXPECT_EQ(kind_in(loaded).name, nullptr);
    EXPECT_TRUE(kind_in(loaded).has(Entry_kind::IS_FETCHED));
}

TEST(EntryKinds, WhatIsEditedHasAnEditorThatTheLibraryTakes) {
    for (const Entry_kind& kind : entry_kinds()) {
        EXPECT_EQ(kind.make_editor != nullptr, kind.has(Entry_kind::HAS_VALUE));
        if (kind.make_editor != nullptr) {
            EXPECT_NE(dynamic_cast<Selection*>(kind.make_editor().get()), nullptr);
        }
    }
}

}  // namespace
}  // namespace frontpanel
