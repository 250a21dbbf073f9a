// A rule that cannot be evaluated, or whose write the device refuses. It has no effect then, so the fault is reported.
//
// A fault is reported once, by the first evaluation or write that fails. It remains until an evaluation of the rule
// succeeds; a refused write remains until the device accepts it or the rule no longer asks for it. The next failure
// after that is a new fault. Menu thread only.
#ifndef FRONTPANEL_BINDING_RULE_FAULT_H
#define FRONTPANEL_BINDING_RULE_FAULT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <frontpanel_data/binding.h>

namespace frontpanel {

// The places of an entry's rules in a file, for the texts of their faults.
struct Rule_places {
    struct Position {
        uint32_t line;  // from 1
        uint32_t column;
    };

    std::shared_ptr<const std::string> file;  // the name
    std::vector<Position> rules;  // of each, in the order of the entry's lists and their rules
    // Whether each position is that of the rule itself. Otherwise every position is that of the text with all rules,
    // and a fault also names the line within that text.
    bool is_exact = true;
};

struct Rule_fault {
    enum class Cause {
        RULE,    // the rule cannot be evaluated: a division by zero, a text that is too long
        DEVICE,  // a parameter cannot be read; the rule is all right
        WRITE    // the device refuses what the rule writes
    };

    const Data_entry* entry;  // whose rule it is; null for an engine without entry
    std::string name;         // of the entry
    std::string place;        // "menu.json:3:17"; empty for an engine without places
    std::size_t rule;         // from 0, in the order of the entry's lists and their rules
    std::string source;       // "visible if 10 / [z] > 1", at most about 100 characters
    std::string reason;       // "division by zero"
    Cause cause;

    // Whether the display reports it. A device that cannot be read already shows by its values.
    bool is_notable() const { return cause != Cause::DEVICE; }
    // On one line: "menu.json:3:17: Gain: visible if 10 / [z] > 1: division by zero".
    std::string text() const;
};

// Called while an entry is being refreshed: it may keep and show the fault, but must not reach into the menu.
using Fault_listener = std::function<void(const Rule_fault&)>;

}  // namespace frontpanel

#endif
