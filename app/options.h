// The command line of the panel application, and the configuration file that it names.
#ifndef FRONTPANEL_APP_OPTIONS_H
#define FRONTPANEL_APP_OPTIONS_H

#include <cstdint>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

#include <frontpanel_display/lcd.h>
#include <frontpanel_displays/character_rom.h>
#include <frontpanel_displays/display_table.h>
#include <frontpanel_displays/key_map.h>
#include <frontpanel_displays/led_folders.h>

namespace frontpanel {

// Exit statuses of the application.
inline constexpr int EXIT_PLAYED = 0;      // all went well
inline constexpr int EXIT_DIFFERENCE = 1;  // the script's expectations were not met
inline constexpr int EXIT_EXHAUSTED = 1;   // memory, threads or another resource ran out
inline constexpr int EXIT_BAD_INPUT = 2;   // an option, the menu or the script is wrong

// What is said when standard output takes no more.
inline constexpr const char* OUTPUT_FAILED = "standard output cannot be written";

struct Options {
    std::string config;      // file with further options; empty: none was named
    std::string menu;        // file; the shipped menu unless another is named
    std::string script;      // file; empty: none was named
    std::string log;         // file; empty: the default place
    std::string state;       // file with the device's values; empty: they are not kept
    std::string screenshot;  // file for a picture; empty: the panel is shown instead
    Lcd_size size;
    bool has_size = false;  // `size` was named
    Display_choice display;
    const Character_rom* rom = &Character_rom::a00();  // of a display of the kernel
    Key_map keys = usual_keys();                       // of a display server
    Key_map input_keys;                                // of input devices; empty: the usual ones
    std::vector<std::string> inputs;                   // paths or names of input devices
    Led_map leds;                                      // of the board
    int time_out = 300;            // seconds without a key until the panel rests; 0 for never
    std::string pin_file;          // empty: the panel does not lock
    bool no_acceleration = false;  // of the encoder, whatever the menu says
    uint32_t debug = 0;            // mask of the library's diagnostics
    std::string dump;              // only print the menu: "table" or "json"; empty for no
    bool graph = false;            // only print the menu as a graph
    std::string explain;           // the entry to explain; empty for none
    bool still = false;            // nothing of the simulated device moves by itself
    bool simulate = false;         // the simulator takes the place of all drivers
    bool probe = false;            // only read every parameter that lives at a driver
    bool check = false;            // only check the menu, and the script if one is named
};

// The options, of the command line and then of the file that it names with `--config`, or the status to exit with: after
// the help or the version was printed to `out`, or one line that reports mistakes, and a failure of `out`, to `errors`.
std::variant<Options, int> parse_options(int argc, const char* const* argv, std::ostream& out,
                                         std::ostream& errors);

}  // namespace frontpanel

#endif
