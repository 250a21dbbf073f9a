#include <frontpanel_menu/menu_check.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/folder.h"
#include "support/json_places.h"

namespace frontpanel {
namespace {

std::string menu_with(const std::string& items) {
    return R"({"device": {"parameters": [{"pid": 5, "type": "integer", "min": 0, "max": 9}]},
        "menu": {"name": "Main", "items": [)" +
           items + "]}}";
}

TEST(MenuCheck, AMenuWithoutErrorsIsCounted) {
    const std::string text =
        menu_with(R"({"type": "range", "name": "A name that is too long", "pid": 5})");
    Menu_document document("menu.json", text);
    const Menu_check check = check_menu(document);
    EXPECT_TRUE(check.errors.empty());
    EXPECT_EQ(check.entry_count, 2U);
    EXPECT_EQ(check.warnings,
              (std::vector<std::string>{
                  placed(text,
                         "menu.json: /menu/items/0/name: warning: a list of 20 columns has "
                         "room for \"A name that is to\" of this name beside the value "
                         "\"0\"")}));
}

TEST(MenuCheck, ErrorsAndWarningsAreListsOfTheirOwn) {
    const std::string text =
        menu_with(R"({"type": "range", "name": "A name that is too long", "pid": 6})");
    Menu_document document("menu.json", text);
    const Menu_check check = check_menu(document);
    EXPECT_EQ(check.errors,
              (std::vector<std::string>{
                  placed(text,
                         "menu.json: /menu/items/0/pid: the device has no parameter 6 with this "
                         "index")}));
    EXPECT_EQ(check.warnings.size(), 1U);
    EXPECT_EQ(check.entry_count, 0U);
}

TEST(MenuCheck, PresetsAreReadOnceEachFolder) {
    const support::Folder folder;
    std::filesystem::create_directory(folder.file("presets"));
    std::ofstream(folder.file("presets/Good.json")) << R"({"5": 9})";
    std::ofstream(folder.file("presets/High.json")) << R"({"5": 10})";
    Menu_document document(folder.file("menu.json"),
                           menu_with(R"({"type": "mount", "name": "Presets", "folder": "presets"},
                     {"type": "mount", "name": "Copies", "folder": "presets"})"));
    const Menu_check check = check_menu(document);
    EXPECT_EQ(check.errors,
              (std::vector<std::string>{folder.file("presets/High.json") +
                                        ":1:7: expected a whole number from 0 to 9, found 10"}));
    EXPECT_GT(check.entry_count, 0U);
}

}  // namespace
}  // namespace frontpanel
