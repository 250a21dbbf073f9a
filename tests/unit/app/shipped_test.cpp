#include "shipped.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

bool ends_with(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

TEST(Shipped, FilesStandUnderTheProgramsPrefixWhateverItIs) {
    const std::string folder = shipped_folder("/opt/panel/bin/frontpanel");
    EXPECT_TRUE(ends_with(folder, "/frontpanel_data/menus")) << folder;
    EXPECT_EQ(folder.find(".."), std::string::npos) << folder;
    EXPECT_EQ(folder.rfind("/opt/panel/", 0), 0U) << folder;
    EXPECT_EQ(shipped_folder("/bin/frontpanel"), folder.substr(std::string("/opt/panel").size()));
}

TEST(Shipped, TheTourStandsBesideTheMenu) {
    const std::string menu = shipped_menu();
    const std::string tour = shipped_tour();
    EXPECT_TRUE(ends_with(menu, "/demo.json")) << menu;
    EXPECT_TRUE(ends_with(tour, "/tour.script")) << tour;
    EXPECT_EQ(menu.substr(0, menu.rfind('/')), tour.substr(0, tour.rfind('/')));
}

TEST(Shipped, AMenuThatShipsWithThePanelGoesByItsName) {
    const std::string folder = FRONTPANEL_SOURCE_DIR "/menus";
    EXPECT_EQ(menu_file("this-machine", folder), folder + "/this-machine.json");
    EXPECT_EQ(menu_file("no-such-menu", folder), "no-such-menu");
    EXPECT_EQ(menu_file("./this-machine", folder), "./this-machine");
    EXPECT_EQ(menu_file("", folder), "");
}

}  // namespace
}  // namespace frontpanel
