// Product options: which options a product has, and which entries they show.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <utility>

#include <frontpanel_data/entry.h>

#include "../diagnostics.h"

namespace {

// In an option name the letter stands for a number, wherever it occurs.
constexpr char NUMBER_LETTER = 'n';

bool is_pattern(const std::string& option) {
    return option.find(NUMBER_LETTER) != std::string::npos;
}

int decimal(const char* text) {
    const long value = std::strtol(text, nullptr, 10);
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

// The part of `option` behind the real option's name without its last character; null when the name does
// not occur in it.
const char* number_text(const std::string& option, const std::string& real_option) {
    const std::string::size_type prefix_length = real_option.size() - 1;
    const std::string::size_type position = option.find(real_option.c_str(), 0, prefix_length);
    return position == std::string::npos ? nullptr : option.c_str() + position + prefix_length;
}

}  // namespace

int Data_entry::setProductOptions(std::map<std::string, unsigned int> options) {
    real_option_map = std::move(options);
    return 0;
}

std::vector<std::string> Data_entry::Get_options() {
    return orOptions;
}

is_static_value_s Data_entry::isOptionStatic(std::string option, bool /*n_intact*/) {
    const is_static_value_s undecided = {-1, 0, 0};
    if (real_option_map.empty()) {
        LEAF_LINE(OPTIONS, FUNCTION_FIRST, "isOptionStatic", "Size of real_option_map is zero. \n");
        return undecided;
    }
    const auto known = real_option_map.find(option);
    if (known != real_option_map.end()) {
        LEAF_LINE(OPTIONS, NONE, "isOptionStatic", "Option is in map.");
        const int value = static_cast<int>(known->second);
        if (is_pattern(option)) {
            LEAF_LINE(OPTIONS, FUNCTION_FIRST, "isOptionStatic",
                      "Dynamic option was found, with n intact.[%s] value=[%d]\n", option.c_str(),
                      value);
            return {0, value, value};
        }
        LEAF_LINE(OPTIONS, FUNCTION_FIRST, "isOptionStatic",
                  "Static option was found. [%s] value=[%d]\n", option.c_str(), value);
        return {1, value, value};
    }
    for (const auto& [real_option, real_value] : real_option_map) {
        const int value = static_cast<int>(real_value);
        LEAF_LINE(OPTIONS, FUNCTION_FIRST, "isOptionStatic",
                  "Compare [%s] with Real Option:[%s] that has Value:[%d] \n", option.c_str(),
                  real_option.c_str(), value);
        const char* const number =
            is_pattern(real_option) ? number_text(option, real_option) : nullptr;
        if (number != nullptr) {
            LEAF_LINE(OPTIONS, FUNCTION_FIRST, "isOptionStatic",
                      "Dynamic option was found, with n replaced. option[%s] "
                      "extracted_value=[%s][%d]\n",
                      option.c_str(), number, decimal(number));
            return {0, value, decimal(number)};
        }
    }
    LEAF_LINE(OPTIONS, FUNCTION_FIRST, "isOptionStatic",
              "Could not decide if option [%s] was static or dynamic. Did not find it in option "
              "map.\n",
              option.c_str());
    return undecided;
}

int Data_entry::setOrOptions(std::vector<std::string> options) {
    orOptions = std::move(options);
    for (const std::string& option : orOptions) {
        LEAF_LINE(GENERAL, TAB, "setOrOptions", "Options for [%s] = [%s]\n", Get_name(),
                  option.c_str());
    }
    cached_option_vis = orOptions.empty() ? 1 : -1;
    for (const std::string& option : orOptions) {
        LEAF_LINE(GENERAL, TAB, "setOrOptions", "Options for [%s] = [%s]\n", Get_name(),
                  option.c_str());
        if (option_holds(option)) {
            cached_option_vis = 1;
            LEAF_LINE(GENERAL, TWO_TABS, "setOrOptions", "Options [%s] is DEFINED.\n",
                      option.c_str());
            break;
        }
    }
    return 0;
}

bool Data_entry::option_holds(const std::string& option) {
    const is_static_value_s found = isOptionStatic(option, false);
    if (found.realValue == 0) {
        return false;
    }
    if (found.isStatic != 0) {
        return true;
    }
    return found.dynamicValue <= found.realValue &&
           (Get_entry_type() != NODE || instance_within(found.realValue));
}

// A node that stands for one of several instances is shown only if the product has that many.
bool Data_entry::instance_within(int limit) const {
    if (m_index == nullptr) {
        return true;
    }
    if (m_index->m_index_num == 1) {
        return m_index->m_index[0] <= limit;
    }
    if (m_index->m_index_num == 2 && (m_NodeLevel == 1 || m_NodeLevel == 2)) {
        return m_index->m_index[m_NodeLevel - 1] <= limit;
    }
    return true;
}
