// A JSON file as it was written: every value and every member's name knows its place.
#ifndef FRONTPANEL_BASE_JSON_DOCUMENT_H
#define FRONTPANEL_BASE_JSON_DOCUMENT_H

#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_base/problems.h>

namespace frontpanel {

struct Json_member;

struct Json_node {
    // WRONG is what would be something else but for a mistake that has been told.
    enum class Kind : uint8_t { NOTHING, BOOLEAN, INTEGER, REAL, TEXT, LIST, OBJECT, WRONG };

    Kind kind = Kind::NOTHING;
    bool boolean = false;
    // Of a TEXT: it stands for `number`, too, since an argument of a template is a text wherever it is used.
    bool is_number = false;
    bool is_incomplete = false;  // of a LIST: it lacks something that is wrong, which has been told
    int64_t number = 0;
    std::string text;
    std::vector<Json_node> elements;
    std::vector<Json_member> members;  // as they come in the file, one that comes twice included
    Place place{};

    // The first member of that name; null when there is none or the value is no object.
    const Json_node* member(const char* name) const;
};

struct Json_member {
    std::string name;
    Place place;  // of the name
    Json_node value;
};

// Parses the text of a file, whose `source` outlives the value. Placed_error when it is no JSON, or when its
// values are nested too deep to be a menu.
Json_node parse_json(const Source& source, const std::string& text);

}  // namespace frontpanel

#endif
