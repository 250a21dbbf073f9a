// The text of a menu as a whole: files that include each other, with templates and repetitions written out.
// docs/menu-file.md describes both.
#ifndef FRONTPANEL_MENU_MENU_DOCUMENT_H
#define FRONTPANEL_MENU_MENU_DOCUMENT_H

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_base/problems.h>

namespace frontpanel {

class Menu_document {
public:
    // Reads a file with all that it includes. Mistakes in it, invalid JSON included, become problems of the document.
    // Input_error when the file cannot be read, Input_errors when its values grow beyond any menu.
    explicit Menu_document(const std::string& file);
    // The same from the text of a file: names of included files are relative to the folder of `file`.
    Menu_document(const std::string& file, const std::string& text);
    Menu_document(const Menu_document&) = delete;
    Menu_document& operator=(const Menu_document&) = delete;

    // The whole document; valid as long as the document lives. Where the file is no JSON, access to it throws, so
    // read it within `Problems::attempt`.
    Json_value root() { return {m_root, m_problems}; }
    // Whoever reads a part of the document reports here what is wrong with it.
    Problems& problems() { return m_problems; }

private:
    struct Template {
        const Json_node* content = nullptr;  // null when it is wrong
        std::vector<std::string> arguments;
        Place place{};
        bool is_used = false;
    };
    // What stands for the placeholders of a text.
    struct Scope {
        std::map<std::string, Json_node> values;  // INTEGER or TEXT
        std::string title;                        // of the template
        const std::string* copy = nullptr;        // for places
        size_t depth = 0;                         // of templates in templates
    };

    Json_node read(const std::string& file, const std::string& text);
    void load_templates(const Json_node& templates);
    void load_template(const Json_member& member);
    void warn_of_unused_templates();
    Json_node expand(const Json_node& node, const Scope& scope, bool is_rule = false);
    Json_node expand_members(const Json_node& node, const Scope& scope);
    void expand_element(const Json_node& node, const Scope& scope, std::vector<Json_node>& out);
    void repeat(const Json_node& node, const Scope& scope, std::vector<Json_node>& out);
    void use_template(const Json_node& node, const Scope& scope, std::vector<Json_node>& out);
    Scope scope_of_use(const Json_node& node, const Template& used, const Scope& scope);
    void set_copy(Scope& scope);
    void include(const Json_node& node, const Scope& scope,
                 const std::function<void(const Json_node&)>& work);
    void include_elements(const Json_node& node, const Scope& scope, std::vector<Json_node>& out);
    void in_file(const Json_node& name, const std::function<void(const Json_node&)>& work);
    std::string replaced(const Json_node& text, const Scope& scope, bool is_rule) const;
    void count(const Place& place, size_t values);
    void expect_members(const Json_node& node, const std::vector<const char*>& known);

    Problems m_problems;
    std::deque<Source> m_sources;
    std::deque<std::string> m_copies;
    std::map<std::string, Json_node> m_files;  // by their full names; WRONG for one that is
    std::vector<std::string> m_including;      // files inside each other
    Json_node m_templates_text;
    std::map<std::string, Template> m_templates;
    size_t m_value_count = 0;
    Json_node m_root;
};

}  // namespace frontpanel

#endif
