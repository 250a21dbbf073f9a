// Which options of an enumerated entry are visible: those that the product has and the binding allows.
#include <frontpanel_data/binding.h>
#include <frontpanel_data/enum_entry.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "../diagnostics.h"
#include "keys_by_position.h"
#include "option_test.h"

namespace {

// A fifth of the code of std::sort, as fast for a few keys, and still O(n log n) for many.
void sort(std::vector<int>& keys) {
    std::make_heap(keys.begin(), keys.end());
    std::sort_heap(keys.begin(), keys.end());
}

}  // namespace

void Enum_entry::Set_control_options(std::map<int, std::vector<std::string>> options) {
    control_options = std::move(options);
    m_reported_lists_only = false;
}

// Empty lists that were installed count: they allow no key. Those that only a report has added do not: a
// report must not hide what the binding allows.
bool Enum_entry::has_control_options() const {
    return !control_options.empty() &&
           !(m_reported_lists_only &&
             std::all_of(control_options.begin(), control_options.end(),
                         [](const auto& row) { return row.second.empty(); }));
}

ControlsT Enum_entry::optionControls() {
    ControlsT keys;
    if (control_options.empty()) {
        return keys;
    }
    for (int key = 0; key < m_size_enum; ++key) {
        LEAF_LINE(GENERAL, TAB, "optionControls", "Enum Control Option: [%d] max_map_size=[%d]\n",
                  key, max_map_size);
        if (is_key_shown(key, control_options[key])) {
            keys.push_back(key);
        }
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "optionControls", "Size of option controls [%d]\n",
              static_cast<int>(keys.size()));
    return keys;
}

bool Enum_entry::is_key_shown(int key, const std::vector<std::string>& options) {
    using option_test::Verdict;
    for (const std::string& option : options) {
        LEAF_LINE(GENERAL, TWO_TABS, "optionControls", "Option: [%s]\n", option.c_str());
        switch (option_test::judge(isOptionStatic(option, false))) {
            case Verdict::UNDECIDED:
                LEAF_LINE(GENERAL, NONE, "optionControls",
                          "Control number [%d], [%s], MAY not appear (since this option was not "
                          "processed) for enum [%s]\n",
                          key, option.c_str(), Get_name());
                break;
            case Verdict::STATIC_HOLDS:
                LEAF_LINE(GENERAL, TAB, "optionControls",
                          "option [%s] is static and will be visible\n", option.c_str());
                return true;
            case Verdict::DYNAMIC_HOLDS:
                // Neither a blank nor a line end, here and below. Intended: log readers match the text.
                LEAF_LINE(GENERAL, TAB, "optionControls",
                          "option [%s] is dynamicand will be visible.", option.c_str());
                return true;
            case Verdict::DYNAMIC_FAILS:
                LEAF_LINE(GENERAL, TAB, "optionControls",
                          "option [%s] is dynamic, but  will not be visible.", option.c_str());
                break;
            case Verdict::VALUE_ZERO:
            case Verdict::UNKNOWN:
                break;
        }
    }
    return false;
}

ControlsT Enum_entry::bindingControls(bool& use_binding) {
    if (binding == nullptr) {
        use_binding = false;
        return cached_binding_controls;
    }
    // An updated range suggestion announces the keys, which are then read as what they are. Intended:
    // binding engines mark both with the one kind.
    if (binding->suggestionUpdated(SUGGESTION_RANGE)) {
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "bindingControls", "suggestionUpdated\n");
        std::vector<ControlsT> suggested;
        binding->getSuggestion(SUGGESTION_KEYS, &suggested);
        cached_binding_controls = suggested.empty() ? ControlsT() : std::move(suggested.front());
        binding->clearSuggestion(SUGGESTION_RANGE);
    }
    use_binding = binding->offersSuggestion(SUGGESTION_RANGE);
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "bindingControls", "Size of binding controls [%d]\n",
              static_cast<int>(cached_binding_controls.size()));
    return cached_binding_controls;
}

ControlsT Enum_entry::commonControls(std::vector<int> op, bool use_op, std::vector<int> bind,
                                     bool use_bind) {
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "commonControls", "op.size()[%d] bind.size()[%d]\n",
              static_cast<int>(op.size()), static_cast<int>(bind.size()));
    sort(op);
    sort(bind);
    ControlsT common;
    if (use_op && use_bind) {
        std::set_intersection(op.begin(), op.end(), bind.begin(), bind.end(),
                              std::back_inserter(common));
    } else if (use_op) {
        common = std::move(op);
    } else if (use_bind) {
        common = std::move(bind);
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "commonControls", "Size of common controls  [%d]\n",
              static_cast<int>(common.size()));
    return common;
}

int Enum_entry::updateControlOptionMap() {
    const ControlsT op = optionControls();
    bool use_binding = false;
    const ControlsT bind = bindingControls(use_binding);
    if (op.empty() && bind.empty()) {
        show_all_options();
        return 0;
    }
    map_enum_to_options.clear();
    max_map_size = 0;
    const bool use_op = has_control_options();
    const ControlsT common = commonControls(op, use_op, bind, use_binding);
    number_options(common, common.empty() && !use_op && !use_binding);
    int current_key = 0;
    Get_key_enum(&current_key, sizeof current_key);
    minMaxSize(&m_min, &m_max, &m_size);
    m_size_visible = m_size;
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "updateControlOptionMap", "m_min[%d] m_max[%d] m_size[%d]\n",
              m_min, m_max, m_size);
    for (const auto& [key, position] : map_enum_to_options) {
        LEAF_LINE(GENERAL, TAB, "updateControlOptionMap", "map_enum_to_options [%d]=[%d]\n", key,
                  position);
    }
    return 0;
}

// Bounds and size are those of the map before this call, and its other keys stay. Intended: an entry whose
// card changes its options keeps what it counted until it is asked again.
void Enum_entry::show_all_options() {
    minMaxSize(&m_min, &m_max, &m_size);
    for (int key = 0; key < m_size_enum; ++key) {
        map_enum_to_options[key] = key;
    }
    index_positions();
}

void Enum_entry::number_options(const ControlsT& common, bool all_visible) {
    for (int key = 0; key < m_size_enum; ++key) {
        if (all_visible || std::binary_search(common.begin(), common.end(), key)) {
            map_enum_to_options[key] = max_map_size;
            ++max_map_size;
        } else if (!common.empty()) {
            map_enum_to_options[key] = -1;
        }
    }
    index_positions();
}
