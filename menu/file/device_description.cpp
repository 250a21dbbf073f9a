#include "file/device_description.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <optional>
#include <string>

#include <frontpanel_menu/entry_access.h>
#include "file/item_members.h"

namespace frontpanel {
namespace {

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr int LAST_SLOT = Memory_device::SLOT_COUNT - 1;
constexpr int64_t LAST_PRODUCT = std::numeric_limits<prod_id_t>::max();
constexpr int DEEPEST_TREE = 16;
constexpr size_t LONGEST_PARAMETER_NAME = 63;

int slot_of(const Json_value& owner) {
    return static_cast<int>(owner.member("slot").integer(1, LAST_SLOT));
}

// Copies a text that fits with its terminator.
template <size_t SIZE>
void copy_text(const Json_value& text, char (&out)[SIZE]) {
    const std::string value = text.text_of_length(1, SIZE - 1);
    std::copy(value.begin(), value.end(), out);
}

void check_tree(const Json_value& node, int level) {
    node.expect_members({"label", "children"});
    node.member("label").text_of_length(1, LONGEST_TEXT);
    if (level > DEEPEST_TREE) {
        node.fail("trees are nested more than " + std::to_string(DEEPEST_TREE) + " deep");
    }
    for (const Json_value& child : list_or_none(node, "children")) {
        check_tree(child, level + 1);
    }
}

}  // namespace

void Device_description::load_each(const Json_value& device, const char* list,
                                   void (Device_description::*load_one)(const Json_value& item)) {
    m_problems.attempt([&] {
        for (const Json_value& item : list_or_none(device, list)) {
            m_problems.attempt([&] { (this->*load_one)(item); });
        }
    });
}

void Device_description::load(const Json_value& device) {
    device.expect_members({"parameters", "products", "cards"});
    m_problems.attempt([&] { device.member("parameters"); });
    load_each(device, "parameters", &Device_description::load_parameter);
    load_each(device, "products", &Device_description::load_product);
    load_each(device, "cards", &Device_description::load_card);
}

const Parameter* Device_description::parameter(uint32_t pid, uint32_t varidx) const {
    const Parameter* const found = m_menu.parameters().find(pid, varidx);
    if (found == nullptr &&
        (m_has_unknown_parameters || m_wrong_parameters.count({pid, varidx}) > 0)) {
        throw Told_already();
    }
    return found;
}

const Parameter* Device_description::parameter(const std::string& name) const {
    const Parameter* const found = m_menu.parameters().find(name);
    if (found == nullptr && (m_has_unknown_parameters || m_wrong_names.count(name) > 0)) {
        throw Told_already();
    }
    return found;
}

const Parameter* Device_description::reference(const std::string& text) const {
    const Parameter* const found = m_menu.parameters().find_reference(text);
    return found == nullptr ? parameter(text) : found;
}

bool Device_description::has_document(int slot, uint32_t pid, bool is_tree) const {
    const auto found = m_documents.find({slot, pid});
    return found != m_documents.end() && found->second == is_tree;
}

void Device_description::load_parameter(const Json_value& parameter) {
    static const std::vector<const char*> TYPES{"integer", "text"};
    Parameter declared{};
    const bool is_known = m_problems.attempt([&] { declared.pid = pid_of(parameter); }) &&
                          m_problems.attempt([&] { declared.index = index_of(parameter); });
    if (!is_known) {
        m_has_unknown_parameters = true;
        throw Told_already();
    }
    const auto name = parameter.find("name");
    if (name && name->is_text()) {
        m_wrong_names.insert(name->text());
    }
    const std::pair<uint32_t, uint32_t> key(declared.pid, varidx_of(declared.index));
    if (m_menu.parameters().find(key.first, key.second) != nullptr ||
        !m_wrong_parameters.insert(key).second) {
        parameter.fail("parameter " + std::to_string(declared.pid) +
                       " with this index is declared twice");
    }
    const size_t errors = m_problems.error_count();
    declared.type = parameter.member("type").choice(TYPES) == 0 ? INTEGER : STRING;
    declare_for_rules(declared, name);
    if (declared.type == INTEGER) {
        load_integer(parameter, declared);
    } else {
        load_text(parameter, declared);
    }
    if (m_problems.error_count() > errors) {
        throw Told_already();
    }
    m_wrong_parameters.erase(key);
    m_menu.parameters().add(declared);
    if (name) {
        load_name(*name, declared);
    }
}

// Before the rest is known to be right, so that whatever else is wrong with rules that name it is told.
void Device_description::declare_for_rules(const Parameter& declared,
                                           const std::optional<Json_value>& name) {
    m_menu.bindings()->parameters().declare(declared);
    if (name && name->is_text()) {
        m_menu.bindings()->parameters().declare(name->text(), declared);
    }
}

// A name begins with a letter, so that it cannot be taken for an address.
void Device_description::load_name(const Json_value& name, const Parameter& declared) {
    const std::string text = name.text_of_length(1, LONGEST_PARAMETER_NAME);
    if (std::isalpha(static_cast<unsigned char>(text[0])) == 0 ||
        text.find_first_of("[]\"{}") != std::string::npos) {
        name.fail("expected a name that begins with a letter and has none of []\"{}");
    }
    if (!m_menu.parameters().add_name(text, declared)) {
        name.fail("another parameter is named \"" + text + "\"");
    }
    m_wrong_names.erase(text);
}

void Device_description::load_integer(const Json_value& parameter, Parameter& declared) {
    parameter.expect_members(
        {"name", "pid", "index", "type", "description", "min", "max", "value"});
    const auto bound = [&](const char* name, int64_t min, int64_t max, int64_t otherwise) {
        return static_cast<int>(m_problems.value_or(
            [&] { return parameter.member(name).integer(min, max); }, otherwise));
    };
    declared.min = bound("min", LOWEST, HIGHEST, LOWEST);
    declared.max = bound("max", declared.min, HIGHEST, HIGHEST);
    const int value = bound("value", declared.min, declared.max, declared.min);
    m_menu.device().add_integer(declared.pid, varidx_of(declared.index), declared.min, declared.max,
                                value);
}

void Device_description::load_text(const Json_value& parameter, Parameter& declared) {
    parameter.expect_members({"name", "pid", "index", "type", "description", "length", "value"});
    declared.length = m_problems.value_or(
        [&] { return static_cast<size_t>(parameter.member("length").integer(1, LONGEST_TEXT)); },
        LONGEST_TEXT);
    const std::string value = m_problems.value_or(
        [&] { return parameter.member("value").text_of_length(0, declared.length); },
        std::string());
    m_menu.device().add_text(declared.pid, varidx_of(declared.index), declared.length, value);
}

void Device_description::load_product(const Json_value& product) {
    product.expect_members({"slot", "id", "name", "family", "alias", "options"});
    const int slot = slot_of(product);
    if (!m_fitted_slots.insert(slot).second) {
        product.member("slot").fail("slot " + std::to_string(slot) + " has a product already");
    }
    PROD_LIST_S record{};
    record.prod_id = static_cast<prod_id_t>(product.member("id").integer(1, LAST_PRODUCT));
    copy_text(product.member("name"), record.prod_string);
    copy_text(product.member("family"), record.prod_family);
    m_menu.device().set_product(slot, record);
    if (const auto alias = product.find("alias")) {
        const std::string text = alias->text_of_length(0, Memory_device::MAX_ALIAS_LENGTH);
        if (m_aliases.emplace(record.prod_id, text).first->second != text) {
            alias->fail("product " + std::to_string(record.prod_id) + " has another alias already");
        }
        m_menu.device().set_alias(record.prod_id, text);
    }
    if (const auto options = product.find("options")) {
        m_product_options.push_back(*options);
    }
}

void Device_description::load_card(const Json_value& card) {
    card.expect_members({"slot", "combo-boxes", "trees"});
    const int slot = slot_of(card);
    for (const Json_value& box : list_or_none(card, "combo-boxes")) {
        load_combo_box(box, slot);
    }
    for (const Json_value& tree : list_or_none(card, "trees")) {
        load_tree(tree, slot);
    }
}

uint32_t Device_description::new_document(const Json_value& document, int slot, bool is_tree) {
    const auto pid =
        static_cast<uint32_t>(document.member("pid").integer(FIRST_LIVE_PID, LAST_LIVE_PID));
    if (!m_documents.insert({{slot, pid}, is_tree}).second) {
        document.member("pid").fail("the card in slot " + std::to_string(slot) +
                                    " has a document " + std::to_string(pid) + " already");
    }
    return pid;
}

void Device_description::load_combo_box(const Json_value& box, int slot) {
    box.expect_members({"pid", "options", "selected"});
    const uint32_t pid = new_document(box, slot, false);
    const Json_value list = box.member("options");
    std::vector<Card_service::Option> options;
    for (const Json_value& label : list.items()) {
        options.push_back({std::to_string(options.size()), label.text_of_length(1, LONGEST_TEXT)});
    }
    if (options.empty()) {
        list.fail("expected at least one option");
    }
    const int last = static_cast<int>(options.size()) - 1;
    const int selected = integer_or(box, "selected", 0, last, 0);
    if (Card_service* const cards = m_menu.cards()) {
        cards->add_combo_box(slot, static_cast<int>(pid), options, selected);
    }
}

void Device_description::load_tree(const Json_value& tree, int slot) {
    tree.expect_members({"pid", "tree"});
    const uint32_t pid = new_document(tree, slot, true);
    check_tree(tree.member("tree"), 1);
    if (Card_service* const cards = m_menu.cards()) {
        cards->add_tree(slot, static_cast<int>(pid), tree.member("tree").json());
    }
}

}  // namespace frontpanel
