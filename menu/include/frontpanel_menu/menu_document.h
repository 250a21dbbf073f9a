// The text of a menu as a whole: files that include each other, with templates and repetitions written out.
// docs/menu-file.md describes both.
#ifndef FRONTPANEL_MENU_MENU_DOCUMENT_H
#define FRONTPANEL_MENU_MENU_DOCUMENT_H

#include <sys/types.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_base/problems.h>

namespace frontpanel {

struct Placeholder;

class Menu_document {
public:
    // Reads a file and the files that it includes. Mistakes, including invalid JSON and exceeded limits, become
    // problems of the document. Input_error when the file cannot be read.
    explicit Menu_document(const std::string& file);
    // The same from the text of a file: names of included files are relative to the folder of `file`.
    Menu_document(const std::string& file, std::string text);
    Menu_document(const Menu_document&) = delete;
    Menu_document& operator=(const Menu_document&) = delete;

    // The whole document; valid as long as the document lives. If the file could not be read as a whole, access to it
    // throws, so read it within `Problems::attempt`.
    Json_value root() { return {m_root, m_problems}; }
    // The same, for access that reports no errors.
    const Json_node& node() const { return m_root; }
    // The file and the files that it includes, as far as they could be read.
    std::vector<std::string> files() const;
    // False when no object in these files has a member of that name; true when one may have it.
    bool may_have_member(std::string_view name) const;
    // Empties the list of the device's parameters, and releases its memory and the text of the file as far as possible.
    // Views of texts are invalid afterwards.
    void release_parameters();
    // For the errors that readers of the document find.
    Problems& problems() { return m_problems; }

private:
    struct Template {
        const Json_node* content = nullptr;  // null when it is wrong
        std::vector<std::string> arguments;
        Place place{};
        bool is_used = false;
    };
    // The values of placeholders.
    struct Scope {
        std::map<std::string, Json_node> values;  // INTEGER or TEXT
        std::map<std::string, bool*> named;       // set when a text names a counter
        std::string title;                        // of the template
        const std::string* copy = nullptr;        // for places
        size_t depth = 0;                         // of templates in templates
    };
    using File_id = std::pair<dev_t, ino_t>;
    struct File {
        std::string path;
        std::unique_ptr<Json_document> document;  // null when its error has been reported
    };

    bool is_written_out(const File& file) const;
    // The place in the file, marked as belonging to a copy; null: to no copy.
    Json_mark with_copy(const Json_mark& mark, const std::string* copy);
    Json_node with_copy(Json_node node, const std::string* copy);
    Json_node read(const std::string& file, std::string text);
    void load_templates(const Json_node& templates);
    void load_template(const Json_member& member);
    void warn_of_unused_templates();
    // The treatment of a placeholder that the scope lacks.
    enum class Unknown {
        REJECTED,
        NUMBER_KEPT,  // in lists of options: "slot{n}" is a pattern of numbered options
        KEPT          // in rules, where braces have another meaning
    };

    static Unknown unknown_in(std::string_view member);
    static bool stays(Unknown unknown, const Placeholder& placeholder);
    Json_node expand(const Json_node& node, const Scope& scope,
                     Unknown unknown = Unknown::REJECTED);
    Json_node expand_members(const Json_node& node, const Scope& scope);
    Json_node expand_elements(const Json_node& node, const Scope& scope, Unknown unknown);
    Json_node expand_text(const Json_node& node, const Scope& scope, Unknown unknown);
    // Appends the expansion of an element of a list to m_elements.
    void expand_element(const Json_node& node, const Scope& scope,
                        Unknown unknown = Unknown::REJECTED);
    void repeat(const Json_node& node, const Scope& scope);
    const Json_node& without_repeat(const Json_node& node);
    void use_template(const Json_node& node, const Scope& scope);
    Scope scope_of_use(const Json_node& node, const Template& used, const Scope& scope);
    void set_copy(Scope& scope);
    void include(const Json_node& node, const Scope& scope,
                 const std::function<void(const Json_node&)>& work);
    void include_elements(const Json_node& node, const Scope& scope);
    void in_file(const Json_node& name, const std::string& text,
                 const std::function<void(const Json_node&)>& work);
    File& file_of(const Json_node& name, const std::string& text);
    File* find_file(const Json_node& name, const std::string& path);
    std::unique_ptr<Json_document> parse(const Json_node& name, const std::string& path);
    std::string replaced(const Json_node& text, const Scope& scope, Unknown unknown);
    Json_node without_member(const Json_node& node, const char* name);
    void count(const Json_mark& mark, size_t values);
    void count_text(const Json_mark& mark, size_t bytes);
    void expect_members(const Json_node& node, const std::vector<const char*>& known);

    Problems m_problems;
    std::deque<Source> m_sources;
    std::deque<std::string> m_copies;
    std::map<std::pair<const Json_lines*, const std::string*>, Json_origin> m_origins;  // of copies
    const Json_origin* m_last_origin = nullptr;                                         // of these
    std::deque<File> m_files;
    std::map<File_id, File*> m_files_by_id;
    std::map<std::string, File*> m_paths;  // null where there is no file
    std::vector<const File*> m_including;  // files inside each other
    std::map<std::string, Template> m_templates;
    size_t m_searched = 0;                               // by all hints of a template
    std::map<const Json_member*, Json_node> m_repeated;  // by the members with "repeat"
    size_t m_value_count = 0;
    size_t m_text_bytes = 0;
    size_t m_file_values = 0;
    size_t m_file_bytes = 0;
    size_t m_depth = 0;  // of values in each other
    Json_storage m_storage;
    // Elements and members of values that are being expanded, those of inner values behind those of outer ones.
    std::vector<Json_node> m_elements;
    std::vector<Json_member> m_members;
    Json_node m_root;
};

}  // namespace frontpanel

#endif
