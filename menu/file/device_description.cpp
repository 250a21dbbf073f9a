#include "file/device_description.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "file/item_members.h"

namespace frontpanel {
namespace {

constexpr size_t LONGEST_PARAMETER_NAME = 63;

bool is_bracket_or_quote(char character) {
    return character == '[' || character == ']' || character == '"' || character == '{' ||
           character == '}';
}

// The first member that only a simulated device has.
std::optional<Json_value> simulation_in(const Json_value& device) {
    for (const Json_value& parameter : list_or_none(device, "parameters")) {
        const auto value = parameter.is_object() ? parameter.find("value") : std::nullopt;
        if (value) {
            return value;
        }
    }
    const auto products = device.find("products");
    return products ? products : device.find("cards");
}

}  // namespace

void Device_description::load(const Json_value& device) {
    device.expect_members({"drivers", "parameters", "products", "cards"});
    m_problems.attempt([&] {
        const std::vector<Json_value> parameters = device.member("parameters").items();
        m_table.reserve(parameters.size());
        for (const Json_value& parameter : parameters) {
            m_problems.attempt([&] { load_parameter(parameter); });
        }
    });
    if (!m_loading.simulator) {
        m_problems.attempt([&] { warn_of_simulation(device); });
    }
}

void Device_description::warn_of_simulation(const Json_value& device) const {
    if (const auto ignored = simulation_in(device)) {
        ignored->warn(
            "\"value\", \"products\" and \"cards\" describe a simulated device and are ignored");
    }
}

bool Device_description::is_wrong(const Parameter& parameter) const {
    return m_wrong_parameters.count({parameter.pid, varidx_of(parameter.index)}) > 0;
}

const Parameter* Device_description::parameter(uint32_t pid, const Index_t& index) const {
    const Parameter* const found = m_table.find(pid, index);
    const bool is_known_to_be_wrong = m_wrong_parameters.count({pid, varidx_of(index)}) > 0;
    if (is_known_to_be_wrong || (found == nullptr && m_has_unknown_parameters)) {
        throw Told_already();
    }
    return found;
}

const Parameter* Device_description::parameter(const std::string& name) const {
    const Parameter* const found = m_table.find(name);
    const bool is_known_to_be_wrong =
        m_wrong_names.count(name) > 0 || (found != nullptr && is_wrong(*found));
    if (is_known_to_be_wrong || (found == nullptr && m_has_unknown_parameters)) {
        throw Told_already();
    }
    return found;
}

const Parameter* Device_description::reference(const std::string& text) const {
    const Parameter* const found = is_like_address(text) ? m_table.find_reference(text) : nullptr;
    return found != nullptr && !is_wrong(*found) ? found : parameter(text);
}

std::optional<Json_value> Device_description::start_text(const Parameter& parameter) const {
    const auto found = m_start_texts.find({parameter.pid, varidx_of(parameter.index)});
    return found == m_start_texts.end()
               ? std::nullopt
               : std::optional<Json_value>(Json_value(found->second, m_problems));
}

bool Device_description::has_document(int slot, uint32_t pid, bool is_tree) const {
    const auto& simulator = m_loading.simulator;
    return !simulator || !simulator->has_document || simulator->has_document(slot, pid, is_tree);
}

void Device_description::load_parameter(const Json_value& parameter) {
    Parameter declared{};
    const bool is_known = m_problems.attempt([&] { declared.pid = pid_of(parameter); }) &&
                          m_problems.attempt([&] { declared.index = index_of(parameter); });
    if (!is_known) {
        m_has_unknown_parameters = true;
        throw Told_already();
    }
    const auto name = parameter.find("name");
    const auto text = name && name->is_text() ? std::optional(name->text()) : std::nullopt;
    const bool is_new_name = text && m_table.find(*text) == nullptr;
    const auto note_wrong_name = [&] {
        if (is_new_name) {
            m_wrong_names.insert(*text);
        }
    };
    const std::pair<uint32_t, uint32_t> key(declared.pid, varidx_of(declared.index));
    if (m_table.find(declared.pid, declared.index) != nullptr ||
        m_wrong_parameters.count(key) > 0) {
        note_wrong_name();
        parameter.fail("parameter " + std::to_string(declared.pid) +
                       " with this index is declared twice");
    }
    if (!m_problems.attempt([&] { load_type(parameter, declared, text); })) {
        m_wrong_parameters.insert(key);
        note_wrong_name();
        throw Told_already();
    }
    if (name && !m_problems.attempt([&] { check_name(*name, declared); })) {
        note_wrong_name();
        throw Told_already();
    }
}

// Declares the parameter before its limits are checked, so that rules which name it are checked as well.
void Device_description::load_type(const Json_value& parameter, Parameter& declared,
                                   const std::optional<std::string>& name) {
    const size_t errors = m_problems.error_count();
    declared.type = is_text_parameter(parameter) ? STRING : INTEGER;
    m_table.declare(declared);
    if (name) {
        m_table.declare(*name, declared);
    }
    load_limits(parameter, declared);
    const bool has_wrong_value =
        m_loading.simulator &&
        m_loading.simulator->wrong_parameters.count({declared.pid, varidx_of(declared.index)}) > 0;
    if (m_problems.error_count() > errors || has_wrong_value) {
        throw Told_already();
    }
    m_table.declare(declared);
}

// A name begins with a letter, so that it cannot be taken for an address.
void Device_description::check_name(const Json_value& name, const Parameter& declared) {
    const std::string text = name.text_of_length(1, LONGEST_PARAMETER_NAME);
    if (std::isalpha(static_cast<unsigned char>(text[0])) == 0 ||
        std::any_of(text.begin(), text.end(), is_bracket_or_quote)) {
        name.fail("expected a name that begins with a letter and has none of []\"{}");
    }
    const Parameter* const named = m_table.find(text);
    if (named != m_table.find(declared.pid, declared.index) && !is_wrong(*named)) {
        name.fail("another parameter is named \"" + text + "\"");
    }
    m_wrong_names.erase(text);
}

void Device_description::load_limits(const Json_value& parameter, Parameter& declared) {
    static const std::vector<const char*> OF_A_NUMBER{
        "name", "pid", "index", "type", "description", "source", "min", "max", "value", "moves"};
    static const std::vector<const char*> OF_A_TEXT{"name",        "pid",    "index",  "type",
                                                    "description", "source", "length", "value"};
    if (declared.type == INTEGER) {
        parameter.expect_members(OF_A_NUMBER);
        const Number_limits limits = number_limits_of(parameter, m_problems);
        declared.min = limits.min;
        declared.max = limits.max;
    } else {
        parameter.expect_members(OF_A_TEXT);
        declared.length = text_limit_of(parameter, m_problems);
        const auto value = parameter.find("value");
        if (m_loading.simulator && value && value->is_text()) {
            const Json_node& node = value->node();
            m_start_texts.emplace(
                std::pair(declared.pid, varidx_of(declared.index)),
                Json_node::of_text(node.kind(), m_kept_texts.keep(node.text()), node.mark()));
        }
    }
}

}  // namespace frontpanel
