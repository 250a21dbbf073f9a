// The results of a menu's rules if the device held other values, so that values can be checked before they are written.
// The current suggestions do not change.
//
// A rule sees the proposed values, with one exception: for its entry's own parameter it sees the device's value, as
// while a person edits the entry. In a warning `value` is the proposed value.
#ifndef FRONTPANEL_BINDING_RULE_VERDICT_H
#define FRONTPANEL_BINDING_RULE_VERDICT_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_data/binding.h>

namespace frontpanel {

struct Device_variable {
    uint32_t pid;
    uint32_t varidx;
};
inline bool operator<(const Device_variable& left, const Device_variable& right) {
    return std::pair(left.pid, left.varidx) < std::pair(right.pid, right.varidx);
}
inline bool operator==(const Device_variable& left, const Device_variable& right) {
    return left.pid == right.pid && left.varidx == right.varidx;
}

// Values by the variable that they would be written to; `rt` of each selects number or text.
using Proposed_values = std::map<Device_variable, return_s>;

// The results of one entry's rules. A kind is empty when none of its rules holds, or when one of them fails.
struct Rule_verdict {
    using Ranges = std::vector<std::pair<int32_t, int32_t>>;  // both ends inclusive, sorted

    std::optional<bool> is_visible;
    std::optional<Ranges> ranges;
    std::optional<Ranges> keys;
    std::optional<Data_entry::Data_access> access;
    std::vector<std::string> warnings;
    int failed_kinds = 0;  // bits of Suggestion_kind: the kinds with a rule that failed
};

}  // namespace frontpanel

#endif
