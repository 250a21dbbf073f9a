// A value of a menu file with its place, so that its mistakes are reported there.
#ifndef FRONTPANEL_BASE_JSON_VALUE_H
#define FRONTPANEL_BASE_JSON_VALUE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <frontpanel_base/json_document.h>
#include <frontpanel_base/problems.h>

namespace frontpanel {

// Every operation throws Placed_error ("menu.json:3:17: expected ...") when the value is not of the kind that
// is asked for. The document and the problems outlive the values.
class Json_value {
public:
    Json_value(const Json_node& node, Problems& problems) : m_node(&node), m_problems(&problems) {}

    // A required member of an object; an optional one.
    Json_value member(const char* name) const;
    std::optional<Json_value> find(const char* name) const;
    // An object's members in the document's order; a duplicate is reported and left out.
    struct Member;
    std::vector<Member> members() const;
    // Reports any member that is not among `known`, and duplicates.
    void expect_members(const std::vector<const char*>& known) const;
    // The elements of a list.
    std::vector<Json_value> items() const;
    // The elements of a list that must hold 1 to `most`; `what` names them in the message.
    std::vector<Json_value> some_items(size_t most, const std::string& what) const;

    bool is_text() const;
    bool is_object() const;
    bool is_list() const;
    int64_t integer(int64_t min, int64_t max) const;
    bool boolean() const;
    // Printable ASCII: names that a file or a rule refers to.
    std::string text() const;
    // Any UTF-8 text without control characters, as a display shows it.
    std::string shown_text() const;
    // The same, but line ends are allowed, as in rules.
    std::string text_with_lines() const;
    std::string text_of_length(size_t min, size_t max) const;
    std::string shown_text_of_length(size_t min, size_t max) const;  // in bytes
    // The text, which must be one of `known`: its place among them.
    size_t choice(const std::vector<const char*>& known) const;

    // The value as a JSON text.
    std::string json() const;

    const Json_node& node() const { return *m_node; }
    Place place() const { return m_node->place(); }
    // The place in the file of a byte of the text, counted from 0; escapes count as they are usually written.
    Place place_in_text(size_t offset) const;
    // The same for several bytes, in ascending order.
    std::vector<Place> places_in_text(const std::vector<size_t>& offsets) const;
    // `fail` throws an error at this place, `report` only reports it, `warn` reports what is valid but probably a
    // mistake.
    [[noreturn]] void fail(const std::string& text) const;
    void report(const std::string& text) const;
    void warn(const std::string& text) const;

private:
    std::string of_length(std::string text, size_t min, size_t max) const;
    void expect_object() const;
    // Checks the value for `text`.
    std::string_view expect_printable() const;
    // Checks the text for `shown_text` and returns it.
    const std::string& expect_shown(const std::string& text) const;
    // Calls `work` for each member; reports duplicates and leaves them out.
    template <typename Work>
    void for_each_member(Work work) const;
    [[noreturn]] void fail_type(const char* expected) const;

    const Json_node* m_node;
    Problems* m_problems;
};

struct Json_value::Member {
    std::string name;
    Place place;  // of the name
    Json_value value;
};

}  // namespace frontpanel

#endif
