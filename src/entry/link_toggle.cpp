// Homescreen entries: the names of a toggle expression, the cached values they stand for, and its outcome.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include <frontpanel_data/binding.h>
#include <frontpanel_data/evaluator.h>
#include <frontpanel_data/link_entry.h>

#include "../assertion.h"
#include "../diagnostics.h"

namespace {

constexpr char ALWAYS_OFF[] = "error";

// A bracketed name. Without its closing bracket it reaches to the end of the text.
struct Reference {
    std::size_t begin;  // of the bracket
    std::size_t end;    // behind the closing one
    std::string name;
};

bool find_first(const std::string& expression, Reference& reference) {
    reference.begin = expression.find('[');
    if (reference.begin == std::string::npos) {
        return false;
    }
    const std::size_t close = std::min(expression.find(']', reference.begin), expression.size());
    reference.end = std::min(close + 1, expression.size());
    reference.name = expression.substr(reference.begin + 1, close - reference.begin - 1);
    return true;
}

void replace(std::string& expression, const Reference& reference, const std::string& text) {
    expression.replace(reference.begin, reference.end - reference.begin, text);
}

// What names a parameter: its id and up to two index levels, each as it is written. The third part is all
// that follows the second point.
struct Address {
    std::string varid;
    std::string index[2];
    unsigned int levels;
};

Address split(const std::string& name) {
    Address address = {name, {}, 0};
    std::string* part = &address.varid;
    while (address.levels < 2) {
        const std::size_t point = part->find('.');
        if (point == std::string::npos) {
            break;
        }
        std::string& rest = address.index[address.levels++];
        rest = part->substr(point + 1);
        part->erase(point);
        part = &rest;
    }
    return address;
}

// Reads a decimal number; a text that is none is 0. False for a number that does not fit: cut to size it
// would name another parameter.
template <class Number>
bool read(const std::string& text, Number& number) {
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    number = static_cast<Number>(value);
    return value >= 0 && value <= std::numeric_limits<Number>::max();
}

// False when no parameter can have the address.
bool to_key(const Address& address, var_index_s& key) {
    key = {INTEGER, 0, Index_t{}};
    key.index.m_index_num = address.levels;
    return read(address.varid, key.var) && read(address.index[0], key.index.m_index[0]) &&
           read(address.index[1], key.index.m_index[1]);
}

}  // namespace

int Link_entry::setAsHomescreenEntry(std::string toggle, var_index_map_t* vi, FPData* fp_data) {
    LEAF_LINE(LINK_CREATION, FUNCTION_FIRST, "setAsHomescreenEntry",
              "Link [%s] has become a Homescreen entry.\n",
              link_entry != nullptr ? link_entry->Get_name() : link_name);
    toggle_expression = std::move(toggle);
    vim = vi;
    if (vi != nullptr && fp_data != nullptr) {
        is_homescreen_entry = true;
        createGetRequests(fp_data);
    }
    return 0;
}

bool Link_entry::isHomescreenEntry() {
    return is_homescreen_entry;
}

std::string Link_entry::GetToggleExpression() {
    return toggle_expression;
}

int Link_entry::createGetRequests(FPData* /*fp_data*/) {
    if (!is_homescreen_entry) {
        return 0;
    }
    LEAF_LINE(LINK_VISIBILITY, FUNCTION_FIRST, "createGetRequests",
              "Extracting dependecies for toggle expression\n");
    std::string expression = toggle_expression;
    Reference reference = {};
    while (find_first(expression, reference)) {
        if (!record_key(reference.name)) {
            toggle_expression = ALWAYS_OFF;
            return 0;
        }
        replace(expression, reference, "***");
    }
    return 0;
}

bool Link_entry::record_key(const std::string& name) {
    if (name.empty()) {
        std::fprintf(stderr,
                     "Homescreen ERROR: Entry with name \"%s\" does not have a varid. Will not be "
                     "able to evaluate toggle expression for [%s].\n",
                     name.c_str(), link_name);
        return false;
    }
    const Address address = split(name);
    var_index_s key = {};
    if (!to_key(address, key) || vim == nullptr || vim->find(key) == vim->end()) {
        std::fprintf(stderr,
                     "Homescreen ERROR: Entry with name \"%s\" does not have a varid or index. Is "
                     "it using new HS notation? Will not be able to evaluate toggle expression for "
                     "[%s].\n",
                     name.c_str(), link_name);
        return false;
    }
    homescreen_keys[name] = key;
    LEAF_LINE(LINK_VISIBILITY, FUNCTION_FIRST, "createGetRequests",
              "homescreen_key = [%d].%d.%d@%s num_index_levels[%d]\n", static_cast<int>(key.var),
              key.index.m_index[0], key.index.m_index[1], "i",
              static_cast<int>(key.index.m_index_num));
    return true;
}

int Link_entry::GetGetRequest(std::string name, void* buffer, int length) {
    const std::size_t size = static_cast<std::size_t>(std::max(length, 0));
    FRONTPANEL_ASSERT(buffer || size == 0, "buffer");
    if (size > 0) {
        std::memset(buffer, 0, size);
    }
    const var_index_s& key = homescreen_keys[std::move(name)];
    if (vim == nullptr || vim->find(key) == vim->end()) {
        std::printf("[NOT FOUND]\n");
        return -1;
    }
    if (key.rt != INTEGER) {
        std::printf("[NOT INTEGER RETURN]\n");
        return -1;
    }
    const int32_t value = vim->find(key)->second.getInt();
    if (size > 0) {
        std::memcpy(buffer, &value, std::min(size, sizeof value));
    }
    return 0;
}

// Puts values in the place of names; false when one has none. The values are put into the text as they are:
// it is the menu's and no format of printf.
bool Link_entry::put_in_values(std::string& expression) {
    int32_t value = -1;
    Reference reference = {};
    while (find_first(expression, reference)) {
        if (GetGetRequest(reference.name, &value, sizeof value) != 0) {
            return false;
        }
        replace(expression, reference, std::to_string(value));
    }
    return true;
}

int Link_entry::CheckToggleState() {
    if (toggle_expression.empty()) {
        return 1;
    }
    std::string expression = toggle_expression;
    if (expression == ALWAYS_OFF || !put_in_values(expression)) {
        return 0;
    }
    // The line is left open, so that the evaluator's report of a failure follows the expression.
    LEAF_LINE(LINK_VISIBILITY, FUNCTION_FIRST, "CheckToggleState",
              "entry[%s] toggle expression [%s] -> [%s]", link_name, toggle_expression.c_str(),
              expression.c_str());
    if (evaluateExpression(expression.data()) != 0) {
        LEAF_LINE(LINK_VISIBILITY, NONE, "CheckToggleState", "\n");
        std::fprintf(stderr, "Bad logical expression for home entry \"%s\"! expression[%s]\n",
                     link_name, expression.c_str());
        return 0;
    }
    // The first variable by name, whichever expression made it: toggles are written for that.
    return variable[0].value != 0.0 ? 1 : 0;
}
