#include <frontpanel_simulator/simulated_device.h>

#include <frontpanel_data/data_model.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/json_members.h>
#include <frontpanel_base/parameter_declaration.h>

namespace frontpanel {
namespace {

constexpr int LAST_SLOT = Memory_device::SLOT_COUNT - 1;
constexpr int64_t LAST_PRODUCT = std::numeric_limits<prod_id_t>::max();
constexpr int64_t FIRST_DOCUMENT = 9000;
constexpr int64_t LAST_DOCUMENT = 9100;
constexpr int DEEPEST_TREE = 16;
constexpr int64_t LONGEST_ROUND = 86400;  // seconds

int slot_of(const Json_value& owner) {
    return static_cast<int>(owner.member("slot").integer(1, LAST_SLOT));
}

// Copies a text that fits with its terminator.
template <size_t SIZE>
void copy_text(const Json_value& text, char (&out)[SIZE]) {
    const std::string value = text.shown_text_of_length(1, SIZE - 1);
    std::copy(value.begin(), value.end(), out);
}

void check_tree(const Json_value& node, int level) {
    node.expect_members({"label", "children"});
    node.member("label").shown_text_of_length(1, LONGEST_TEXT);
    if (level > DEEPEST_TREE) {
        node.fail("trees are nested more than " + std::to_string(DEEPEST_TREE) + " deep");
    }
    for (const Json_value& child : list_or_none(node, "children")) {
        check_tree(child, level + 1);
    }
}

uint32_t varidx_of(const std::vector<uint16_t>& levels) {
    Index_t index{};
    for (const uint16_t level : levels) {
        index.m_index[index.m_index_num++] = level;
    }
    unsigned int varidx = 0;
    Data_model::Index_convert(&index, varidx);
    return varidx;
}

}  // namespace

// Fills a device from the section of a menu file.
class Simulated_device::Reader {
public:
    Reader(Simulated_device& device, Problems& problems) : m_device(device), m_problems(problems) {}

    void read(const Json_value& section) {
        read_each(section, "parameters", &Reader::read_parameter);
        read_each(section, "products", &Reader::read_product);
        read_each(section, "cards", &Reader::read_card);
    }

private:
    using Key = std::pair<uint32_t, uint32_t>;  // pid and variable index

    void read_each(const Json_value& section, const char* list,
                   void (Reader::*read_one)(const Json_value& item)) {
        m_problems.attempt([&] {
            for (const Json_value& item : list_or_none(section, list)) {
                m_problems.attempt([&] { (this->*read_one)(item); });
            }
        });
    }

    void read_parameter(const Json_value& parameter) {
        const uint32_t pid = pid_of(parameter);
        const Key key(pid, varidx_of(levels_of(parameter)));
        const size_t count = m_declared.size();
        m_declared.insert(m_declared.end(), key);  // usually in ascending order
        if (m_declared.size() == count) {
            return;  // the menu reports a second declaration
        }
        const bool is_elsewhere = parameter.find("source").has_value();
        if (is_elsewhere && m_device.m_sources == Sources::LEFT_OUT) {
            return;
        }
        const bool is_text = is_text_parameter(parameter);
        const size_t errors = m_problems.error_count();
        is_text ? read_text(parameter, key) : read_number(parameter, key);
        if (m_problems.error_count() > errors) {
            m_device.m_wrong_parameters.insert(key);
        }
    }

    // Required of a parameter that lives nowhere else.
    static std::optional<Json_value> start_value(const Json_value& parameter) {
        return parameter.find("source") ? parameter.find("value")
                                        : std::optional<Json_value>(parameter.member("value"));
    }

    void read_number(const Json_value& parameter, const Key& key) {
        const auto [min, max] = number_limits_of(parameter, m_problems);
        const auto value = static_cast<int32_t>(m_problems.value_or(
            [&, low = min, high = max] {
                const auto start = start_value(parameter);
                return start ? start->integer(low, high) : std::clamp<int64_t>(0, low, high);
            },
            int64_t{min}));
        m_device.m_memory.add_integer(key.first, key.second, min, max, value);
        if (const auto moves = parameter.find("moves")) {
            m_problems.attempt([&, low = min, high = max] {
                moves->expect_members({"from", "to", "seconds"});
                const auto from = static_cast<int32_t>(moves->member("from").integer(low, high));
                const auto to = static_cast<int32_t>(moves->member("to").integer(low, high));
                const std::chrono::seconds round(
                    moves->member("seconds").integer(1, LONGEST_ROUND));
                m_device.m_movement.add({key.first, key.second, from, to, value, round});
            });
        }
    }

    void read_text(const Json_value& parameter, const Key& key) {
        const size_t most = text_limit_of(parameter, m_problems);
        const std::string value = m_problems.value_or(
            [&] {
                const auto start = start_value(parameter);
                return start ? start->shown_text_of_length(0, most) : std::string();
            },
            std::string());
        m_device.m_memory.add_text(key.first, key.second, most, value);
    }

    void read_product(const Json_value& product) {
        product.expect_members({"slot", "id", "name", "family", "alias", "options"});
        const int slot = slot_of(product);
        if (!m_fitted_slots.insert(slot).second) {
            product.member("slot").fail("slot " + std::to_string(slot) + " has a product already");
        }
        PROD_LIST_S record{};
        record.prod_id = static_cast<prod_id_t>(product.member("id").integer(1, LAST_PRODUCT));
        copy_text(product.member("name"), record.prod_string);
        copy_text(product.member("family"), record.prod_family);
        m_device.m_memory.set_product(slot, record);
        if (const auto alias = product.find("alias")) {
            set_alias(*alias, record.prod_id);
        }
        if (const auto options = product.find("options")) {
            m_device.m_product_options.push_back(*options);
        }
    }

    void set_alias(const Json_value& alias, prod_id_t product) {
        const std::string text = alias.shown_text_of_length(0, Memory_device::MAX_ALIAS_LENGTH);
        if (m_aliases.emplace(product, text).first->second != text) {
            alias.fail("product " + std::to_string(product) + " has another alias already");
        }
        m_device.m_memory.set_alias(product, text);
    }

    void read_card(const Json_value& card) {
        card.expect_members({"slot", "combo-boxes", "trees"});
        const int slot = slot_of(card);
        for (const Json_value& box : list_or_none(card, "combo-boxes")) {
            read_combo_box(box, slot);
        }
        for (const Json_value& tree : list_or_none(card, "trees")) {
            read_tree(tree, slot);
        }
    }

    uint32_t new_document(const Json_value& document, int slot, bool is_tree) {
        const Json_value place = document.member("pid");
        const auto pid = static_cast<uint32_t>(place.integer(FIRST_DOCUMENT, LAST_DOCUMENT));
        if (!m_device.m_documents.insert({{slot, pid}, is_tree}).second) {
            place.fail("the card in slot " + std::to_string(slot) + " has a document " +
                       std::to_string(pid) + " already");
        }
        return pid;
    }

    void read_combo_box(const Json_value& box, int slot) {
        box.expect_members({"pid", "options", "selected"});
        const uint32_t pid = new_document(box, slot, false);
        const Json_value list = box.member("options");
        std::vector<Card_service::Option> options;
        for (const Json_value& label : list.items()) {
            options.push_back(
                {std::to_string(options.size()), label.shown_text_of_length(1, LONGEST_TEXT)});
        }
        if (options.empty()) {
            list.fail("expected at least one option");
        }
        const int last = static_cast<int>(options.size()) - 1;
        const int selected = integer_or(box, "selected", 0, last, 0);
        if (Card_service* const cards = m_device.cards()) {
            cards->add_combo_box(slot, static_cast<int>(pid), options, selected);
        }
    }

    void read_tree(const Json_value& tree, int slot) {
        tree.expect_members({"pid", "tree"});
        const uint32_t pid = new_document(tree, slot, true);
        check_tree(tree.member("tree"), 1);
        if (Card_service* const cards = m_device.cards()) {
            cards->add_tree(slot, static_cast<int>(pid), tree.member("tree").json());
        }
    }

    Simulated_device& m_device;
    Problems& m_problems;
    std::set<Key> m_declared;
    std::set<int> m_fitted_slots;
    std::map<prod_id_t, std::string> m_aliases;
};

Simulated_device::Simulated_device(const Json_value& file, Problems& problems, Cards cards,
                                   Sources sources)
    : m_sources(sources) {
    problems.attempt([&] {
        const Json_value section = file.member("device");
        if (cards == Cards::ON && section.find("cards")) {
            start_cards();
        }
        Reader(*this, problems).read(section);
    });
}

// A panel without its cards is of more use than none: the rest of its menu works.
void Simulated_device::start_cards() {
    try {
        m_cards = std::make_unique<Card_service>();
    } catch (const std::runtime_error& error) {
        m_cards_failure = std::string("the cards cannot be started: ") + error.what();
    }
}

bool Simulated_device::has_document(int slot, uint32_t pid, bool is_tree) const {
    const auto found = m_documents.find({slot, pid});
    return found != m_documents.end() && found->second == is_tree;
}

}  // namespace frontpanel
