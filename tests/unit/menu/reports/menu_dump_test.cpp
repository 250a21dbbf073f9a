#include <frontpanel_menu/menu_dump.h>
#include "unit/menu/reports/reports_fixture.h"

namespace frontpanel {
namespace {

using Menu_dump = Menu_reports;

TEST_F(Menu_dump, TheTreeHasALineForEachEntryWithATabForEachMenuAround) {
    refresh_all(menu());
    EXPECT_EQ(
        dump_of(menu()),
        "Main \"A&B\" \\n varid[-1.0.0@s] num_index_levels=[0] type[0] vis[1] shortcut[-1] \n"
        "\tAudio varid[-1.0.0@s] num_index_levels=[0] type[0] vis[1] shortcut[-1] \n"
        "\t\tGain varid[100.1.0@i] num_index_levels=[1] type[1] vis[1] shortcut[-1] range={  [0, 100] }\n"
        "\tMode varid[101.0.0@i] num_index_levels=[0] type[2] vis[1] shortcut[-1] enum={  0(off)  1(on)  }\n"
        "\tFix varid[101.0.0@i] num_index_levels=[0] type[1] vis[1] shortcut[-1] range={  [0, 1] }\n"
        "\tSeat varid[101.0.0@i] num_index_levels=[0] type[1] vis[-1] shortcut[-1] range={  [0, 1] }\n"
        "\tPresets varid[-1.0.0@s] num_index_levels=[0] type[7] vis[1] shortcut[-1] \n"
        "\tAudio.Gain varid[100.1.0@i] num_index_levels=[1] type[7] vis[1] shortcut[-1] \n"
        "Home varid[-1.0.0@s] num_index_levels=[0] type[0] vis[1] shortcut[-1] \n"
        "\tAudio.Gain varid[100.1.0@i] num_index_levels=[1] type[7] vis[1] shortcut[-1] \n");
}

}  // namespace
}  // namespace frontpanel
