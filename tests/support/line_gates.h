// Checks under which values of `debug` a diagnostic line shows.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_LINE_GATES_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_LINE_GATES_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/capture.h"

namespace support {

enum class Gate {
    LEAF,    // quiet while 0x4000 is set and 0x8000 is clear
    ENTRY,   // needs 0x4000 or 0x8000
    ALWAYS,  // printed whatever `debug` holds
};

inline bool gate_opens(Gate gate, uint32_t mask, uint32_t value) {
    if (gate == Gate::ALWAYS) {
        return true;
    }
    const bool open = gate == Gate::LEAF ? (value & 0xC000) != 0x4000 : (value & 0xC000) != 0;
    return (value & mask) != 0 && open;
}

// Runs `action`, which can be repeated, under every single bit of `debug` with every combination of the
// two verbosity bits, and expects each of `lines` in its standard output exactly where the mask and the gate
// say.
template <class Action>
void expect_line_gates(const std::vector<std::string>& lines, uint32_t mask, Gate gate,
                       Action&& action) {
    for (int bit = -1; bit < 32; ++bit) {
        for (const uint32_t verbosity : {0x0u, 0x4000u, 0x8000u, 0xC000u}) {
            const uint32_t value = (bit < 0 ? 0 : 1u << bit) | verbosity;
            const std::string out = capture(value, action).out;
            for (const std::string& line : lines) {
                EXPECT_EQ(out.find(line) != std::string::npos, gate_opens(gate, mask, value))
                    << "debug is 0x" << std::hex << value << ", the line is: " << line;
            }
        }
    }
}

template <class Action>
void expect_line_gate(const std::string& line, uint32_t mask, Gate gate, Action&& action) {
    expect_line_gates({line}, mask, gate, action);
}

}  // namespace support

#endif
