// A value of a JSON document that knows its place, so that whatever is wrong with it is told with its path.
#ifndef FRONTPANEL_PANEL_JSON_VALUE_H
#define FRONTPANEL_PANEL_JSON_VALUE_H

#include <rapidjson/document.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace panel {

// Parses the text of a file. Input_error with line and column ("menu.json:3:17: ...") when it is no JSON.
rapidjson::Document parse_json(const std::string& file, const std::string& text);

// Every operation throws Input_error ("menu.json: /menu/items/3/max: expected ...") when the value is not of
// the kind that is asked for. The document outlives the values.
class Json_value {
public:
    // The root of a document that was read from `file`.
    Json_value(std::string file, const rapidjson::Value& root);

    // An object's member that must be there; one that may be there.
    Json_value member(const char* name) const;
    std::optional<Json_value> find(const char* name) const;
    // The names of an object's members, in the document's order; a name that comes twice is refused.
    std::vector<std::string> names() const;
    // Refuses any member that is not among `known`.
    void expect_members(const std::vector<const char*>& known) const;
    // The elements of a list.
    std::vector<Json_value> items() const;

    bool is_text() const;
    int64_t integer(int64_t min, int64_t max) const;
    bool boolean() const;
    // Printable ASCII, since that is what the display shows.
    std::string text() const;
    std::string text_of_length(size_t min, size_t max) const;

    // The value as a JSON text.
    std::string json() const;

    // A line that says something about this value, with its place.
    std::string message(const std::string& text) const;
    // Throws that line as an Input_error.
    [[noreturn]] void fail(const std::string& text) const;

private:
    Json_value(std::string file, std::string path, const rapidjson::Value& value);
    [[noreturn]] void fail_type(const char* expected) const;

    std::string m_file;
    std::string m_path;
    const rapidjson::Value* m_value;
};

}  // namespace panel

#endif
