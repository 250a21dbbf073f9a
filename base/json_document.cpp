#include <frontpanel_base/json_document.h>

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <rapidjson/stream.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include <frontpanel_base/json_allocator.h>
#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

using Kind = Json_node::Kind;

constexpr size_t DEEPEST_VALUE = 100;              // values are handled by recursion
constexpr size_t PIECE_SIZE = size_t{256} * 1024;  // of storage
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

static_assert(std::is_trivially_copyable_v<Json_node> && std::is_trivially_copyable_v<Json_member>,
              "storage copies bytes and destroys nothing");
static_assert(sizeof(Json_node) <= 40 && sizeof(Json_member) <= 80,
              "a large menu has to fit a small device");

// Lines and columns of offsets, fast for increasing ones. Line ends are noted before the text is decoded in place.
class Line_counter {
public:
    Line_counter(const Source& source, const std::string& text) : m_source(source) {
        for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
            m_line_starts.push_back(static_cast<uint32_t>(at + 1));
        }
    }

    Place place_at(size_t offset) {
        if (m_line > 0 && m_line_starts[m_line - 1] > offset) {
            m_line = 0;
        }
        while (m_line < m_line_starts.size() && m_line_starts[m_line] <= offset) {
            ++m_line;
        }
        const size_t line_start = m_line == 0 ? 0 : m_line_starts[m_line - 1];
        return {&m_source, static_cast<uint32_t>(m_line + 1),
                static_cast<uint32_t>(offset - line_start + 1), nullptr};
    }

private:
    const Source& m_source;
    std::vector<uint32_t> m_line_starts;  // behind the first
    size_t m_line = 0;
};

std::optional<int64_t> integer_of(std::string_view text) {
    return parse_number<int64_t>(text);
}

// Builds the values while the parser finds them. Elements and members of what is still open are on two stacks, from
// which they are stored together at its end.
class Builder {
public:
    Builder(Line_counter& counter, const std::string& text,
            const rapidjson::InsituStringStream& stream, Json_storage& storage, size_t most_values)
        : m_counter(counter),
          m_text(text),
          m_stream(stream),
          m_storage(storage),
          m_most_values(most_values) {}

    bool Null() { return add(Json_node(Kind::NOTHING, place_before(4))); }
    bool Bool(bool value) { return add(Json_node::of_boolean(value, place_before(value ? 4 : 5))); }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view number(text, length);
        const Place place = place_of(text);
        const std::optional<int64_t> integer = integer_of(number);
        return add(integer ? Json_node::of_integer(*integer, place)
                           : Json_node::of_text(Kind::REAL, number, place));
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const Place place = place_of(text - 1);
        return add(Json_node::of_text(Kind::TEXT, checked({text, length}, place), place));
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const Place place = place_of(text - 1);
        m_members.push_back({checked({text, length}, place), place, {}});
        return true;
    }
    bool StartObject() { return open(Kind::OBJECT); }
    bool EndObject(rapidjson::SizeType count) {
        const Json_span<Json_member> kept =
            m_storage.keep(m_members.data() + (m_members.size() - count), count);
        m_members.resize(m_members.size() - count);
        return close(Json_node::of_members(kept, m_open.back().place()));
    }
    bool StartArray() { return open(Kind::LIST); }
    bool EndArray(rapidjson::SizeType count) {
        const Json_span<Json_node> kept =
            m_storage.keep(m_elements.data() + (m_elements.size() - count), count);
        m_elements.resize(m_elements.size() - count);
        return close(Json_node::of_elements(kept, m_open.back().place()));
    }
    // The parser makes none of these from numbers as they are written.
    bool Int(int /*value*/) { return false; }
    bool Uint(unsigned /*value*/) { return false; }
    bool Int64(int64_t /*value*/) { return false; }
    bool Uint64(uint64_t /*value*/) { return false; }
    bool Double(double /*value*/) { return false; }

    const Json_node& root() const { return m_root; }
    size_t value_count() const { return m_value_count; }

private:
    Place place_of(const char* begin) {
        return m_counter.place_at(static_cast<size_t>(begin - m_text.data()));
    }
    // Of what the parser has just taken.
    Place place_before(size_t length) { return place_of(m_stream.src_ - length); }
    static std::string_view checked(std::string_view text, const Place& place) {
        if (text.size() > Json_document::LONGEST_TEXT) {
            throw Placed_error(place, "a text is longer than " +
                                          std::to_string(Json_document::LONGEST_TEXT) + " bytes");
        }
        return text;
    }
    void count(const Place& place) {
        if (++m_value_count > m_most_values) {
            throw Placed_error(place, "more than " + std::to_string(m_most_values) + " values");
        }
    }
    bool add(const Json_node& node) {
        count(node.place());
        return put(node);
    }
    bool put(const Json_node& node) {
        if (m_open.empty()) {
            m_root = node;
        } else if (m_open.back().is(Kind::OBJECT)) {
            m_members.back().value = node;
        } else {
            m_elements.push_back(node);
        }
        return true;
    }
    bool open(Kind kind) {
        const Place place = place_before(1);
        count(place);
        if (m_open.size() == DEEPEST_VALUE) {
            throw Placed_error(
                place, "values are nested more than " + std::to_string(DEEPEST_VALUE) + " deep");
        }
        m_open.emplace_back(kind, place);
        return true;
    }
    bool close(const Json_node& node) {
        m_open.pop_back();
        return put(node);
    }

    Line_counter& m_counter;
    const std::string& m_text;
    const rapidjson::InsituStringStream& m_stream;
    Json_storage& m_storage;
    size_t m_most_values;
    size_t m_value_count = 0;
    Json_node m_root;
    std::vector<Json_node> m_open;
    std::vector<Json_node> m_elements;
    std::vector<Json_member> m_members;
};

// The number that begins there.
std::string number_at(const std::string& text, size_t offset) {
    const size_t end = std::min(text.find_first_not_of("+-.0123456789eE", offset), text.size());
    return shown_number(std::string_view(text).substr(offset, end - offset));
}

// Where a comma stands that only blanks separate from the closing bracket at `offset`.
std::optional<size_t> comma_before_bracket(const std::string& text, size_t offset) {
    if (offset == 0 || offset >= text.size() || (text[offset] != ']' && text[offset] != '}')) {
        return std::nullopt;
    }
    const size_t before = text.find_last_not_of(" \t\r\n", offset - 1);
    const bool is_comma = before != std::string::npos && text[before] == ',';
    return is_comma ? std::optional<size_t>(before) : std::nullopt;
}

[[noreturn]] void fail(Line_counter& counter, const std::string& text,
                       const rapidjson::ParseResult& result) {
    const size_t offset = result.Offset();
    if (result.Code() == rapidjson::kParseErrorNumberTooBig) {
        throw Placed_error(counter.place_at(offset),
                           "the number " + number_at(text, offset) + " is too large");
    }
    if (const auto comma = comma_before_bracket(text, offset)) {
        throw Placed_error(counter.place_at(*comma),
                           std::string("unexpected comma before '") + text[offset] + "'");
    }
    throw Placed_error(counter.place_at(offset), rapidjson::GetParseError_En(result.Code()));
}

}  // namespace

std::string shown_number(std::string_view number) {
    constexpr size_t LONGEST = 40;
    return number.size() <= LONGEST ? std::string(number)
                                    : std::string(number.substr(0, LONGEST)) + "...";
}

Json_node Json_node::of_boolean(bool value, const Place& place) {
    Json_node node(Kind::BOOLEAN, place);
    node.m_content.number = value ? 1 : 0;
    return node;
}

Json_node Json_node::of_integer(int64_t number, const Place& place) {
    Json_node node(Kind::INTEGER, place);
    node.m_content.number = number;
    return node;
}

Json_node Json_node::of_text(Kind kind, std::string_view text, const Place& place) {
    Json_node node(kind, place);
    node.m_size = static_cast<uint32_t>(text.size());
    node.m_content.text = text.data();
    return node;
}

Json_node Json_node::of_elements(Json_span<Json_node> elements, const Place& place) {
    Json_node node(Kind::LIST, place);
    node.m_size = static_cast<uint32_t>(elements.size());
    node.m_content.elements = elements.begin();
    return node;
}

Json_node Json_node::of_members(Json_span<Json_member> members, const Place& place) {
    Json_node node(Kind::OBJECT, place);
    node.m_size = static_cast<uint32_t>(members.size());
    node.m_content.members = members.begin();
    return node;
}

std::optional<int64_t> Json_node::integer() const {
    if (m_kind == Kind::TEXT && m_stands_for_number) {
        return integer_of(text());
    }
    return m_kind == Kind::INTEGER ? std::optional<int64_t>(m_content.number) : std::nullopt;
}

std::string_view Json_node::text() const {
    const bool is_text = m_kind == Kind::TEXT || m_kind == Kind::REAL;
    return is_text ? std::string_view(m_content.text, m_size) : std::string_view();
}

Json_span<Json_node> Json_node::elements() const {
    return m_kind == Kind::LIST ? Json_span<Json_node>(m_content.elements, m_size)
                                : Json_span<Json_node>(nullptr, 0);
}

Json_span<Json_member> Json_node::members() const {
    return m_kind == Kind::OBJECT ? Json_span<Json_member>(m_content.members, m_size)
                                  : Json_span<Json_member>(nullptr, 0);
}

const Json_node* Json_node::member(std::string_view name) const {
    const Json_span<Json_member> all = members();
    const auto* const found =
        std::find_if(all.begin(), all.end(),
                     [name](const Json_member& candidate) { return candidate.name == name; });
    return found == all.end() ? nullptr : &found->value;
}

bool Json_node::is_same(const Json_node& other) const {
    const bool is_same_place =
        m_place.source == other.m_place.source && m_place.line == other.m_place.line &&
        m_place.column == other.m_place.column && m_place.copy == other.m_place.copy;
    return is_same_place && m_kind == other.m_kind && m_size == other.m_size &&
           m_stands_for_number == other.m_stands_for_number &&
           m_is_incomplete == other.m_is_incomplete &&
           std::memcmp(&m_content, &other.m_content, sizeof m_content) == 0;
}

std::string_view Json_storage::keep(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    void* const kept = std::memcpy(allocate(text.size()), text.data(), text.size());
    return {static_cast<const char*>(kept), text.size()};
}

Json_span<Json_node> Json_storage::keep(const Json_node* first, size_t size) {
    if (size == 0) {
        return {nullptr, 0};
    }
    auto* const kept = static_cast<Json_node*>(allocate(size * sizeof *first));
    return {kept, static_cast<size_t>(std::uninitialized_copy_n(first, size, kept) - kept)};
}

Json_span<Json_member> Json_storage::keep(const Json_member* first, size_t size) {
    if (size == 0) {
        return {nullptr, 0};
    }
    auto* const kept = static_cast<Json_member*>(allocate(size * sizeof *first));
    return {kept, static_cast<size_t>(std::uninitialized_copy_n(first, size, kept) - kept)};
}

// Large contents get a piece of their own, behind which the one in use goes on.
void* Json_storage::allocate(size_t bytes) {
    constexpr size_t ALIGNMENT = alignof(Json_member);
    static_assert(alignof(Json_member) >= alignof(Json_node));
    const size_t rounded = (bytes + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
    if (rounded > PIECE_SIZE / 4) {
        m_pieces.emplace_back(new std::byte[rounded]);
        return m_pieces.back().get();
    }
    if (rounded > m_left) {
        m_pieces.emplace_back(new std::byte[PIECE_SIZE]);
        m_next = m_pieces.back().get();
        m_left = PIECE_SIZE;
    }
    std::byte* const result = m_next;
    m_next += rounded;
    m_left -= rounded;
    return result;
}

Json_document::Json_document(const Source& source, std::string text, size_t most_values)
    : m_text(std::move(text)) {
    Line_counter counter(source, m_text);
    if (m_text.size() > std::numeric_limits<uint32_t>::max()) {
        throw Placed_error(counter.place_at(0), "the text is longer than any file");
    }
    const bool is_marked = m_text.compare(0, BYTE_ORDER_MARK.size(), BYTE_ORDER_MARK) == 0;
    rapidjson::InsituStringStream stream(m_text.data());
    stream.src_ += is_marked ? BYTE_ORDER_MARK.size() : 0;
    Builder builder(counter, m_text, stream, m_storage, most_values);
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, Json_allocator> reader;
    // The parser recurses only where the builder has accepted another level.
    const rapidjson::ParseResult result =
        reader.Parse<rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag>(stream,
                                                                                          builder);
    if (result.IsError()) {
        fail(counter, m_text, result);
    }
    if (stream.Tell() < m_text.size()) {
        throw Placed_error(counter.place_at(stream.Tell()), "unexpected zero byte");
    }
    m_root = builder.root();
    m_value_count = builder.value_count();
}

}  // namespace frontpanel
