#include <algorithm>
#include <cctype>

#include "check/checks.h"

namespace frontpanel {
namespace {

// "slot3" of the pattern "slotn".
bool is_instance_of(const std::string& name, const std::string& pattern) {
    const std::string prefix = pattern.substr(0, pattern.size() - 1);
    return name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
           std::isdigit(static_cast<unsigned char>(name[prefix.size()])) != 0;
}

}  // namespace

void check_options(const Built_menu& built, Problems& problems) {
    const auto& used = built.options.used();
    for (const auto& [name, place] : built.options.places()) {
        const bool is_pattern = name.find('n') != std::string::npos;
        const bool has_instance =
            std::any_of(used.begin(), used.end(), [&pattern = name](const std::string& option) {
                return is_instance_of(option, pattern);
            });
        if (is_pattern && !has_instance) {
            problems.warn(
                place,
                "the letter 'n' makes this option a pattern in which 'n' stands for a number");
        }
    }
}

}  // namespace frontpanel
