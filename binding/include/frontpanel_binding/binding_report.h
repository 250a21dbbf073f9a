// Reports of a menu's engines about their rules: the reasons of a suggestion, the bindings that affect each other in
// circles, and whether a cascade of writes settled.
#ifndef FRONTPANEL_BINDING_BINDING_REPORT_H
#define FRONTPANEL_BINDING_BINDING_REPORT_H

#include <cstddef>
#include <string>
#include <vector>

#include <frontpanel_data/binding.h>

namespace frontpanel {

// One rule as it was just evaluated.
struct Rule_explanation {
    struct Seen {
        std::string name;   // "[gain]", "value", "has_option(\"gps\")"
        std::string value;  // 3, "text" in quotes, or "unreadable"
    };

    enum class Outcome { HOLDS, DOES_NOT_HOLD, FAILED };

    Suggestion_kind kind;
    int line;            // in its source text, from 1
    std::string source;  // as written, on one line
    std::vector<Seen> seen;
    Outcome outcome;
    std::string result;  // what a rule that holds asks for ("10..40"), or why it failed
    // Place and reason of the fault that remains, "menu.json:3:17: division by zero"; empty for none, and when only the
    // device cannot be read.
    std::string fault = {};
};

// Why an entry is hidden, limited or read-only.
struct Binding_explanation {
    std::string entry;
    std::vector<Rule_explanation> rules;
    std::vector<std::string> suggestions;  // "range 10..40", one line each

    // The report as lines to read, each with a line end.
    std::string text() const;
};

// Parameters that affect each other in a circle.
struct Binding_cycle {
    enum class Kind {
        WRITES,  // a rule writes a parameter on which it depends: may never settle
        LIMITS   // only ranges and keys that limit each other: usual for a pair of bounds
    };

    Kind kind;
    std::vector<std::string> path;  // the first name again at the end: "Gain", "Level", "Gain"
    // The entry and the line of the rule that leads from each name to the next; one fewer than `path`.
    struct Step {
        Data_entry* entry;  // not owned; null for an engine without entry
        int line;
    };
    std::vector<Step> steps;

    std::string text() const;  // "Gain -> Level -> Gain"
};

// How a round of refreshes ended.
struct Binding_settlement {
    bool at_rest = true;        // false: some entries affect each other without end
    bool is_complete = true;    // false: entries wait for the next call
    std::size_t refreshes = 0;  // made in this call
    std::string path;           // when not at rest, the circle: "Gain -> Level -> Gain"
};

}  // namespace frontpanel

#endif
