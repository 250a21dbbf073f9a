#include "file/toggle.h"

#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <cctype>

namespace frontpanel {
namespace {

bool is_name_part(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

struct Name {
    std::string text;
    bool is_assigned;
};

// Numbers are passed over with their exponents, and functions by their parenthesis.
std::vector<Name> names_of(const std::string& expression) {
    std::vector<Name> names;
    for (size_t at = 0; at < expression.size();) {
        const size_t start = at;
        while (at < expression.size() && is_name_part(expression[at])) {
            ++at;
        }
        if (at == start) {
            ++at;
            continue;
        }
        const size_t next = std::min(expression.find_first_not_of(" \t\n", at), expression.size());
        const std::string rest = expression.substr(next, 2);
        const bool is_number = std::isdigit(static_cast<unsigned char>(expression[start])) != 0 ||
                               (start > 0 && expression[start - 1] == '.');
        if (!is_number && rest.substr(0, 1) != "(") {
            const bool is_compound = rest.size() == 2 && rest[1] == '=' &&
                                     std::string("+-*/").find(rest[0]) != std::string::npos;
            const bool is_plain = rest.substr(0, 1) == "=" && rest != "==";
            names.push_back({expression.substr(start, at - start), is_compound || is_plain});
        }
    }
    return names;
}

// A comma within parentheses stands between arguments.
std::vector<std::string> statements_of(const std::string& expression) {
    std::vector<std::string> statements(1);
    int depth = 0;
    for (const char c : expression) {
        depth += c == '(' ? 1 : (c == ')' ? -1 : 0);
        if (c == ';' || (c == ',' && depth == 0)) {
            statements.emplace_back();
        } else {
            statements.back() += c;
        }
    }
    const auto is_empty = [](const std::string& statement) {
        return statement.find_first_not_of(" \t\n") == std::string::npos;
    };
    statements.erase(std::remove_if(statements.begin(), statements.end(), is_empty),
                     statements.end());
    return statements;
}

bool assigns_something(const std::string& expression) {
    const std::vector<Name> names = names_of(expression);
    return std::any_of(names.begin(), names.end(),
                       [](const Name& name) { return name.is_assigned; });
}

// Of several statements only what they assign counts: a condition beside them would be asked in vain.
void check_statements(const std::string& plain) {
    const std::vector<std::string> statements = statements_of(plain);
    if (statements.size() > 1 &&
        !std::all_of(statements.begin(), statements.end(), assigns_something)) {
        throw Toggle_error(0, "only one condition counts: join conditions by && or ||");
    }
}

std::string address_of(const Parameter& parameter) {
    std::string address = std::to_string(parameter.pid);
    for (uint32_t level = 0; level < parameter.index.m_index_num; ++level) {
        address += "." + std::to_string(parameter.index.m_index[level]);
    }
    // A value stands with its sign, which '!' refuses and '**' binds before.
    return parameter.min < 0 ? "([" + address + "])" : "[" + address + "]";
}

// The text with something else for each of its brackets.
template <typename Replace>
std::string with_brackets(const std::string& text, Replace replace) {
    std::string result;
    size_t done = 0;
    for (size_t open = text.find('['); open != std::string::npos; open = text.find('[', done)) {
        const size_t close = text.find(']', open);
        if (close == std::string::npos) {
            throw Toggle_error(open, "no ']' closes this '['");
        }
        result +=
            text.substr(done, open - done) + replace(open, text.substr(open + 1, close - open - 1));
        done = close + 1;
    }
    return result + text.substr(done);
}

const Parameter& number_of(const Parameter* found, size_t offset, const std::string& name) {
    if (found == nullptr) {
        throw Toggle_error(offset, "the device has no parameter \"" + name + "\"");
    }
    if (found->type != INTEGER) {
        throw Toggle_error(offset, "parameter \"" + name + "\" is of another type");
    }
    return *found;
}

bool can_be_evaluated(const std::string& expression, int Parameter::*bound,
                      const std::vector<const Parameter*>& parameters) {
    size_t next = 0;
    std::string with_values = with_brackets(expression, [&](size_t, const std::string&) {
        return std::to_string(parameters[next++]->*bound);
    });
    return evaluateExpression(with_values.data()) == 0;
}

// An expression may have no value for some numbers, as in a division, but must have it for others.
void check(const Toggle& toggle) {
    if (!can_be_evaluated(toggle.expression, &Parameter::min, toggle.parameters) &&
        !can_be_evaluated(toggle.expression, &Parameter::max, toggle.parameters)) {
        throw Toggle_error(0, "not a condition");
    }
}

}  // namespace

std::vector<std::string> variables_of(const std::string& expression) {
    std::vector<std::string> variables;
    for (const Name& name : names_of(expression)) {
        variables.push_back(name.text);
    }
    return variables;
}

Toggle translate_toggle(const std::string& text,
                        const std::function<const Parameter*(const std::string&)>& find) {
    Toggle toggle;
    if (text.find_first_not_of(' ') == std::string::npos) {
        return toggle;
    }
    const std::string plain =
        with_brackets(text, [](size_t, const std::string&) { return std::string("0"); });
    const std::vector<Name> names = names_of(plain);
    const auto is_assigned = [](const Name& name) { return name.is_assigned; };
    const auto is_result = [](const Name& name) {
        return name.is_assigned && name.text == TOGGLE_RESULT;
    };
    const auto sorts_first = [](const Name& name) { return name.text < TOGGLE_RESULT; };
    if (std::any_of(names.begin(), names.end(), sorts_first)) {
        throw Toggle_error(0, "a name sorts before \"a\", in which toggles yield their result");
    }
    const bool assigns = std::any_of(names.begin(), names.end(), is_assigned);
    if (assigns && std::none_of(names.begin(), names.end(), is_result)) {
        throw Toggle_error(0, "a toggle yields its result in \"a\": write the condition alone");
    }
    check_statements(plain);
    toggle.expression = (assigns ? "" : TOGGLE_RESULT + std::string("=")) +
                        with_brackets(text, [&](size_t offset, const std::string& name) {
                            const Parameter& found = number_of(find(name), offset, name);
                            toggle.parameters.push_back(&found);
                            return address_of(found);
                        });
    check(toggle);
    return toggle;
}

}  // namespace frontpanel
