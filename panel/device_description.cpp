#include "device_description.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

#include "entry_access.h"
#include "item_members.h"

namespace panel {
namespace {

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr int LAST_SLOT = Memory_device::SLOT_COUNT - 1;
constexpr int64_t LAST_PRODUCT = std::numeric_limits<prod_id_t>::max();
constexpr int DEEPEST_TREE = 16;

int slot_of(const Json_value& owner) {
    return static_cast<int>(owner.member("slot").integer(1, LAST_SLOT));
}

// Copies a text that fits with its terminator.
template <size_t SIZE>
void copy_text(const Json_value& text, char (&out)[SIZE]) {
    const std::string value = text.text_of_length(1, SIZE - 1);
    std::copy(value.begin(), value.end(), out);
}

std::vector<Json_value> list_or_none(const Json_value& owner, const char* name) {
    const std::optional<Json_value> list = owner.find(name);
    return list ? list->items() : std::vector<Json_value>();
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

void Device_description::load(const Json_value& device) {
    device.expect_members({"parameters", "products", "cards"});
    for (const Json_value& parameter : device.member("parameters").items()) {
        load_parameter(parameter);
    }
    for (const Json_value& product : list_or_none(device, "products")) {
        load_product(product);
    }
    for (const Json_value& card : list_or_none(device, "cards")) {
        load_card(card);
    }
}

const Parameter* Device_description::parameter(uint32_t pid, uint32_t varidx) const {
    const auto found = m_parameters.find({pid, varidx});
    return found == m_parameters.end() ? nullptr : &found->second;
}

bool Device_description::has_document(int slot, uint32_t pid, bool is_tree) const {
    const auto found = m_documents.find({slot, pid});
    return found != m_documents.end() && found->second == is_tree;
}

void Device_description::load_parameter(const Json_value& parameter) {
    const uint32_t pid = pid_of(parameter);
    const uint32_t varidx = varidx_of(index_of(parameter));
    if (this->parameter(pid, varidx) != nullptr) {
        parameter.fail("parameter " + std::to_string(pid) + " with this index is declared twice");
    }
    const Json_value type = parameter.member("type");
    if (type.text() == "integer") {
        load_integer(parameter, pid, varidx);
    } else if (type.text() == "text") {
        load_text(parameter, pid, varidx);
    } else {
        type.fail("expected \"integer\" or \"text\", found \"" + type.text() + "\"");
    }
}

void Device_description::load_integer(const Json_value& parameter, uint32_t pid, uint32_t varidx) {
    parameter.expect_members({"pid", "index", "type", "description", "min", "max", "value"});
    const int64_t min = parameter.member("min").integer(LOWEST, HIGHEST);
    const int64_t max = parameter.member("max").integer(min, HIGHEST);
    const int64_t value = parameter.member("value").integer(min, max);
    m_parameters[{pid, varidx}] = {INTEGER, static_cast<int>(min), static_cast<int>(max), 0};
    m_menu.device().add_integer(pid, varidx, static_cast<int>(min), static_cast<int>(max),
                                static_cast<int>(value));
}

void Device_description::load_text(const Json_value& parameter, uint32_t pid, uint32_t varidx) {
    parameter.expect_members({"pid", "index", "type", "description", "length", "value"});
    const auto length = static_cast<size_t>(parameter.member("length").integer(1, LONGEST_TEXT));
    const std::string value = parameter.member("value").text_of_length(0, length);
    m_parameters[{pid, varidx}] = {STRING, 0, 0, length};
    m_menu.device().add_text(pid, varidx, length, value);
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

}  // namespace panel
