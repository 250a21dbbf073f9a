// What no input may do to the panel: crash it, hang it, or break its display.
#include <random>

#include <frontpanel_base/input_error.h>
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using Random = std::mt19937;

size_t below(Random& random, size_t end) {
    return std::uniform_int_distribution<size_t>(0, end - 1)(random);
}

std::string shipped_menu_text() {
    return read_input_file(FRONTPANEL_SOURCE_DIR "/menus/demo.json");
}

Key random_key(Random& random) {
    constexpr Key::Kind KINDS[] = {Key::UP,   Key::DOWN,    Key::DOWN,  Key::SELECT,
                                   Key::BACK, Key::COARSER, Key::FINER, Key::SHORTCUT,
                                   Key::LEFT, Key::RIGHT,   Key::ERASE};
    return {KINDS[below(random, std::size(KINDS))], static_cast<int>(below(random, 10))};
}

void press_at_random(Controller& controller, Random& random, int times, Lcd_size size) {
    for (int i = 0; i < times; ++i) {
        controller.press(random_key(random));
        if (below(random, 4) == 0) {
            controller.tick();
        }
        for (const std::string& line : lines_of(controller.draw())) {
            ASSERT_EQ(line.size(), static_cast<size_t>(size.columns));
            ASSERT_EQ(
                line.find_first_not_of(" !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRST"
                                       "UVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~"),
                std::string::npos);
        }
    }
}

TEST(Robustness, RandomKeysLeaveTheDisplayWhole) {
    for (const Lcd_size size : {Lcd_size{16, 2}, {20, 2}, {24, 3}, {80, 16}}) {
        Random random(1);
        Menu_panel panel(shipped_menu_text(), size);
        press_at_random(panel.controller(), random, 2000, size);
    }
}

TEST(Robustness, RandomKeysOnAFailingDeviceLeaveTheDisplayWhole) {
    Random random(2);
    Menu_panel panel(shipped_menu_text());
    panel.device().set_fault(
        [&random](const Memory_device::Operation&) { return below(random, 3) == 0 ? 100 : 0; });
    press_at_random(panel.controller(), random, 2000, {});
}

// A change of one byte, a piece that is missing, or a piece that is there twice.
std::string mutated(std::string text, Random& random) {
    constexpr std::string_view BYTES = "{}[]\",:0129-.ntfx \n\\%";
    const size_t at = below(random, text.size());
    const size_t length = below(random, 20) + 1;
    switch (below(random, 3)) {
        case 0:
            text[at] = BYTES[below(random, BYTES.size())];
            break;
        case 1:
            text.erase(at, length);
            break;
        default:
            text.insert(at, text.substr(at, length));
            break;
    }
    return text;
}

TEST(Robustness, AMenuFileWithAMistakeLoadsOrIsRefusedInOneLine) {
    Random random(3);
    const std::string menu = shipped_menu_text();
    int loaded = 0;
    int refused = 0;
    for (int i = 0; i < 600; ++i) {
        const std::string text = mutated(menu, random);
        try {
            Menu_panel panel(text);
            press_at_random(panel.controller(), random, 20, {});
            ++loaded;
        } catch (const Input_error& error) {
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
            EXPECT_EQ(std::string(error.what()).rfind("menu.json:", 0), 0U) << error.what();
            ++refused;
        }
    }
    EXPECT_GT(loaded, 0);
    EXPECT_GT(refused, 100);
}

// Empty when the menu loads.
Lines complaints_when(bool has_all_warnings, const std::string& text) {
    try {
        Menu_document document("menu.json", text);
        simulate(document, 20, Cards::OFF, has_all_warnings);
    } catch (const Input_errors& errors) {
        return errors.lines();
    } catch (const Input_error& error) {
        return {error.what()};
    }
    return {};
}

// Rules that write in a circle, names that fit no line, and equal names: mistakes that only checks of the whole menu
// find.
std::string doubtful_menu_text() {
    return menu_text(R"({"name": "a", "pid": 5, "type": "integer", "min": 0, "max": 100},
        {"name": "b", "pid": 6, "type": "integer", "min": 0, "max": 100})",
                     R"({"type": "range", "name": "Level", "parameter": "a",
            "binding": "set [b] = value if value > 1"},
        {"type": "range", "name": "Level", "parameter": "b",
            "binding": "range 0..[a]; visible if value >= 0"},
        {"type": "node", "name": "A name of more than a line", "items": [
            {"type": "range", "name": "C", "parameter": "a", "binding": "range [b]..100"}]})");
}

TEST(Robustness, APanelRefusesAMenuWithTheLinesOfACheck) {
    Random random(4);
    int refused = 0;
    for (const std::string& menu : {shipped_menu_text(), doubtful_menu_text()}) {
        for (int i = 0; i < 300; ++i) {
            const std::string text = mutated(i % 3 == 0 ? mutated(menu, random) : menu, random);
            const Lines checked = complaints_when(true, text);
            ASSERT_EQ(complaints_when(false, text), checked) << text;
            refused += checked.empty() ? 0 : 1;
        }
    }
    EXPECT_GT(refused, 200);
    for (const std::string rule :
         {"set [a] = value", "set [b] = value", "set [a] = [b]", "range [a]..[b]"}) {
        for (const std::string other :
             {"set [a] = value", "range 0..[a]", "set [b] = 3", "set [b] = [a]"}) {
            const std::string both = menu_text(
                R"({"name": "a", "pid": 5, "type": "integer", "min": 0, "max": 100},
                {"name": "b", "pid": 6, "type": "integer", "min": 0, "max": 100})",
                R"({"type": "range", "name": "Level", "parameter": "a", "binding": ")" + rule +
                    R"("}, {"type": "range", "name": "Level", "parameter": "b", "binding": ")" +
                    other + "\"}");
            EXPECT_EQ(complaints_when(false, both), complaints_when(true, both)) << both;
        }
    }
}

}  // namespace
}  // namespace frontpanel
