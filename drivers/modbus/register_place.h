// Where a parameter lives at a controller, and what its registers mean.
#ifndef FRONTPANEL_DRIVER_MODBUS_REGISTER_PLACE_H
#define FRONTPANEL_DRIVER_MODBUS_REGISTER_PLACE_H

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_drivers/scale.h>

#include "modbus_settings.h"

namespace frontpanel {

enum class Register_table { HOLDING, INPUT, COIL, DISCRETE };

// Registers or bits that follow one another.
struct Register_range {
    int unit = 1;
    Register_table table = Register_table::HOLDING;
    int first = 0;  // from 0, as requests count
    int count = 1;

    int end() const { return first + count; }
    bool is_bits() const {
        return table == Register_table::COIL || table == Register_table::DISCRETE;
    }
    bool is_writable() const {
        return table == Register_table::HOLDING || table == Register_table::COIL;
    }
    // The most that one request can read.
    int most() const { return is_bits() ? 2000 : 125; }
};

// "holding register", "coil"
const char* noun_of(Register_table table);

struct Register_place {
    Register_range range;
    bool is_low_word_first = false;
    bool is_signed = false;
    // Of the number that the registers hold; bit 0 has the value 1.
    int bit = 0;
    int width = 16;
    Scale scale = {};

    // Whether the registers hold other bits as well.
    bool is_part() const { return !range.is_bits() && width < range.count * 16; }
    // The bits of the number in each register.
    std::vector<std::uint16_t> masks() const;
    // The lowest and highest whole number that fits.
    std::int64_t lowest() const;
    std::int64_t highest() const;
};

std::vector<const char*> register_members();
// Placed_error for what is wrong with a source, whose members are known to be among `register_members`.
Register_place register_place_of(const Json_value& source, const Modbus_settings& settings);

// One word a register or bit, in the order of their addresses.
using Words = std::vector<std::uint16_t>;

// The number of the menu, or why there is none. `words` begins with the first register of the place.
Scaled_number number_in(const Register_place& place, const std::uint16_t* words);
// Puts a number of the menu into `words`, and leaves its other bits. Why it does not fit, or an empty text.
std::string put_number(const Register_place& place, std::int32_t number, Words& words);

}  // namespace frontpanel

#endif
