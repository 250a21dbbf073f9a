#include <frontpanel_menu/menu_document.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <frontpanel_base/json_value.h>
#include "file/placeholder.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;
using Kind = Json_node::Kind;

constexpr int64_t MOST_REPETITIONS = 1000;
constexpr int64_t LAST_COUNT = 1000000;
constexpr size_t DEEPEST_TEMPLATE = 16;
constexpr size_t DEEPEST_FILE = 16;
constexpr size_t MOST_VALUES = 500000;  // of the whole menu, written out
constexpr size_t COPY_COST = 10;        // of a copy of anything, in values
constexpr size_t LONGEST_NAME = 32;     // of a counter or an argument

bool is_placeholder_name(const std::string& name) {
    const auto found = find_placeholder("{" + name + "}", 0);
    return found && found->begin == 0 && found->is_plain && name.size() <= LONGEST_NAME;
}

// A member of that name that is a text: where names are free, it may be something else.
const Json_node* directive(const Json_node& node, const char* name) {
    const Json_node* const found = node.member(name);
    return found != nullptr && found->kind == Kind::TEXT ? found : nullptr;
}

std::string shown(const Json_node& value) {
    return value.kind == Kind::INTEGER ? std::to_string(value.number) : value.text;
}

// The text of an included file; what keeps it from being read is told at its name.
std::string text_of(const Json_node& name, const std::string& path) {
    try {
        return read_input_file(path);
    } catch (const Input_error& error) {
        throw Placed_error(name.place, error.what());
    }
}

// Takes a file from the list of those that are being read.
struct Inside {
    ~Inside() { files.pop_back(); }
    std::vector<std::string>& files;
};

Json_node number_node(int64_t number) {
    Json_node node;
    node.kind = Kind::INTEGER;
    node.number = number;
    return node;
}

// One name for each file, however it is reached. In a working folder that is gone it is the name as given.
std::string full_name_of(const fs::path& file) {
    std::error_code error;
    const fs::path absolute = fs::absolute(file, error);
    const fs::path full = error ? file : fs::weakly_canonical(absolute, error);
    return (error ? file : full).string();
}

}  // namespace

Menu_document::Menu_document(const std::string& file)
    : Menu_document(file, read_input_file(file)) {}

Menu_document::Menu_document(const std::string& file, const std::string& text) {
    m_root.kind = Kind::WRONG;  // until it is known better
    m_problems.attempt([&] { m_root = read(file, text); });
}

Json_node Menu_document::read(const std::string& file, const std::string& text) {
    const Source& source = m_sources.emplace_back(Source{file, m_sources.size()});
    Json_node written = parse_json(source, text);
    m_including.push_back(full_name_of(file));
    const auto templates =
        std::find_if(written.members.begin(), written.members.end(),
                     [](const Json_member& member) { return member.name == "templates"; });
    if (templates != written.members.end()) {
        m_templates_text = std::move(templates->value);
        written.members.erase(templates);
        load_templates(m_templates_text);
    }
    Json_node whole = expand(written, Scope());
    warn_of_unused_templates();
    return whole;
}

// An object of templates, or a list of such objects; any of them may be a file's.
void Menu_document::load_templates(const Json_node& templates) {
    m_problems.attempt([&] {
        const Json_value value(templates, m_problems);
        if (const Json_node* const file = directive(templates, "include")) {
            expect_members(templates, {"include"});
            in_file(*file, [this](const Json_node& content) { load_templates(content); });
        } else if (templates.kind == Kind::LIST) {
            for (const Json_node& element : templates.elements) {
                load_templates(element);
            }
        } else {
            value.members();
            for (const Json_member& member : templates.members) {
                m_problems.attempt([&] { load_template(member); });
            }
        }
    });
}

void Menu_document::load_template(const Json_member& member) {
    Template& added = m_templates[member.name];
    if (added.place.source != nullptr) {
        throw Placed_error(member.place, "template \"" + member.name + "\" is there already");
    }
    added.place = member.place;
    const Json_value value(member.value, m_problems);
    expect_members(member.value, {"arguments", "content"});
    if (const auto arguments = value.find("arguments")) {
        for (const Json_value& argument : arguments->items()) {
            added.arguments.push_back(argument.text());
            if (!is_placeholder_name(added.arguments.back())) {
                argument.fail("expected a name of letters, digits and '_'");
            }
        }
    }
    value.member("content").items();
    added.content = member.value.member("content");
}

void Menu_document::warn_of_unused_templates() {
    for (const auto& [name, written] : m_templates) {
        if (!written.is_used) {
            m_problems.warn(written.place,
                            "template \"" + name + "\" is not used, so its content is not checked");
        }
    }
}

void Menu_document::expect_members(const Json_node& node, const std::vector<const char*>& known) {
    Json_value(node, m_problems).expect_members(known);
}

void Menu_document::count(const Place& place, size_t values) {
    m_value_count += values;
    if (m_value_count > MOST_VALUES) {
        // Ends all work at once: there would be no end to what is wrong behind it.
        throw Input_errors({line_of(
            place, "the menu grows beyond " + std::to_string(MOST_VALUES) + " values here")});
    }
}

Json_node Menu_document::expand(const Json_node& node, const Scope& scope, bool is_rule) {
    count(node.place, 1);
    if (node.kind == Kind::OBJECT && directive(node, "include") != nullptr) {
        Json_node content;
        include(node, scope,
                [&](const Json_node& file) { content = expand(file, scope, is_rule); });
        return content;
    }
    if (node.kind == Kind::OBJECT) {
        return expand_members(node, scope);
    }
    Json_node result;
    result.kind = node.kind;
    result.boolean = node.boolean;
    result.number = node.number;
    result.place = node.place;
    result.place.copy = scope.copy;
    if (node.kind == Kind::TEXT) {
        const auto all = find_placeholder(node.text, 0);
        result.text = replaced(node, scope, is_rule);
        if (all && all->begin == 0 && all->end == node.text.size() &&
            scope.values.count(all->name) > 0 && scope.values.at(all->name).kind == Kind::INTEGER) {
            result.is_number = true;
            result.number = std::stoll(result.text);
        }
    }
    for (const Json_node& element : node.elements) {
        result.is_incomplete |=
            !m_problems.attempt([&] { expand_element(element, scope, result.elements); });
    }
    return result;
}

Json_node Menu_document::expand_members(const Json_node& node, const Scope& scope) {
    Json_node result;
    result.kind = Kind::OBJECT;
    result.place = node.place;
    result.place.copy = scope.copy;
    for (const Json_member& member : node.members) {
        Json_member& added = result.members.emplace_back();
        added.name = member.name;
        added.place = member.place;
        added.place.copy = scope.copy;
        added.value.kind = Kind::WRONG;  // until it is known better
        added.value.place = member.value.place;
        m_problems.attempt(
            [&] { added.value = expand(member.value, scope, member.name == "binding"); });
    }
    return result;
}

// An element of a list: what stands in its place.
void Menu_document::expand_element(const Json_node& node, const Scope& scope,
                                   std::vector<Json_node>& out) {
    if (node.kind == Kind::OBJECT && node.member("repeat") != nullptr) {
        repeat(node, scope, out);
    } else if (node.kind == Kind::OBJECT && directive(node, "template") != nullptr) {
        use_template(node, scope, out);
    } else if (node.kind == Kind::OBJECT && directive(node, "include") != nullptr) {
        include_elements(node, scope, out);
    } else {
        out.push_back(expand(node, scope));
    }
}

void Menu_document::repeat(const Json_node& node, const Scope& scope, std::vector<Json_node>& out) {
    Json_node once = node;
    once.members.erase(
        std::find_if(once.members.begin(), once.members.end(),
                     [](const Json_member& member) { return member.name == "repeat"; }));
    const Json_node written = expand(*node.member("repeat"), scope);
    const Json_value value(written, m_problems);
    value.expect_members({"counter", "from", "to"});
    const std::string counter = value.member("counter").text();
    if (!is_placeholder_name(counter)) {
        value.member("counter").fail("expected a name of letters, digits and '_'");
    }
    const int64_t from = value.member("from").integer(0, LAST_COUNT);
    const int64_t to = value.member("to").integer(from, from + MOST_REPETITIONS - 1);
    Scope inner = scope;
    if (!inner.values.emplace(counter, Json_node()).second) {
        value.member("counter").fail("\"" + counter + "\" stands for something else here");
    }
    for (int64_t i = from; i <= to; ++i) {
        count(node.place, COPY_COST);
        inner.values[counter] = number_node(i);
        set_copy(inner);
        expand_element(once, inner, out);
    }
}

void Menu_document::use_template(const Json_node& node, const Scope& scope,
                                 std::vector<Json_node>& out) {
    expect_members(node, {"template", "arguments"});
    const Json_node& name = *directive(node, "template");
    count(node.place, COPY_COST);
    const std::string title = replaced(name, scope, false);
    const auto found = m_templates.find(title);
    if (found == m_templates.end()) {
        throw Placed_error(name.place, "there is no template \"" + title + "\"");
    }
    found->second.is_used = true;
    if (found->second.content == nullptr) {
        throw Told_already();
    }
    Scope inner = scope_of_use(node, found->second, scope);
    if (inner.depth > DEEPEST_TEMPLATE) {
        throw Placed_error(name.place, "templates are used inside each other more than " +
                                           std::to_string(DEEPEST_TEMPLATE) + " deep");
    }
    inner.title = title;
    set_copy(inner);
    for (const Json_node& element : found->second.content->elements) {
        m_problems.attempt([&] { expand_element(element, inner, out); });
    }
}

// The arguments of a template are all that its placeholders can mean.
Menu_document::Scope Menu_document::scope_of_use(const Json_node& node, const Template& used,
                                                 const Scope& scope) {
    Scope inner;
    inner.depth = scope.depth + 1;
    const Json_node* const written = node.member("arguments");
    Json_node arguments;
    if (written == nullptr) {
        arguments.kind = Kind::OBJECT;
        arguments.place = node.place;
    } else {
        arguments = expand(*written, scope);
    }
    const Json_value value(arguments, m_problems);
    std::vector<const char*> names(used.arguments.size());
    std::transform(used.arguments.begin(), used.arguments.end(), names.begin(),
                   [](const std::string& name) { return name.c_str(); });
    value.expect_members(names);
    for (const std::string& name : used.arguments) {
        const Json_value argument = value.member(name.c_str());
        const Json_node& given = *arguments.member(name.c_str());
        if (given.kind != Kind::INTEGER && given.kind != Kind::TEXT) {
            argument.fail("expected a whole number or a text");
        }
        inner.values[name] = given.is_number ? number_node(given.number) : given;
    }
    return inner;
}

// What tells a copy apart from the others, for messages.
void Menu_document::set_copy(Scope& scope) {
    std::string text;
    for (const auto& [name, value] : scope.values) {
        text += (text.empty() ? "" : ", ") + name + " = " + shown(value);
    }
    if (!scope.title.empty()) {
        text = "in \"" + scope.title + "\"" + (text.empty() ? "" : " with ") + text;
    }
    scope.copy = text.empty() ? nullptr : &m_copies.emplace_back(text);
}

std::string Menu_document::replaced(const Json_node& text, const Scope& scope, bool is_rule) const {
    if (scope.copy == nullptr) {
        return text.text;
    }
    Place place = text.place;
    place.copy = scope.copy;
    std::string result;
    size_t done = 0;
    while (const auto found = find_placeholder(text.text, done)) {
        result += text.text.substr(done, found->begin - done);
        const auto value = scope.values.find(found->name);
        if (value == scope.values.end() && !is_rule) {
            throw Placed_error(place, "\"{" + found->name + "}\" stands for nothing here");
        }
        if (value == scope.values.end()) {
            result += text.text.substr(found->begin, found->end - found->begin);
        } else if (found->is_plain) {
            result += shown(value->second);
        } else if (value->second.kind == Kind::INTEGER) {
            result += std::to_string(value->second.number * found->factor + found->summand);
        } else {
            throw Placed_error(place, "\"" + found->name + "\" is no whole number here");
        }
        done = found->end;
    }
    return result + text.text.substr(done);
}

void Menu_document::include(const Json_node& node, const Scope& scope,
                            const std::function<void(const Json_node&)>& work) {
    const Json_node* const written = directive(node, "include");
    if (written == nullptr) {
        return;  // callers ask first
    }
    expect_members(node, {"include"});
    Json_node name = *written;
    name.text = replaced(name, scope, false);
    in_file(name, work);
}

// The elements of a list in a file take the place of the element that includes it.
void Menu_document::include_elements(const Json_node& node, const Scope& scope,
                                     std::vector<Json_node>& out) {
    include(node, scope, [&](const Json_node& file) {
        if (file.kind != Kind::LIST) {
            expand_element(file, scope, out);
        }
        for (const Json_node& element : file.elements) {
            m_problems.attempt([&] { expand_element(element, scope, out); });
        }
    });
}

// Does `work` on what a file holds, which is read once.
void Menu_document::in_file(const Json_node& name,
                            const std::function<void(const Json_node&)>& work) {
    const fs::path path =
        (fs::path(name.place.source->name).parent_path() / name.text).lexically_normal();
    std::error_code error;
    const std::string full_name = full_name_of(path);
    if (name.text.empty() || !fs::is_regular_file(path, error)) {
        throw Placed_error(name.place, "there is no file \"" + path.string() + "\"");
    }
    if (std::find(m_including.begin(), m_including.end(), full_name) != m_including.end()) {
        throw Placed_error(name.place, "\"" + path.string() + "\" includes itself");
    }
    if (m_including.size() > DEEPEST_FILE) {
        throw Placed_error(name.place, "files include each other more than " +
                                           std::to_string(DEEPEST_FILE) + " deep");
    }
    const auto [file, is_new] = m_files.emplace(full_name, Json_node());
    if (is_new) {
        file->second.kind = Kind::WRONG;
        const Source& source = m_sources.emplace_back(Source{path.string(), m_sources.size()});
        file->second = parse_json(source, text_of(name, path.string()));
    }
    if (file->second.kind == Kind::WRONG) {
        throw Told_already();
    }
    m_including.push_back(full_name);
    const Inside inside{m_including};
    work(file->second);
}

}  // namespace frontpanel
