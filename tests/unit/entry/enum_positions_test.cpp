// Looking up options by their position: as a search of the map finds them, without searching it each time.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "entry/keys_by_position.h"
#include "step_counter.h"
#include "support/capture.h"
#include "support/fake_device.h"
#include "unit/entry/enum_fixture.h"

namespace {

std::vector<std::string> numbered(int count) {
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) {
        texts.push_back("Option " + std::to_string(i));
    }
    return texts;
}

std::size_t searched() {
    return step_counter::positions_searched;
}

int found_by_search(const std::map<int, int>& map, int position) {
    for (const auto& [key, at] : map) {
        if (at == position) {
            return key;
        }
    }
    return NO_KEY;
}

TEST(Enum_positions, EachLineOfALongListIsFoundWithoutASearch) {
    Texts texts(numbered(1000));
    Open_enum entry(Enum_arguments().texts(&texts).max(999));
    const std::size_t before = searched();
    char line[21] = {};
    for (int position = 0; position < 1000; ++position) {
        ASSERT_EQ(entry.Get_display_string(line, 20, position), 0);
        ASSERT_EQ(line, "Option " + std::to_string(position));
    }
    EXPECT_LE(searched() - before, 2000u);
}

TEST(Enum_positions, AStepThroughALongListIsMadeWithoutASearch) {
    Texts texts(numbered(1000));
    Open_enum entry(Enum_arguments().texts(&texts).max(999));
    const std::size_t before = searched();
    for (int step = 0; step < 999; ++step) {
        ASSERT_EQ(entry.Inc_value(1, 0), 0);
    }
    EXPECT_LE(searched() - before, 2000u);
}

TEST(Enum_positions, ALookUpIsReportedAsASearchWhileItsLinesAreShown) {
    Texts texts(numbered(30));
    Open_enum entry(Enum_arguments().texts(&texts).max(29));
    ASSERT_EQ(entry.valueToKey(entry.map_enum_to_options, 20), 20);
    const auto look_up = [&] { entry.valueToKey(entry.map_enum_to_options, 20); };
    const std::string out = support::capture(0x1, look_up).out;
    std::size_t lines = 0;
    for (std::size_t at = out.find("it->second=["); at != std::string::npos;
         at = out.find("it->second=[", at + 1)) {
        ++lines;
    }
    EXPECT_EQ(lines, 22u) << "a line for each of 21 keys, and one for the result";
    EXPECT_EQ(support::capture(0x1000001, look_up).out, out) << "the verbose gate is open as well";
}

TEST(Enum_positions, OfAnotherMapAreSearched) {
    Texts texts(numbered(30));
    Open_enum entry(Enum_arguments().texts(&texts).max(29));
    std::map<int, int> other = entry.map_enum_to_options;
    other[3] = 7;
    EXPECT_EQ(entry.valueToKey(entry.map_enum_to_options, 7), 7);
    EXPECT_EQ(entry.valueToKey(other, 7), 3);
    EXPECT_EQ(entry.valueToKey(other, 3), NO_KEY);
}

TEST(Enum_positions, AreFoundAfterADerivedClassMovedAKey) {
    Texts texts(numbered(30));
    Open_enum entry(Enum_arguments().texts(&texts).max(29));
    ASSERT_EQ(entry.valueToKey(entry.map_enum_to_options, 7), 7);
    entry.map_enum_to_options[7] = 50;
    EXPECT_EQ(entry.valueToKey(entry.map_enum_to_options, 7), NO_KEY);
    EXPECT_EQ(entry.valueToKey(entry.map_enum_to_options, 50), 7);
    entry.map_enum_to_options.erase(8);
    EXPECT_EQ(entry.valueToKey(entry.map_enum_to_options, 8), NO_KEY);
}

// Whatever happens to the options, in whatever order.
TEST(Enum_positions, AreThoseThatASearchFinds) {
    constexpr int COUNT = 40;
    Texts texts(numbered(COUNT));
    support::Fake_device device;
    for (unsigned int seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](int count) {
            return static_cast<int>(random() % static_cast<unsigned int>(count));
        };
        Open_enum entry(Enum_arguments().texts(&texts).max(COUNT - 1));
        for (int step = 0; step < 30; ++step) {
            std::map<int, std::vector<std::string>> options;
            char line[21];
            switch (below(7)) {
                case 0:
                    for (int key = 0; key < COUNT; ++key) {
                        options[key] = {below(3) == 0 ? "gps" : "radio"};
                    }
                    entry.Set_control_options(options);
                    break;
                case 1:
                    entry.setProductOptions({{"gps", random() % 2}, {"radio", random() % 2}});
                    break;
                case 2:
                    entry.updateControlOptionMap();
                    break;
                case 3:
                    entry.Inc_value(below(9) - 4, 0);
                    break;
                case 4: {
                    const int position = below(COUNT);
                    entry.Set_value(&position, sizeof position);
                    break;
                }
                case 5:
                    entry.Get_display_string(line, 20, below(COUNT));
                    break;
                default:
                    entry.map_enum_to_options.erase(below(COUNT));
            }
            for (int position = -2; position < COUNT + 3; ++position) {
                ASSERT_EQ(entry.valueToKey(entry.map_enum_to_options, position),
                          found_by_search(entry.map_enum_to_options, position))
                    << "seed " << seed << ", step " << step << ", position " << position;
            }
        }
    }
}

}  // namespace
