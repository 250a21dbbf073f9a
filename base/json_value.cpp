#include <frontpanel_base/character_set.h>
#include <frontpanel_base/json_value.h>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <set>

#include <frontpanel_base/json_allocator.h>
#include <frontpanel_base/nearest_name.h>

namespace frontpanel {
namespace {

using Kind = Json_node::Kind;
using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, Json_allocator>;
using Writer = rapidjson::Writer<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, Json_allocator>;

const char* name_of(Kind kind) {
    switch (kind) {
        case Kind::NOTHING:
            return "null";
        case Kind::BOOLEAN:
            return "true or false";
        case Kind::INTEGER:
            return "a whole number";
        case Kind::REAL:
            return "a number";
        case Kind::TEXT:
            return "a text";
        case Kind::LIST:
            return "a list";
        case Kind::OBJECT:
            return "an object";
        case Kind::WRONG:
            break;
    }
    return "nothing";
}

bool is_printable(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// Usually the first character already differs.
bool is_same_name(const char* known, std::string_view name) {
    for (const char character : name) {
        if (character == '\0' || *known++ != character) {
            return false;
        }
    }
    return *known == '\0';
}

// What a message says that a value is.
std::string description_of(const Json_node& node) {
    if (const auto number = node.integer()) {
        return std::to_string(*number);
    }
    return node.is(Kind::REAL) ? shown_number(node.text()) : name_of(node.kind());
}

void write_text(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void write(Writer& writer, const Json_node& node) {
    switch (node.kind()) {
        case Kind::NOTHING:
        case Kind::WRONG:
            writer.Null();
            break;
        case Kind::REAL:
            writer.RawValue(node.text().data(), node.text().size(), rapidjson::kNumberType);
            break;
        case Kind::BOOLEAN:
            writer.Bool(node.boolean());
            break;
        case Kind::INTEGER:
            writer.Int64(node.integer().value_or(0));
            break;
        case Kind::TEXT:
            write_text(writer, node.text());
            break;
        case Kind::LIST:
            writer.StartArray();
            for (const Json_node& element : node.elements()) {
                write(writer, element);
            }
            writer.EndArray();
            break;
        case Kind::OBJECT:
            writer.StartObject();
            for (const Json_member& member : node.members()) {
                write_text(writer, member.name());
                write(writer, member.value);
            }
            writer.EndObject();
            break;
    }
}

}  // namespace

Place Json_value::place_in_text(size_t offset) const {
    return places_in_text({offset}).front();
}

std::vector<Place> Json_value::places_in_text(const std::vector<size_t>& offsets) const {
    constexpr uint32_t QUOTE = 1;
    if (m_node->place().copy != nullptr) {
        return {offsets.size(), m_node->place()};  // the text differs from the one in the file
    }
    const std::string_view text = m_node->text();
    const auto is_escaped = [](unsigned char c) { return c == '"' || c == '\\' || c < ' '; };
    std::vector<Place> places;
    places.reserve(offsets.size());
    Place place = m_node->place();
    place.column += QUOTE;
    size_t counted = 0;
    for (const size_t offset : offsets) {
        for (; counted < offset && counted < text.size(); ++counted) {
            place.column += is_escaped(static_cast<unsigned char>(text[counted])) ? 2U : 1U;
        }
        places.push_back(place);
    }
    return places;
}

void Json_value::fail(const std::string& text) const {
    if (m_node->is(Kind::WRONG)) {
        throw Told_already();
    }
    throw Placed_error(m_node->place(), text);
}

void Json_value::report(const std::string& text) const {
    m_problems->report(m_node->place(), text);
}

void Json_value::warn(const std::string& text) const {
    m_problems->warn(m_node->place(), text);
}

void Json_value::fail_type(const char* expected) const {
    fail(std::string("expected ") + expected + ", found " + name_of(m_node->kind()));
}

void Json_value::expect_object() const {
    if (!is_object()) {
        fail_type("an object");
    }
}

std::optional<Json_value> Json_value::find(const char* name) const {
    expect_object();
    const Json_node* const found = m_node->member(name);
    return found == nullptr ? std::nullopt
                            : std::optional<Json_value>(Json_value(*found, *m_problems));
}

Json_value Json_value::member(const char* name) const {
    const std::optional<Json_value> found = find(name);
    if (!found) {
        fail(std::string("expected a member \"") + name + "\"");
    }
    return *found;
}

std::vector<Json_value::Member> Json_value::members() const {
    std::vector<Member> members;
    for_each_member([&](const Json_member& member) {
        members.push_back(
            {std::string(member.name()), member.place(), Json_value(member.value, *m_problems)});
    });
    return members;
}

void Json_value::expect_members(const std::vector<const char*>& known) const {
    for_each_member([&](const Json_member& member) {
        const bool is_known = std::any_of(
            known.begin(), known.end(),
            [&member](const char* candidate) { return is_same_name(candidate, member.name()); });
        if (!is_known) {
            m_problems->report(member.place(), "unknown member \"" + std::string(member.name()) +
                                                   "\"" + hint_of(member.name(), known));
        }
    });
}

// Objects are small but for the wrong ones, so the few names before one are searched without a set.
template <typename Work>
void Json_value::for_each_member(Work work) const {
    constexpr size_t MOST_SEARCHED = 32;
    expect_object();
    std::set<std::string_view> seen;
    const Json_span<Json_member> all = m_node->members();
    const auto is_new = [&](const Json_member& member) {
        if (all.size() > MOST_SEARCHED) {
            return seen.insert(member.name()).second;
        }
        return std::none_of(all.begin(), &member, [&member](const Json_member& before) {
            return before.name() == member.name();
        });
    };
    for (const Json_member& member : all) {
        if (is_new(member)) {
            work(member);
        } else {
            m_problems->report(member.place(),
                               "duplicate member \"" + std::string(member.name()) + "\"");
        }
    }
}

std::vector<Json_value> Json_value::items() const {
    if (!m_node->is(Kind::LIST)) {
        fail_type("a list");
    }
    std::vector<Json_value> items;
    items.reserve(m_node->elements().size());
    for (const Json_node& element : m_node->elements()) {
        items.emplace_back(element, *m_problems);
    }
    return items;
}

std::vector<Json_value> Json_value::some_items(size_t most, const std::string& what) const {
    std::vector<Json_value> items = this->items();
    if (items.empty() && m_node->is_incomplete()) {
        throw Told_already();
    }
    if (items.empty() || items.size() > most) {
        fail("expected 1 to " + std::to_string(most) + " " + what + ", found " +
             std::to_string(items.size()));
    }
    return items;
}

bool Json_value::is_text() const {
    return m_node->is(Kind::TEXT);
}

bool Json_value::is_object() const {
    return m_node->is(Kind::OBJECT);
}

bool Json_value::is_list() const {
    return m_node->is(Kind::LIST);
}

int64_t Json_value::integer(int64_t min, int64_t max) const {
    const std::optional<int64_t> number = m_node->integer();
    if (!number || *number < min || *number > max) {
        fail("expected a whole number from " + std::to_string(min) + " to " + std::to_string(max) +
             ", found " + description_of(*m_node));
    }
    return *number;
}

bool Json_value::boolean() const {
    if (!m_node->is(Kind::BOOLEAN)) {
        fail_type("true or false");
    }
    return m_node->boolean();
}

std::string Json_value::text() const {
    return std::string(expect_printable());
}

std::string_view Json_value::expect_printable() const {
    if (!is_text()) {
        fail_type("a text");
    }
    const std::string_view text = m_node->text();
    if (!is_printable(text)) {
        fail("expected printable ASCII characters");
    }
    return text;
}

std::string Json_value::shown_text() const {
    if (!is_text()) {
        fail_type("a text");
    }
    return expect_shown(std::string(m_node->text()));
}

const std::string& Json_value::expect_shown(const std::string& text) const {
    if (is_printable(text)) {
        return text;
    }
    const std::u32string characters = characters_of(text);
    if (std::any_of(characters.begin(), characters.end(), [](char32_t character) {
            return character == DAMAGED || is_control(character);
        })) {
        fail("expected printable characters in UTF-8");
    }
    return text;
}

std::string Json_value::text_with_lines() const {
    if (!is_text()) {
        fail_type("a text");
    }
    std::string on_one_line(m_node->text());
    std::replace(on_one_line.begin(), on_one_line.end(), '\n', ' ');
    expect_shown(on_one_line);
    return std::string(m_node->text());
}

std::string Json_value::text_of_length(size_t min, size_t max) const {
    return of_length(text(), min, max);
}

std::string Json_value::shown_text_of_length(size_t min, size_t max) const {
    return of_length(shown_text(), min, max);
}

std::string Json_value::of_length(std::string text, size_t min, size_t max) const {
    if (text.size() < min || text.size() > max) {
        fail("expected a text of " + std::to_string(min) + " to " + std::to_string(max) +
             " characters, found " + std::to_string(text.size()) +
             (is_printable(text) ? "" : " bytes of UTF-8"));
    }
    return text;
}

size_t Json_value::choice(const std::vector<const char*>& known) const {
    const std::string_view found = expect_printable();
    const auto match = std::find_if(known.begin(), known.end(), [found](const char* candidate) {
        return is_same_name(candidate, found);
    });
    if (match == known.end()) {
        std::string names;
        for (size_t i = 0; i < known.size(); ++i) {
            names += (i == 0              ? "\""
                      : known.size() == 2 ? " or \""
                                          : ", \"") +
                     std::string(known[i]) + "\"";
        }
        fail("expected " + std::string(known.size() > 2 ? "one of " : "") + names + ", found \"" +
             std::string(found) + "\"" + hint_of(found, known));
    }
    return static_cast<size_t>(match - known.begin());
}

std::string Json_value::json() const {
    Buffer buffer;
    Writer writer(buffer);
    write(writer, *m_node);
    return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace frontpanel
