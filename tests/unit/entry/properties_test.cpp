// The report of every class, as a dump of a menu prints it.
#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/indexes.h"

namespace {

using support::capture;
using support::index_of;

constexpr int NAME_ONLY = 0x8;

// A menu with an entry of every class.
class Reports : public testing::Test {
protected:
    Reports() {
        gain.setProductOptions({{"gps", 1}});
        gain.setValidRangeAndValues({range_of(0, 11, {"gps"}), range_of(20, 101)});
        mode.setProductOptions({{"gps", 1}});
        mode.Set_control_options({{1, {"gps", "modem"}}});
    }

    static range_s range_of(int min, int max, std::vector<std::string> options = {}) {
        range_s range;
        range.min_inclusive = min;
        range.max_exclusive = max;
        range.options = std::move(options);
        return range;
    }

    Index_t none = index_of({});
    Index_t one = index_of({3});
    Index_t two = index_of({3, 7});
    char format[4] = "%d";
    char expression[2] = "v";
    char off[4] = "Off";
    char on[3] = "On";
    char* texts[2] = {off, on};

    Node_entry top{"Main", "", &none, nullptr, 1, -1, nullptr, nullptr, nullptr};
    Node_entry audio{"Audio:hidden part", "", &two, &top, 1, 4, nullptr, nullptr, nullptr};
    Range_entry gain{"Gain",
                     "",
                     120,
                     &one,
                     0,
                     100,
                     10,
                     format,
                     expression,
                     &audio,
                     Data_entry::READ_WRITE,
                     1,
                     true,
                     -1,
                     nullptr,
                     nullptr,
                     nullptr};
    Enum_entry mode{"Mode",
                    "",
                    121,
                    &two,
                    0,
                    1,
                    0,
                    texts,
                    2,
                    &audio,
                    Data_entry::READ_WRITE,
                    1,
                    true,
                    12,
                    nullptr,
                    nullptr,
                    nullptr,
                    nullptr,
                    nullptr,
                    nullptr};
    Slot_enum_entry slot{"Slot",
                         "",
                         122,
                         &none,
                         0,
                         1,
                         0,
                         nullptr,
                         texts,
                         2,
                         nullptr,
                         &top,
                         Data_entry::READ_WRITE,
                         nullptr,
                         1,
                         true,
                         -1,
                         nullptr,
                         nullptr,
                         nullptr};
    String_entry label{"Label", "",   123, &none,   20,      &top,   Data_entry::READ_ONLY,
                       1,       true, -1,  nullptr, nullptr, nullptr};
    Ip_entry address{"Address", "",   124, &one,    &top,    Data_entry::READ_WRITE,
                     1,         true, -1,  nullptr, nullptr, nullptr};
    Time_entry clock{"Clock", "",   125, &one,    20,      &top,   Data_entry::READ_WRITE,
                     1,       true, -1,  nullptr, nullptr, nullptr};
    Node_entry hidden{"Hidden", nullptr, nullptr, &top, -1, -1, nullptr, nullptr, nullptr};
};

// By the link's name and type, and by the parameter and the place of what it houses.
TEST_F(Reports, OfALinkTellWhatItHouses) {
    Link_entry link(&gain);
    top.Add_child(link);
    link.Set_next(nullptr);
    EXPECT_EQ(link.getProperties(4),
              "Audio.Gain varid[120.3.0@i] num_index_levels=[1] type[7] vis[1] shortcut[-1] ");
    EXPECT_EQ(link.getProperties(NAME_ONLY), "Audio.Gain ");
    link.Set_shortcut(5);
    link.Set_invisible();
    EXPECT_EQ(link.getProperties(4),
              "Audio.Gain varid[120.3.0@i] num_index_levels=[1] type[7] vis[1] shortcut[5] ")
        << "the visibility is the one that the link was built with";
    Link_entry nowhere(nullptr);
    EXPECT_EQ(nowhere.getProperties(4),
              "none varid[0.0.0@s] num_index_levels=[0] type[7] vis[-1] shortcut[-1] ");
    int depth = 0;
    const std::string dump =
        capture(0, [&] { Data_entry::TraverseMenuTree(&top, 0x4, &depth); }).out;
    EXPECT_NE(dump.find("\nAudio.Gain varid["), std::string::npos) << dump;
    top.Remove(&link);
}

TEST_F(Reports, FillADumpOfTheMenu) {
    int depth = 0;
    EXPECT_EQ(capture(0, [&] { Data_entry::TraverseMenuTree(&top, 0x4, &depth); }).out,
              "Audio varid[-1.3.7@s] num_index_levels=[2] type[0] vis[1] shortcut[4] \n"
              "\tGain varid[120.3.0@i] num_index_levels=[1] type[1] vis[1] shortcut[-1] "
              "range={  [0, 10] options:gps  [20, 100] }\n"
              "\tMode varid[121.3.7@i] num_index_levels=[2] type[2] vis[1] shortcut[12] "
              "enum={  0(Off)  1(On) options:gps modem  }\n"
              "Slot varid[122.0.0@i] num_index_levels=[0] type[6] vis[1] shortcut[-1] \n"
              "Label varid[123.0.0@s] num_index_levels=[0] type[3] vis[1] shortcut[-1] \n"
              "Address varid[124.3.0@s] num_index_levels=[1] type[4] vis[1] shortcut[-1] \n"
              "Clock varid[125.3.0@s] num_index_levels=[1] type[5] vis[1] shortcut[-1] \n"
              "Hidden varid[-1.0.0@s] num_index_levels=[0] type[0] vis[-1] shortcut[-1] \n");
}

TEST_F(Reports, OfNamesKeepWhatALeafAllows) {
    const std::vector<std::pair<Data_entry*, std::string>> reports = {
        {&audio, "Audio "},
        {&gain, "Gain range={  [0, 10] options:gps  [20, 100] }"},
        {&mode, "Mode enum={  0(Off)  1(On) options:gps modem  }"},
        {&slot, "Slot "},
        {&label, "Label "},
        {&address, "Address "},
        {&clock, "Clock "},
        {&hidden, "Hidden "},
    };
    for (const auto& [entry, report] : reports) {
        EXPECT_EQ(entry->getProperties(NAME_ONLY), report);
        EXPECT_EQ(entry->getProperties(NAME_ONLY | 0x4), report);
    }
}

TEST_F(Reports, TellTheStateOfTheMoment) {
    label.Set_shortcut(9);
    label.Set_invisible();
    EXPECT_EQ(label.getProperties(4),
              "Label varid[123.0.0@s] num_index_levels=[0] type[3] vis[-2147483647] shortcut[9] ");
    gain.setValidRangeAndValues({range_of(0, 101)});
    EXPECT_EQ(gain.getProperties(NAME_ONLY), "Gain range={  [0, 100] }");
    gain.setValidRangeAndValues({});
    EXPECT_EQ(gain.getProperties(NAME_ONLY), "Gain range={ }");
}

TEST_F(Reports, ShowTheWidestRange) {
    gain.setValidRangeAndValues({range_of(INT_MIN, INT_MAX)});
    EXPECT_EQ(gain.getProperties(NAME_ONLY), "Gain range={  [-2147483648, 2147483646] }");
}

// Only the base's line has a buffer of its own.
TEST_F(Reports, CutNeitherRangesNorOptions) {
    const std::string option(700, 'g');
    gain.setProductOptions({{option, 1}});
    gain.setValidRangeAndValues({range_of(0, 2, {option, option}), range_of(5, 8)});
    EXPECT_EQ(gain.getProperties(NAME_ONLY),
              "Gain range={  [0, 1] options:" + option + " " + option + "  [5, 7] }");
    mode.Set_control_options({{0, {option, option}}});
    EXPECT_EQ(mode.getProperties(NAME_ONLY),
              "Mode enum={  0(Off) options:" + option + " " + option + "  1(On)  }");
}

TEST_F(Reports, TakeANameAsItIs) {
    Node_entry node("%s%n 100% of 24 characters", "", &one, nullptr, 1, -1, nullptr, nullptr,
                    nullptr);
    EXPECT_EQ(node.getProperties(NAME_ONLY), "%s%n 100% of 24 characte ");
}

}  // namespace
