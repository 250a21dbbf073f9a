// A JSON file as it was written: every value and every member's name knows its place.
#ifndef FRONTPANEL_BASE_JSON_DOCUMENT_H
#define FRONTPANEL_BASE_JSON_DOCUMENT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_base/problems.h>

namespace frontpanel {

struct Json_member;

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

// A value. Cheap to copy: texts, elements and members belong to the document, or to the storage, that it came from.
// A menu has hundreds of thousands of values, so a node holds nothing twice.
class Json_node {
public:
    // WRONG is a value whose mistake has been reported. REAL is any number that is not an INTEGER.
    enum class Kind : uint8_t { NOTHING, BOOLEAN, INTEGER, REAL, TEXT, LIST, OBJECT, WRONG };

    Json_node() = default;
    Json_node(Kind kind, const Place& place) : m_place(place), m_kind(kind) {}
    static Json_node of_boolean(bool value, const Place& place);
    static Json_node of_integer(int64_t number, const Place& place);
    // A TEXT, or a REAL as it was written.
    static Json_node of_text(Kind kind, std::string_view text, const Place& place);
    static Json_node of_elements(Json_span<Json_node> elements, const Place& place);
    static Json_node of_members(Json_span<Json_member> members, const Place& place);

    Kind kind() const { return m_kind; }
    bool is(Kind kind) const { return m_kind == kind; }
    const Place& place() const { return m_place; }
    bool boolean() const { return m_kind == Kind::BOOLEAN && m_content.number != 0; }
    // Of an INTEGER, and of a TEXT that replaces a number: an argument of a template is a text wherever it is used.
    std::optional<int64_t> integer() const;
    // Empty, or without elements or members, unless the value is of that kind.
    std::string_view text() const;
    Json_span<Json_node> elements() const;
    // In the order of the file, duplicates included.
    Json_span<Json_member> members() const;
    // The first member of that name; null when there is none or the value is not an object.
    const Json_node* member(std::string_view name) const;
    // A LIST without an element whose error has been reported.
    bool is_incomplete() const { return m_is_incomplete; }

    void set_place(const Place& place) { m_place = place; }
    void set_incomplete() { m_is_incomplete = true; }
    void set_stands_for_number() { m_stands_for_number = true; }
    // Whether both are one value, at one place, with the same content in memory.
    bool is_same(const Json_node& other) const;

private:
    union Content {
        int64_t number = 0;
        const char* text;
        const Json_node* elements;
        const Json_member* members;
    };

    Place m_place{};
    Kind m_kind = Kind::NOTHING;
    bool m_stands_for_number = false;
    bool m_is_incomplete = false;
    uint32_t m_size = 0;  // of the text, the elements or the members
    Content m_content;
};

struct Json_member {
    std::string_view name;
    Place place;  // of the name
    Json_node value;
};

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

private:
    void* allocate(size_t bytes);

    std::vector<std::unique_ptr<std::byte[]>> m_pieces;
    size_t m_left = 0;  // behind m_next
    std::byte* m_next = nullptr;
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

private:
    std::string m_text;  // texts are decoded in place
    Json_storage m_storage;
    size_t m_value_count = 0;
    Json_node m_root;
};

}  // namespace frontpanel

#endif
