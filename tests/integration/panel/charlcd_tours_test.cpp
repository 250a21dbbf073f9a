// Every frame of the shipped tours, as a character display of the kernel shows it.
#include <gtest/gtest.h>
#include <poll.h>

#include <sstream>

#include "curl_home.h"
#include "loaded_panel.h"
#include "options.h"
#include "simulated_script_device.h"
#include "support/charlcd_pipe.h"

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_displays/charlcd_display.h>
#include <frontpanel_ui/script_player.h>

namespace frontpanel {
namespace {

// Waits for the display after each frame, and compares what it shows with the frame.
class Compared_display : public Display {
public:
    explicit Compared_display(Lcd_size size)
        : m_pipe(size.columns, size.rows), m_display(m_pipe.path(), size, m_log) {
        m_pipe.plug_in();
        m_display.next(m_now);
    }

    void show(const Frame& frame) override {
        ++m_frames;
        m_display.show(frame);
        while (!m_display.is_settled()) {
            pollfd source = m_display.source();
            ASSERT_EQ(poll(&source, 1, 20000), 1);
            m_display.next(m_now);
        }
        m_pipe.read_all();
        for (int row = 0; row < frame.lcd.size().rows; ++row) {
            const std::u32string shown = m_pipe.emulator.text(row, support::shown_by_a00());
            const std::u32string wanted = frame.lcd.characters(row);
            for (size_t column = 0; column < wanted.size(); ++column) {
                expect_shown(shown[column], wanted[column]);
            }
        }
        const bool has_cursor = frame.lcd.cursor_row() >= 0;
        EXPECT_EQ(m_pipe.emulator.blinks(), has_cursor) << "frame " << m_frames;
        if (has_cursor) {
            EXPECT_EQ(m_pipe.emulator.row(), frame.lcd.cursor_row()) << "frame " << m_frames;
            EXPECT_EQ(m_pipe.emulator.column(), frame.lcd.cursor_column()) << "frame " << m_frames;
        }
        EXPECT_EQ(m_pipe.emulator.is_lit(), !frame.dim) << "frame " << m_frames;
        EXPECT_EQ(m_pipe.emulator.mistakes(), 0) << "frame " << m_frames;
    }
    int frames() const { return m_frames; }
    size_t bytes() const { return m_pipe.emulator.bytes(); }

private:
    // A character of the ROM, or one that is drawn as the one that is wanted.
    void expect_shown(char32_t shown, char32_t wanted) const {
        if (shown == wanted) {
            return;
        }
        ASSERT_GE(shown, 0xE000U) << "frame " << m_frames << ": " << utf8_of(wanted);
        const auto drawn = m_pipe.emulator.defined(static_cast<int>(shown - 0xE000U));
        const Glyph* const glyph = glyph_of(wanted);
        ASSERT_NE(glyph, nullptr) << "frame " << m_frames << ": " << utf8_of(wanted);
        EXPECT_EQ(drawn, *glyph) << "frame " << m_frames << ": " << utf8_of(wanted);
    }

    support::Charlcd_pipe m_pipe;
    std::ostringstream m_log;
    Charlcd_display m_display;
    Time m_now{std::chrono::seconds(1000)};
    int m_frames = 0;
};

struct Tour {
    const char* script;
    Lcd_size size;
};

void PrintTo(const Tour& tour, std::ostream* out) {
    *out << tour.script << " on " << size_text(tour.size);
}

class Charlcd_tour : public testing::TestWithParam<Tour> {};

// The expectations of a tour are for its own size; its frames are looked at on each.
TEST_P(Charlcd_tour, EveryFrameIsShown) {
    const Lcd_size size = GetParam().size;
    const std::string file = FRONTPANEL_SOURCE_DIR "/menus/" + std::string(GetParam().script);
    const Script script = parse_script(file, read_input_file(file));
    const Loaded_panel loaded =
        load_panel(FRONTPANEL_SOURCE_DIR "/menus/demo.json", Cards::ON, size.columns);
    const Curl_home curl_home;
    Panel_options options;
    options.size = size;
    options.encoder = loaded.menu->encoder_settings();
    options.encoder->acceleration = false;
    Panel panel(*loaded.menu, options);
    Simulated_script_device device(loaded.device->memory(), loaded.device->cards(),
                                   loaded.menu->parameters());
    Compared_display display(size);
    std::ostringstream unseen;
    Script_player player(panel, device, display, unseen, unseen);
    player.play(script);
    EXPECT_GE(display.frames(), 30);
    // Whole lines each time would take more.
    const int line = size.columns + static_cast<int>(std::string("\x1B[Lx0y0;").size());
    EXPECT_LT(display.bytes(), static_cast<size_t>(display.frames() * size.rows * line));
}

std::string name_of(const testing::TestParamInfo<Tour>& info) {
    std::string name = info.param.script + size_text(info.param.size);
    for (char& letter : name) {
        letter = letter == '.' || letter == '-' ? '_' : letter;
    }
    return name;
}

std::vector<Tour> tours() {
    std::vector<Tour> all;
    for (const char* const script : {"tour.script", "tour-home.script", "tour-cards.script"}) {
        for (const Lcd_size size : {Lcd_size{16, 2}, {20, 2}, {20, 4}, {40, 4}}) {
            all.push_back({script, size});
        }
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, Charlcd_tour, testing::ValuesIn(tours()), name_of);

}  // namespace
}  // namespace frontpanel
