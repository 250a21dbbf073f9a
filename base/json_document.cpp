#include <frontpanel_base/json_document.h>

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <rapidjson/stream.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
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
static_assert(sizeof(void*) != 8 || (sizeof(Json_node) == 24 && sizeof(Json_member) == 48),
              "a large menu has to fit a small device");

std::optional<int64_t> integer_of(std::string_view text) {
    return parse_number<int64_t>(text);
}

// Builds the values while the parser finds them. Elements and members of what is still open are on two stacks, from
// which they are stored together at its end.
class Builder {
public:
    Builder(const Json_origin& origin, const std::string& text,
            const rapidjson::InsituStringStream& stream, Json_storage& storage, Json_names& names,
            size_t most_values)
        : m_origin(origin),
          m_text(text),
          m_stream(stream),
          m_storage(storage),
          m_names(names),
          m_most_values(most_values) {}

    bool Null() { return add(Json_node(Kind::NOTHING, mark_before(4))); }
    bool Bool(bool value) { return add(Json_node::of_boolean(value, mark_before(value ? 4 : 5))); }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view number(text, length);
        const Json_mark mark = mark_of(text);
        const std::optional<int64_t> integer = integer_of(number);
        return add(integer ? Json_node::of_integer(*integer, mark)
                           : Json_node::of_text(Kind::REAL, number, mark));
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const Json_mark mark = mark_of(text - 1);
        return add(Json_node::of_text(Kind::TEXT, checked({text, length}, mark), mark));
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const Json_mark mark = mark_of(text - 1);
        const std::string_view name = checked({text, length}, mark);
        m_names.note(name);
        m_members.emplace_back(name, mark, Json_node());
        return true;
    }
    bool StartObject() { return open(Kind::OBJECT); }
    bool EndObject(rapidjson::SizeType count) {
        const Json_span<Json_member> kept =
            m_storage.keep(m_members.data() + (m_members.size() - count), count);
        m_members.resize(m_members.size() - count);
        return close(Json_node::of_members(kept, m_open.back().mark()));
    }
    bool StartArray() { return open(Kind::LIST); }
    bool EndArray(rapidjson::SizeType count) {
        const Json_span<Json_node> kept =
            m_storage.keep(m_elements.data() + (m_elements.size() - count), count);
        m_elements.resize(m_elements.size() - count);
        return close(Json_node::of_elements(kept, m_open.back().mark()));
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
    Json_mark mark_of(const char* begin) const {
        return {&m_origin, static_cast<uint32_t>(begin - m_text.data())};
    }
    // Of what the parser has just taken.
    Json_mark mark_before(size_t length) const { return mark_of(m_stream.src_ - length); }
    static std::string_view checked(std::string_view text, const Json_mark& mark) {
        if (text.size() > Json_document::LONGEST_TEXT) {
            throw Placed_error(
                mark.place(),
                "a text is longer than " + std::to_string(Json_document::LONGEST_TEXT) + " bytes");
        }
        return text;
    }
    void count(const Json_mark& mark) {
        if (++m_value_count > m_most_values) {
            throw Placed_error(mark.place(),
                               "more than " + std::to_string(m_most_values) + " values");
        }
    }
    bool add(const Json_node& node) {
        count(node.mark());
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
        const Json_mark mark = mark_before(1);
        count(mark);
        if (m_open.size() == DEEPEST_VALUE) {
            throw Placed_error(mark.place(), "values are nested more than " +
                                                 std::to_string(DEEPEST_VALUE) + " deep");
        }
        m_open.emplace_back(kind, mark);
        return true;
    }
    bool close(const Json_node& node) {
        m_open.pop_back();
        return put(node);
    }

    const Json_origin& m_origin;
    const std::string& m_text;
    const rapidjson::InsituStringStream& m_stream;
    Json_storage& m_storage;
    Json_names& m_names;
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

[[noreturn]] void fail(const Json_origin& origin, const std::string& text,
                       const rapidjson::ParseResult& result) {
    const size_t offset = result.Offset();
    const auto place_at = [&origin](size_t place) {
        return Json_mark{&origin, static_cast<uint32_t>(place)}.place();
    };
    if (result.Code() == rapidjson::kParseErrorNumberTooBig) {
        throw Placed_error(place_at(offset),
                           "the number " + number_at(text, offset) + " is too large");
    }
    if (const auto comma = comma_before_bracket(text, offset)) {
        throw Placed_error(place_at(*comma),
                           std::string("unexpected comma before '") + text[offset] + "'");
    }
    throw Placed_error(place_at(offset), rapidjson::GetParseError_En(result.Code()));
}

}  // namespace

Json_lines::Json_lines(std::string_view text) {
    for (size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
        m_starts.push_back(static_cast<uint32_t>(at + 1));
    }
    m_starts.shrink_to_fit();
}

Place Json_lines::place_at(const Source& source, uint32_t offset) const {
    const bool is_in_last = (m_last == 0 || m_starts[m_last - 1] <= offset) &&
                            (m_last == m_starts.size() || m_starts[m_last] > offset);
    if (!is_in_last) {
        const auto next = std::upper_bound(m_starts.begin(), m_starts.end(), offset);
        m_last = static_cast<size_t>(next - m_starts.begin());
    }
    const uint32_t start = m_last == 0 ? 0 : m_starts[m_last - 1];
    return {&source, static_cast<uint32_t>(m_last + 1), offset - start + 1, nullptr};
}

Place Json_mark::place() const {
    Place place{};
    if (origin != nullptr) {
        place = origin->lines->place_at(*origin->source, offset);
        place.copy = origin->copy;
    }
    return place;
}

std::string shown_number(std::string_view number) {
    constexpr size_t LONGEST = 40;
    return number.size() <= LONGEST ? std::string(number)
                                    : std::string(number.substr(0, LONGEST)) + "...";
}

Json_node Json_node::of_boolean(bool value, const Json_mark& mark) {
    Json_node node(Kind::BOOLEAN, mark);
    node.m_content.number = value ? 1 : 0;
    return node;
}

Json_node Json_node::of_integer(int64_t number, const Json_mark& mark) {
    Json_node node(Kind::INTEGER, mark);
    node.m_content.number = number;
    return node;
}

Json_node Json_node::of_text(Kind kind, std::string_view text, const Json_mark& mark) {
    Json_node node(kind, mark);
    node.m_size = static_cast<uint32_t>(text.size()) & LARGEST;
    node.m_content.text = text.data();
    return node;
}

Json_node Json_node::of_elements(Json_span<Json_node> elements, const Json_mark& mark) {
    Json_node node(Kind::LIST, mark);
    node.m_size = static_cast<uint32_t>(elements.size()) & LARGEST;
    node.m_content.elements = elements.begin();
    return node;
}

Json_node Json_node::of_members(Json_span<Json_member> members, const Json_mark& mark) {
    Json_node node(Kind::OBJECT, mark);
    node.m_size = static_cast<uint32_t>(members.size()) & LARGEST;
    node.m_content.members = members.begin();
    return node;
}

bool Json_node::is_same(const Json_node& other) const {
    return mark() == other.mark() && m_kind == other.m_kind && m_size == other.m_size &&
           m_stands_for_number == other.m_stands_for_number &&
           m_is_incomplete == other.m_is_incomplete &&
           std::memcmp(&m_content, &other.m_content, sizeof m_content) == 0;
}

std::string_view Json_storage::keep(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    void* const kept = std::memcpy(allocate(text.size(), 1), text.data(), text.size());
    return {static_cast<const char*>(kept), text.size()};
}

Json_span<Json_node> Json_storage::keep(const Json_node* first, size_t size) {
    if (size == 0) {
        return {nullptr, 0};
    }
    auto* const kept = static_cast<Json_node*>(allocate(size * sizeof *first, alignof(Json_node)));
    return {kept, static_cast<size_t>(std::uninitialized_copy_n(first, size, kept) - kept)};
}

Json_span<Json_member> Json_storage::keep(const Json_member* first, size_t size) {
    if (size == 0) {
        return {nullptr, 0};
    }
    auto* const kept =
        static_cast<Json_member*>(allocate(size * sizeof *first, alignof(Json_member)));
    return {kept, static_cast<size_t>(std::uninitialized_copy_n(first, size, kept) - kept)};
}

// A large content gets a piece of its own; the shared piece in use stays in use. The end of a piece is aligned for all
// types.
void* Json_storage::allocate(size_t bytes, size_t alignment) {
    if (bytes > PIECE_SIZE / 4) {
        m_pieces.push_back({std::unique_ptr<std::byte[]>(new std::byte[bytes]), bytes, false});
        return m_pieces.back().bytes.get();
    }
    m_left &= ~(alignment - 1);
    if (bytes > m_left) {
        m_pieces.push_back(
            {std::unique_ptr<std::byte[]>(new std::byte[PIECE_SIZE]), PIECE_SIZE, true});
        m_left = PIECE_SIZE;
        m_end = m_pieces.back().bytes.get() + PIECE_SIZE;
    }
    std::byte* const result = m_end - m_left;
    m_left -= bytes;
    return result;
}

size_t Json_storage::piece_of(const void* kept) const {
    const auto* const at = static_cast<const std::byte*>(kept);
    const std::less<> is_before;
    const auto found = std::find_if(m_pieces.begin(), m_pieces.end(), [&](const Piece& piece) {
        return !is_before(at, piece.bytes.get()) && is_before(at, piece.bytes.get() + piece.size);
    });
    return static_cast<size_t>(found - m_pieces.begin());
}

// Shared pieces between the two hold nothing else, since each is begun when the one before is full. A piece for one
// large content may have been made earlier, while a shared piece was being filled: it stays.
void Json_storage::release_between(const void* first, const void* last) {
    const size_t end = piece_of(last);
    if (end == m_pieces.size() || !m_pieces[end].is_shared) {
        return;
    }
    for (size_t number = piece_of(first) + 1; number < end; ++number) {
        if (m_pieces[number].is_shared) {
            m_pieces[number] = {nullptr, 0, false};
        }
    }
}

void Json_storage::release(const void* kept) {
    const size_t number = piece_of(kept);
    if (number < m_pieces.size() && !m_pieces[number].is_shared) {
        m_pieces[number] = {nullptr, 0, false};
    }
}

// Copies the texts of a document's values. A menu repeats a few names, types and formats thousands of times. So a text
// is not copied again if it equals the latest one with the same length, first and last character.
class Json_text_mover {
public:
    explicit Json_text_mover(Json_storage& storage) : m_storage(storage) {}

    void move_texts(Json_node& node) {
        switch (node.kind()) {
            case Kind::TEXT:
            case Kind::REAL:
                node.m_content.text = moved(node.text(), m_latest_texts);
                break;
            case Kind::LIST:
                for (const Json_node& element : node.elements()) {
                    move_texts(own(element));
                }
                break;
            case Kind::OBJECT:
                for (const Json_member& member : node.members()) {
                    own(member).m_name = moved(member.name(), m_latest_names);
                    move_texts(own(member).value);
                }
                break;
            default:
                break;
        }
    }

private:
    using Latest = std::array<std::string_view, 64>;

    // All values but the root are in the storage of the document, which is not constant.
    template <typename Item>
    static Item& own(const Item& item) {
        return const_cast<Item&>(item);
    }
    const char* moved(std::string_view text, Latest& latest) {
        if (text.empty()) {
            return nullptr;
        }
        const auto at = [text](size_t place) { return static_cast<unsigned char>(text[place]); };
        std::string_view& alike =
            latest[(text.size() * 7 + at(0) * size_t{5} + at(text.size() - 1)) % latest.size()];
        if (alike != text) {
            alike = m_storage.keep(text);
        }
        return alike.data();
    }

    Json_storage& m_storage;
    Latest m_latest_names;
    Latest m_latest_texts;
};

// The members of the elements are kept one after the other, with nothing else between them. The list itself is in the
// storage, which is not constant.
void Json_document::release_elements(const Json_node& list) {
    const Json_span<Json_node> elements = list.elements();
    if (elements.empty()) {
        return;
    }
    const Json_span<Json_member> first = elements[0].members();
    const Json_span<Json_member> last = elements[elements.size() - 1].members();
    const_cast<Json_node&>(list) = Json_node::of_elements({nullptr, 0}, list.mark());
    if (!first.empty() && !last.empty()) {
        m_storage.release_between(first.begin(), last.begin());
    }
    m_storage.release(elements.begin());
}

void Json_document::release_text() {
    Json_text_mover(m_texts).move_texts(m_root);
    std::string().swap(m_text);
}

Json_document::Json_document(const Source& source, std::string text, size_t most_values)
    : m_text(std::move(text)), m_lines(m_text), m_origin{&source, &m_lines, nullptr} {
    if (m_text.size() > Json_node::LARGEST) {
        throw Placed_error({&source, 1, 1, nullptr}, "the text is longer than any file");
    }
    const bool is_marked = m_text.compare(0, BYTE_ORDER_MARK.size(), BYTE_ORDER_MARK) == 0;
    rapidjson::InsituStringStream stream(m_text.data());
    stream.src_ += is_marked ? BYTE_ORDER_MARK.size() : 0;
    Builder builder(m_origin, m_text, stream, m_storage, m_names, most_values);
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, Json_allocator> reader;
    // The parser recurses only where the builder has accepted another level.
    const rapidjson::ParseResult result =
        reader.Parse<rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag>(stream,
                                                                                          builder);
    if (result.IsError()) {
        fail(m_origin, m_text, result);
    }
    if (stream.Tell() < m_text.size()) {
        const Json_mark mark{&m_origin, static_cast<uint32_t>(stream.Tell())};
        throw Placed_error(mark.place(), "unexpected zero byte");
    }
    m_root = builder.root();
    m_value_count = builder.value_count();
}

}  // namespace frontpanel
