#include <frontpanel_base/json_document.h>
#include <frontpanel_menu/menu_dump.h>
#include "unit/menu/reports/reports_fixture.h"

namespace frontpanel {
namespace {

using Menu_dump = Menu_reports;

TEST_F(Menu_dump, TheTableHasALineForEachEntryUnderItsMenu) {
    refresh_all(menu());
    EXPECT_EQ(
        dump_of(menu()),
        "entry          type   parameter  value  state\n"
        "Main \"A&B\" \\n  node\n"
        "  Audio        node                     hidden: none of its items is shown\n"
        "    Gain       range  100.1      3      hidden: no visible rule holds; read-only; "
        "allowed 0..100\n"
        "  Mode         enum   101        off    allowed 0 (off), 1 (on)\n"
        "  Fix          range  101        0      hidden: the product has none of its options: "
        "gps, slot5; allowed 0..1\n"
        "  Seat         range  101        0      hidden: the menu file hides it; allowed 0..1\n"
        "  Presets      link\n"
        "  Audio.Gain   link   100.1      3      hidden: it leads to a hidden item: no visible "
        "rule holds; read-only; allowed 0..100\n"
        "Home           node\n"
        "  Audio.Gain   link   100.1      3      hidden: it leads to a hidden item: no visible "
        "rule holds; read-only; allowed 0..100\n");
}

// Names hold quotes and backslashes.
TEST_F(Menu_dump, TheDocumentIsJson) {
    refresh_all(menu());
    const std::string text = json_dump_of(menu());
    const Source source{"dump", 0};
    const Json_document document(source, text);
    const Json_node& entries = *document.root().member("entries");
    ASSERT_EQ(entries.elements().size(), 10U);
    EXPECT_EQ(entries.elements()[0].member("name")->text(), "Main \"A&B\" \\n");
    EXPECT_EQ(entries.elements()[2].member("path")->text(), "Audio/Gain");
    EXPECT_EQ(entries.elements()[2].member("hidden")->text(), "no visible rule holds");
    EXPECT_FALSE(entries.elements()[2].member("shown")->boolean());
}

}  // namespace
}  // namespace frontpanel
