// Checks and writes every value of a person to the device: from an editor, a preset, a script's keys, or a client.
//
// A value passes when its parameter can hold it and one of the parameter's items would accept it: a number in its
// allowed ranges, an option that the product has and the rules offer, a text that is short enough, an address, a time.
// The item must not be read-only, by the menu file or by a rule. A parameter without an item has only its own limits.
// The user is asked about warnings before. Writes of rules and of the library do not pass the gate.
//
// Several values are checked together, with the writes of rules that would follow, and are written all or not at all.
// Menu thread only; not from within a refresh.
#ifndef FRONTPANEL_MENU_WRITE_GATE_H
#define FRONTPANEL_MENU_WRITE_GATE_H

#include <optional>
#include <string>
#include <vector>

#include <frontpanel_binding/binding_report.h>
#include <frontpanel_binding/rule_verdict.h>
#include <frontpanel_data/data_entry.h>

namespace frontpanel {

class Menu;
struct Parameter;

// A value for a parameter. `rt` of the value selects number or text.
struct Wanted_value {
    Device_variable variable;
    return_s value;
};

class Write_gate {
public:
    // Whether values of hidden items are refused. A preset sets the whole device, including what the menu does not show
    // now; a person or a client changes what is shown.
    enum class Hidden_items { ACCEPTED, REFUSED };

    // Which value is not written, and why.
    struct Refusal {
        std::string name;    // of the item, or of the parameter
        std::string value;   // as the item shows it
        std::string reason;  // "read only", "allowed: 0..80, 120..240"

        std::string text() const;  // "Gain 90: allowed: 0..80"
    };

    struct Verdict {
        std::optional<Refusal> refusal;
        std::vector<std::string> warnings;  // each text once; empty with a refusal
    };

    enum class Result {
        WRITTEN,
        REFUSED,  // nothing was written
        WARNED,   // nothing was written: some of `warnings` were not accepted
        FAILED    // the device refused a value, or rules changed it; old values are written back
    };

    struct Outcome {
        Result result = Result::WRITTEN;
        Refusal refusal;                    // of REFUSED and FAILED
        std::vector<std::string> warnings;  // of WARNED
        // With FAILED: the names of those that could not be written back, since the device refused that as well.
        std::vector<std::string> not_put_back;
        Binding_settlement settlement;  // of the rules, after values were written
    };

    // The menu outlives the gate.
    explicit Write_gate(Menu& menu) : m_menu(menu) {}

    // Whether the values may be written, all together. Writes nothing.
    Verdict check(const std::vector<Wanted_value>& values, Hidden_items hidden) const;
    // Checks the values again, writes those that the device does not hold yet, and settles the rules. A value that a
    // rule overwrites is written once more, as a person would do. `accepted` are the warnings that the person accepted.
    Outcome write(const std::vector<Wanted_value>& values, Hidden_items hidden,
                  const std::vector<std::string>& accepted = {});

    // Checks and commits the value that an editor has stored in an entry. Does not check warnings: the entry raised
    // them when it took the value.
    Outcome commit(Data_entry& entry);
    // Commits the value that the device held before it was edited, whether it is allowed or not. 0 on success.
    int put_back(Data_entry& entry);

private:
    struct Judged;

    std::optional<Refusal> judge(const Wanted_value& wanted, const Proposed_values& foreseen,
                                 Hidden_items hidden, std::vector<std::string>& warnings) const;
    Judged judge(Data_entry& entry, const Wanted_value& wanted, const Proposed_values& foreseen,
                 Hidden_items hidden) const;
    std::string misfit(Data_entry& entry, const return_s& value, const Rule_verdict& verdict) const;
    std::string present_misfit(Data_entry& entry, const return_s& value) const;
    std::string range_misfit(Range_entry& entry, int value, const Rule_verdict& verdict) const;
    std::string why_unreadable(const Device_variable& variable) const;
    bool is_held(const Wanted_value& wanted) const;
    Refusal refusal_of(const Wanted_value& wanted, std::string reason) const;
    Outcome failure(const Wanted_value& wanted, std::string reason) const;
    std::optional<Outcome> write_all(const std::vector<Wanted_value>& values,
                                     Binding_settlement& settlement);

    Menu& m_menu;
};

}  // namespace frontpanel

#endif
