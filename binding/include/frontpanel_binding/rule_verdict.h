// What the rules of a menu would say if the device held other values: so that values can be judged before they are
// written. Nothing of it changes what is suggested now.
//
// A rule sees the values that are proposed, with one exception: of its entry's own parameter it sees what the device
// holds, as it does while a person edits the entry; `value` of a warning is the proposed one.
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

// Values by what they would be written to; `rt` of each selects number or text.
using Proposed_values = std::map<Device_variable, return_s>;

// What the rules of one entry say. A kind without a rule that holds, and a kind of which a rule fails, is empty.
struct Rule_verdict {
    using Ranges = std::vector<std::pair<int32_t, int32_t>>;  // both ends inclusive, sorted

    std::optional<bool> is_visible;
    std::optional<Ranges> ranges;
    std::optional<Ranges> keys;
    std::optional<Data_entry::Data_access> access;
    std::vector<std::string> warnings;
    int failed_kinds = 0;  // bits of Suggestion_kind: of which a rule failed
};

}  // namespace frontpanel

#endif
