// A rule that cannot be evaluated, or whose write the device refuses: nothing follows from it, and somebody should know.
//
// A fault is reported once, by the first evaluation or write that meets it. It stands until an evaluation judges the rule
// again, or for a refused write, until the device takes it or the rule no longer asks for it; after that the next failure
// is a new fault. Menu thread only.
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

// Where the rules of an entry stand in a file, for the texts of their faults.
struct Rule_places {
    struct Position {
        uint32_t line;  // from 1
        uint32_t column;
    };

    std::shared_ptr<const std::string> file;  // the name
    std::vector<Position> rules;  // of each, in the order of the entry's lists and their rules
    // Whether the positions are those of the rules themselves. Otherwise all of them are that of the text that holds
    // the rules, and a fault names the line within it.
    bool is_exact = true;
};

struct Rule_fault {
    enum class Cause {
        RULE,    // what the rule says cannot be done: a division by zero, a text that is too long
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

    // Whether it is news for a person at the panel: a device that cannot be read shows that by its values.
    bool is_notable() const { return cause != Cause::DEVICE; }
    // On one line: "menu.json:3:17: Gain: visible if 10 / [z] > 1: division by zero".
    std::string text() const;
};

// Called while an entry is being refreshed: it may keep and show the fault, but must not reach into the menu.
using Fault_listener = std::function<void(const Rule_fault&)>;

}  // namespace frontpanel

#endif
