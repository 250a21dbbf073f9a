#include <cctype>
#include <set>
#include <string>

#include "check/checks.h"

namespace frontpanel {
namespace {

// Such as "slot3" of the pattern "slotn". The names with a digit there stand side by side.
bool has_instance(const std::set<std::string>& names, const std::string& pattern) {
    const std::string prefix = pattern.substr(0, pattern.size() - 1);
    const auto first = names.lower_bound(prefix + "0");
    return first != names.end() && first->compare(0, prefix.size(), prefix) == 0 &&
           std::isdigit(static_cast<unsigned char>((*first)[prefix.size()])) != 0;
}

}  // namespace

void check_options(const Built_menu& built, Problems& problems) {
    const auto& used = built.options.used();
    for (const auto& [name, place] : built.options.places()) {
        const bool is_pattern = name.find('n') != std::string::npos;
        if (is_pattern && !has_instance(used, name)) {
            problems.warn(
                place,
                "the letter 'n' makes this option a pattern in which 'n' stands for a number");
        }
    }
}

}  // namespace frontpanel
