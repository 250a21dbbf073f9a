// A JSON file as it was written: every value and every member's name has its place in the file.
#ifndef FRONTPANEL_BASE_JSON_DOCUMENT_H
#define FRONTPANEL_BASE_JSON_DOCUMENT_H

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_base/numbers.h>
#include <frontpanel_base/problems.h>

namespace frontpanel {

class Json_member;

// Where the lines of a text begin. One thread at a time.
class Json_lines {
public:
    explicit Json_lines(std::string_view text);

    // Line and column of an offset; fast for offsets that follow each other.
    Place place_at(const Source& source, uint32_t offset) const;

private:
    std::vector<uint32_t> m_starts;  // of all lines but the first
    mutable size_t m_last = 0;       // the line found last, from 0
};

// What the values of a file, or of a copy of a part of it, have in common.
struct Json_origin {
    const Source* source;
    const Json_lines* lines;
    const std::string* copy;  // see `Place`
};

// A place whose line and column are worked out only when they are needed.
struct Json_mark {
    const Json_origin* origin = nullptr;  // null: nowhere
    uint32_t offset = 0;                  // in the text

    Place place() const;
    bool operator==(const Json_mark& other) const {
        return origin == other.origin && offset == other.offset;
    }
};

// Adjacent items that the span does not own.
template <typename Item>
class Json_span {
public:
    Json_span(const Item* first, size_t size) : m_first(first), m_size(size) {}

    const Item* begin() const { return m_first; }
    const Item* end() const { return m_first + m_size; }
    size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    const Item& operator[](size_t number) const { return m_first[number]; }

private:
    const Item* m_first;
    size_t m_size;
};

// A value. Cheap to copy: texts, elements and members belong to the document or the storage that it came from. A menu
// has hundreds of thousands of values, so a node is as small as possible.
class Json_node {
public:
    // WRONG is a value whose mistake has been reported. REAL is any number that is not an INTEGER.
    enum class Kind : uint8_t { NOTHING, BOOLEAN, INTEGER, REAL, TEXT, LIST, OBJECT, WRONG };
    // Bytes of a text, and elements and members.
    static constexpr uint32_t LARGEST = 0x7FFFFFF;

    Json_node() : Json_node(Kind::NOTHING, {}) {}
    // The origin outlives the node.
    Json_node(Kind kind, const Json_mark& mark)
        : m_origin(mark.origin),
          m_offset(mark.offset),
          m_size(0),
          m_kind(kind),
          m_stands_for_number(false),
          m_is_incomplete(false) {}
    static Json_node of_boolean(bool value, const Json_mark& mark);
    static Json_node of_integer(int64_t number, const Json_mark& mark);
    // A TEXT, or a REAL as it was written.
    static Json_node of_text(Kind kind, std::string_view text, const Json_mark& mark);
    static Json_node of_elements(Json_span<Json_node> elements, const Json_mark& mark);
    static Json_node of_members(Json_span<Json_member> members, const Json_mark& mark);

    Kind kind() const { return m_kind; }
    bool is(Kind kind) const { return m_kind == kind; }
    Json_mark mark() const { return {m_origin, m_offset}; }
    Place place() const { return mark().place(); }
    bool boolean() const { return m_kind == Kind::BOOLEAN && m_content.number != 0; }
    // Of an INTEGER, and of a TEXT that replaces a number: an argument of a template is a text wherever it is used.
    std::optional<int64_t> integer() const {
        return m_kind == Kind::TEXT && m_stands_for_number ? parse_number<int64_t>(text())
               : m_kind == Kind::INTEGER ? std::optional<int64_t>(m_content.number)
                                         : std::nullopt;
    }
    // Empty, or without elements or members, unless the value is of that kind.
    std::string_view text() const {
        const bool is_text = m_kind == Kind::TEXT || m_kind == Kind::REAL;
        return is_text ? std::string_view(m_content.text, m_size) : std::string_view();
    }
    Json_span<Json_node> elements() const {
        return m_kind == Kind::LIST ? Json_span<Json_node>(m_content.elements, m_size)
                                    : Json_span<Json_node>(nullptr, 0);
    }
    // In the order of the file, duplicates included.
    inline Json_span<Json_member> members() const;
    // The first member of that name; null when there is none or the value is not an object.
    inline const Json_node* member(std::string_view name) const;
    // A LIST without an element whose error has been reported.
    bool is_incomplete() const { return m_is_incomplete; }

    void set_mark(const Json_mark& mark) {
        m_origin = mark.origin;
        m_offset = mark.offset;
    }
    void set_incomplete() { m_is_incomplete = true; }
    void set_stands_for_number() { m_stands_for_number = true; }
    // Whether both are one value, at one place, with the same content in memory.
    bool is_same(const Json_node& other) const;

private:
    friend class Json_text_mover;

    union Content {
        int64_t number = 0;
        const char* text;
        const Json_node* elements;
        const Json_member* members;
    };

    static constexpr unsigned SIZE_BITS = 27;
    static_assert(LARGEST == (uint32_t{1} << SIZE_BITS) - 1);

    Content m_content;
    const Json_origin* m_origin = nullptr;
    uint32_t m_offset = 0;
    uint32_t m_size : SIZE_BITS;  // of the text, the elements or the members
    Kind m_kind : 3;
    bool m_stands_for_number : 1;
    bool m_is_incomplete : 1;
};

class Json_member {
public:
    Json_member() = default;
    // The text and the origin outlive the member.
    Json_member(std::string_view name, const Json_mark& mark, const Json_node& member_value)
        : value(member_value),
          m_name(name.data()),
          m_origin(mark.origin),
          m_size(static_cast<uint32_t>(name.size())),
          m_offset(mark.offset) {}

    std::string_view name() const { return {m_name, m_size}; }
    // Of the name.
    Json_mark mark() const { return {m_origin, m_offset}; }
    Place place() const { return mark().place(); }

    Json_node value;

private:
    friend class Json_text_mover;

    const char* m_name = nullptr;
    const Json_origin* m_origin = nullptr;
    uint32_t m_size = 0;
    uint32_t m_offset = 0;
};

inline Json_span<Json_member> Json_node::members() const {
    return m_kind == Kind::OBJECT ? Json_span<Json_member>(m_content.members, m_size)
                                  : Json_span<Json_member>(nullptr, 0);
}

// The members of an item often have names of equal length, but rarely with the same first letter.
inline const Json_node* Json_node::member(std::string_view name) const {
    for (const Json_member& candidate : members()) {
        const std::string_view other = candidate.name();
        if (other.size() == name.size() &&
            (name.empty() || (other.front() == name.front() && other == name))) {
            return &candidate.value;
        }
    }
    return nullptr;
}

// A number as a message shows it: the end of a long one is left out.
std::string shown_number(std::string_view number);

// Memory for what values refer to, in few large pieces that are released together.
class Json_storage {
public:
    Json_storage() = default;
    Json_storage(Json_storage&&) = default;
    Json_storage& operator=(Json_storage&&) = default;

    std::string_view keep(std::string_view text);
    Json_span<Json_node> keep(const Json_node* first, size_t size);
    Json_span<Json_member> keep(const Json_member* first, size_t size);
    // Releases what was kept after `first` and before `last`, except pieces that also hold other contents. Requires:
    // both were kept here, `first` before `last`.
    void release_between(const void* first, const void* last);
    // Releases a content, unless it shares a piece with other contents.
    void release(const void* kept);

private:
    struct Piece {
        std::unique_ptr<std::byte[]> bytes;
        size_t size;
        bool is_shared;  // by contents kept one after the other; else it holds one large content
    };

    void* allocate(size_t bytes, size_t alignment);
    // The number of the piece that holds `kept`; the number of pieces when it was not kept here.
    size_t piece_of(const void* kept) const;

    std::vector<Piece> m_pieces;  // in the order in which they were begun
    size_t m_left = 0;            // bytes left before m_end
    std::byte* m_end = nullptr;   // of the shared piece in use
};

// Which names the members of a document may have, so that a large document is not searched for a name that it lacks.
class Json_names {
public:
    void note(std::string_view name) { m_marks[mark_of(name)] = true; }
    // False when no member has the name; true when one may have it.
    bool may_have(std::string_view name) const { return m_marks[mark_of(name)]; }

private:
    static constexpr size_t MARKS = 1024;
    static size_t mark_of(std::string_view name) {
        const auto at = [name](size_t place) { return static_cast<unsigned char>(name[place]); };
        return name.empty() ? 0
                            : (name.size() * 61 + at(0) * size_t{7} + at(name.size() - 1)) % MARKS;
    }

    std::bitset<MARKS> m_marks;
};

class Json_document {
public:
    static constexpr size_t LONGEST_TEXT =
        size_t{64} * 1024;                         // of a text or a member's name, in bytes
    static constexpr size_t MOST_VALUES = 500000;  // of a menu

    // Parses the text of a file. `source` outlives the document. Placed_error when it is invalid JSON, or when its
    // values are nested too deep, too many or too long to be a menu.
    Json_document(const Source& source, std::string text, size_t most_values = MOST_VALUES);
    Json_document(const Json_document&) = delete;
    Json_document& operator=(const Json_document&) = delete;

    // Valid as long as the document.
    const Json_node& root() const { return m_root; }
    size_t value_count() const { return m_value_count; }
    const Json_names& names() const { return m_names; }
    // Empties a list of this document and releases most of the memory of its elements. Requires: they are not used any
    // more.
    void release_elements(const Json_node& list);
    // Releases the text of the file. Copies the parts that the values still need, equal texts usually once. Makes
    // earlier views of texts and names invalid; values stay where they are.
    void release_text();

private:
    std::string m_text;  // texts are decoded in place
    Json_lines m_lines;  // as they were before
    Json_origin m_origin;
    Json_storage m_storage;
    Json_storage m_texts;  // instead of m_text
    Json_names m_names;
    size_t m_value_count = 0;
    Json_node m_root;
};

}  // namespace frontpanel

#endif
