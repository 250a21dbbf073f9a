#include <frontpanel_menu/menu_document.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include <frontpanel_base/json_value.h>
#include <frontpanel_base/nearest_name.h>
#include "file/option_names.h"
#include "file/placeholder.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;
using Kind = Json_node::Kind;

constexpr int64_t MOST_REPETITIONS = 1000;
constexpr int64_t LAST_COUNT = 1000000;
constexpr size_t DEEPEST_TEMPLATE = 16;
constexpr size_t DEEPEST_FILE = 16;
constexpr size_t DEEPEST_VALUE = 100;  // written out, since values are handled by recursion
constexpr size_t MOST_VALUES =
    Json_document::MOST_VALUES;  // of all files, and of the menu written out
constexpr size_t MOST_BYTES =
    size_t{16} * 1024 * 1024;  // of all files, and of the texts written out
constexpr size_t LONGEST_TEXT = Json_document::LONGEST_TEXT;
constexpr size_t COPY_COST = 10;     // of a copy of anything, in values
constexpr size_t FILE_COST = 250;    // of finding a file, in values
constexpr size_t LONGEST_NAME = 32;  // of a counter or an argument
constexpr size_t LONGEST_FILE_NAME = 255;
constexpr size_t MOST_ARGUMENTS = 64;
constexpr size_t LONGEST_SHOWN = 200;  // of the arguments that identify a copy

bool is_placeholder_name(const std::string& name) {
    const auto found = find_placeholder("{" + name + "}", 0);
    return found && found->begin == 0 && found->is_plain && name.size() <= LONGEST_NAME;
}

// A member of that name that is a text: where names are free, it may be something else.
const Json_node* directive(const Json_node& node, const char* name) {
    const Json_node* const found = node.member(name);
    return found != nullptr && found->is(Kind::TEXT) ? found : nullptr;
}

std::string shown(const Json_node& value) {
    return value.is(Kind::INTEGER) ? std::to_string(value.integer().value_or(0))
                                   : std::string(value.text());
}

std::string shortened(std::string text) {
    if (text.size() > LONGEST_SHOWN) {
        text.replace(LONGEST_SHOWN, std::string::npos, "...");
    }
    return text;
}

// The text of an included file; an error of reading it is reported at its name.
std::string text_of(const Json_node& name, const std::string& path) {
    try {
        return read_input_file(path);
    } catch (const Input_error& error) {
        throw Placed_error(name.place(), error.what());
    }
}

// Takes a file from the list of those that are being read.
template <typename File>
struct Inside {
    ~Inside() { files.pop_back(); }
    std::vector<const File*>& files;
};

int64_t calculated(const Placeholder& placeholder, int64_t number, const Json_mark& mark) {
    int64_t product = 0;
    int64_t sum = 0;
    if (placeholder.is_too_large || __builtin_mul_overflow(number, placeholder.factor, &product) ||
        __builtin_add_overflow(product, placeholder.summand, &sum)) {
        throw Placed_error(mark.place(), "the number of \"" + placeholder.text +
                                             "\" is too large, with " + placeholder.name + " = " +
                                             std::to_string(number));
    }
    return sum;
}

bool has_copy(const Json_mark& mark, const std::string* copy) {
    return mark.origin == nullptr || mark.origin->copy == copy;
}

}  // namespace

Menu_document::Menu_document(const std::string& file)
    : Menu_document(file, read_input_file(file)) {}

Menu_document::Menu_document(const std::string& file, std::string text) {
    m_root = Json_node(Kind::WRONG, {});  // until it is known better
    m_problems.attempt([&] { m_root = read(file, std::move(text)); });
}

std::vector<std::string> Menu_document::files() const {
    std::vector<std::string> files;
    for (const File& file : m_files) {
        files.push_back(file.path);
    }
    return files;
}

Json_node Menu_document::read(const std::string& file, std::string text) {
    const Source& source = m_sources.emplace_back(Source{file, m_sources.size()});
    m_file_bytes = text.size();
    File& main_file =
        m_files.emplace_back(File{file, std::make_unique<Json_document>(source, std::move(text))});
    m_file_values = main_file.document->value_count();
    struct stat status {};
    if (stat(file.c_str(), &status) == 0) {
        m_files_by_id[{status.st_dev, status.st_ino}] = &main_file;
    }
    m_including.push_back(&main_file);
    Json_node written = main_file.document->root();
    if (const Json_node* const templates = written.member("templates")) {
        load_templates(*templates);
        written = without_member(written, "templates");
    }
    Json_node whole = is_written_out(main_file) ? written : expand(written, Scope());
    std::vector<Json_node>().swap(m_elements);
    std::vector<Json_member>().swap(m_members);
    warn_of_unused_templates();
    return whole;
}

// Expanding such a menu would change nothing, and would exceed no limit: the parser has checked the same ones.
bool Menu_document::is_written_out(const File& file) const {
    const Json_names& names = file.document->names();
    return m_file_bytes <= MOST_BYTES && !names.may_have("templates") &&
           !names.may_have("template") && !names.may_have("repeat") && !names.may_have("include");
}

void Menu_document::release_parameters() {
    const Json_node* const device = m_root.member("device");
    const Json_node* const list = device != nullptr ? device->member("parameters") : nullptr;
    if (list == nullptr || !is_written_out(m_files.front())) {
        return;
    }
    Json_document& document = *m_files.front().document;
    document.release_elements(*list);
    document.release_text();
    m_root = document.root();
}

bool Menu_document::may_have_member(std::string_view name) const {
    return std::any_of(m_files.begin(), m_files.end(), [name](const File& file) {
        return file.document != nullptr && file.document->names().may_have(name);
    });
}

// Values of one copy follow each other.
Json_mark Menu_document::with_copy(const Json_mark& mark, const std::string* copy) {
    if (has_copy(mark, copy)) {
        return mark;
    }
    const Json_lines* const lines = mark.origin->lines;
    if (m_last_origin == nullptr || m_last_origin->lines != lines || m_last_origin->copy != copy) {
        m_last_origin =
            &m_origins.try_emplace({lines, copy}, Json_origin{mark.origin->source, lines, copy})
                 .first->second;
    }
    return {m_last_origin, mark.offset};
}

Json_node Menu_document::with_copy(Json_node node, const std::string* copy) {
    node.set_mark(with_copy(node.mark(), copy));
    return node;
}

// An object of templates, or a list of such objects; any of them may be a file's.
void Menu_document::load_templates(const Json_node& templates) {
    m_problems.attempt([&] {
        count(templates.mark(), 1);
        const Json_value value(templates, m_problems);
        if (const Json_node* const file = directive(templates, "include")) {
            count(templates.mark(), COPY_COST);
            expect_members(templates, {"include"});
            in_file(*file, std::string(file->text()),
                    [this](const Json_node& content) { load_templates(content); });
        } else if (templates.is(Kind::LIST)) {
            for (const Json_node& element : templates.elements()) {
                load_templates(element);
            }
        } else {
            (void)value.members();  // reports duplicates
            for (const Json_member& member : templates.members()) {
                m_problems.attempt([&] { load_template(member); });
            }
        }
    });
}

void Menu_document::load_template(const Json_member& member) {
    count(member.mark(), 1);
    const std::string title(member.name());
    Template& added = m_templates[title];
    if (added.place.source != nullptr) {
        throw Placed_error(member.place(), "duplicate template \"" + title + "\"");
    }
    added.place = member.place();
    const Json_value value(member.value, m_problems);
    expect_members(member.value, {"arguments", "content"});
    if (const auto arguments = value.find("arguments")) {
        const std::vector<Json_value> names = arguments->items();
        if (names.size() > MOST_ARGUMENTS) {
            arguments->fail("expected at most " + std::to_string(MOST_ARGUMENTS) +
                            " arguments, found " + std::to_string(names.size()));
        }
        for (const Json_value& argument : names) {
            added.arguments.push_back(argument.text());
            if (!is_placeholder_name(added.arguments.back())) {
                argument.fail("expected a name of letters, digits and '_'");
            }
        }
    }
    (void)value.member("content").items();
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

// What has been done, whether anything comes of it or not.
void Menu_document::count(const Json_mark& mark, size_t values) {
    m_value_count += values;
    if (m_value_count > MOST_VALUES) {
        m_problems.end(mark.place(),
                       "the menu grows beyond " + std::to_string(MOST_VALUES) + " values here");
    }
}

void Menu_document::count_text(const Json_mark& mark, size_t bytes) {
    m_text_bytes += bytes;
    if (m_text_bytes > MOST_BYTES) {
        m_problems.end(mark.place(), "the texts of the menu grow beyond " +
                                         std::to_string(MOST_BYTES) + " bytes here");
    }
}

Json_node Menu_document::without_member(const Json_node& node, const char* name) {
    std::vector<Json_member> rest;
    rest.reserve(node.members().size());
    bool is_found = false;
    for (const Json_member& member : node.members()) {
        if (is_found || member.name() != name) {
            rest.push_back(member);
        } else {
            is_found = true;
        }
    }
    return Json_node::of_members(m_storage.keep(rest.data(), rest.size()), node.mark());
}

Menu_document::Unknown Menu_document::unknown_in(std::string_view member) {
    return member == "binding"   ? Unknown::KEPT
           : member == "options" ? Unknown::NUMBER_KEPT
                                 : Unknown::REJECTED;
}

bool Menu_document::stays(Unknown unknown, const Placeholder& placeholder) {
    return unknown == Unknown::KEPT ||
           (unknown == Unknown::NUMBER_KEPT && placeholder.text == Option_names::NUMBER);
}

Json_node Menu_document::expand(const Json_node& node, const Scope& scope, Unknown unknown) {
    count(node.mark(), 1);
    if (node.is(Kind::OBJECT) && directive(node, "include") != nullptr) {
        Json_node content;
        include(node, scope,
                [&](const Json_node& file) { content = expand(file, scope, unknown); });
        return content;
    }
    if (node.is(Kind::TEXT)) {
        return expand_text(node, scope, unknown);
    }
    if (!node.is(Kind::OBJECT) && !node.is(Kind::LIST)) {
        return with_copy(node, scope.copy);
    }
    if (m_depth == DEEPEST_VALUE) {
        m_problems.end(with_copy(node.mark(), scope.copy).place(),
                       "values are nested more than " + std::to_string(DEEPEST_VALUE) + " deep");
    }
    ++m_depth;
    const Json_node result =
        node.is(Kind::OBJECT) ? expand_members(node, scope) : expand_elements(node, scope, unknown);
    --m_depth;
    return result;
}

Json_node Menu_document::expand_text(const Json_node& node, const Scope& scope, Unknown unknown) {
    if (scope.copy == nullptr) {
        count_text(node.mark(), node.text().size());
        return node;
    }
    const std::string written(node.text());
    const auto first = find_placeholder(written, 0);
    const Json_mark mark = with_copy(node.mark(), scope.copy);
    if (!first) {
        count_text(mark, written.size());
        return with_copy(node, scope.copy);
    }
    const std::string text = replaced(node, scope, unknown);
    count_text(mark, text.size());
    Json_node result = Json_node::of_text(Kind::TEXT, m_storage.keep(text), mark);
    const auto value = scope.values.find(first->name);
    if (first->begin == 0 && first->end == written.size() && value != scope.values.end() &&
        value->second.is(Kind::INTEGER)) {
        result.set_stands_for_number();
    }
    return result;
}

// What stays as it is written stays where it is.
Json_node Menu_document::expand_elements(const Json_node& node, const Scope& scope,
                                         Unknown unknown) {
    const size_t start = m_elements.size();
    bool is_incomplete = false;
    for (const Json_node& element : node.elements()) {
        is_incomplete |= !m_problems.attempt([&] { expand_element(element, scope, unknown); });
    }
    const Json_span<Json_node> added(m_elements.data() + start, m_elements.size() - start);
    Json_node result = node;
    if (scope.copy != nullptr || added.size() != node.elements().size() ||
        !std::equal(added.begin(), added.end(), node.elements().begin(),
                    [](const Json_node& a, const Json_node& b) { return a.is_same(b); })) {
        result = Json_node::of_elements(m_storage.keep(added.begin(), added.size()),
                                        with_copy(node.mark(), scope.copy));
    }
    if (is_incomplete) {
        result.set_incomplete();
    }
    m_elements.resize(start);
    return result;
}

Json_node Menu_document::expand_members(const Json_node& node, const Scope& scope) {
    const size_t start = m_members.size();
    bool is_changed = scope.copy != nullptr;
    for (const Json_member& member : node.members()) {
        const Json_mark mark = with_copy(member.mark(), scope.copy);
        count_text(mark, member.name().size());
        Json_node value(Kind::WRONG, member.value.mark());  // until it is known better
        m_problems.attempt([&] { value = expand(member.value, scope, unknown_in(member.name())); });
        is_changed = is_changed || !value.is_same(member.value);
        m_members.emplace_back(member.name(), mark, value);
    }
    const size_t size = m_members.size() - start;
    const Json_node result =
        is_changed ? Json_node::of_members(m_storage.keep(m_members.data() + start, size),
                                           with_copy(node.mark(), scope.copy))
                   : node;
    m_members.resize(start);
    return result;
}

void Menu_document::expand_element(const Json_node& node, const Scope& scope, Unknown unknown) {
    if (node.member("repeat") != nullptr) {
        repeat(node, scope);
    } else if (directive(node, "template") != nullptr) {
        use_template(node, scope);
    } else if (directive(node, "include") != nullptr) {
        include_elements(node, scope);
    } else {
        const Json_node element = expand(node, scope, unknown);
        m_elements.push_back(element);
    }
}

// An element as it is repeated.
const Json_node& Menu_document::without_repeat(const Json_node& node) {
    const auto [found, is_new] = m_repeated.emplace(node.members().begin(), Json_node());
    if (is_new) {
        found->second = without_member(node, "repeat");
    }
    if (const Json_node* const again = found->second.member("repeat")) {
        throw Placed_error(again->place(), "duplicate member \"repeat\"");
    }
    return found->second;
}

void Menu_document::repeat(const Json_node& node, const Scope& scope) {
    count(node.mark(), 1);
    const Json_node& once = without_repeat(node);
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
        value.member("counter").fail("\"" + counter + "\" is already in use here");
    }
    bool is_named = false;
    inner.named[counter] = &is_named;
    for (int64_t i = from; i <= to; ++i) {
        count(node.mark(), COPY_COST + inner.values.size());
        inner.values[counter] = Json_node::of_integer(i, node.mark());
        set_copy(inner);
        expand_element(once, inner);
    }
    if (!is_named) {
        value.member("counter").warn("nothing that is repeated names \"{" + counter + "}\"" +
                                     (to > from ? ", so that all copies are the same" : ""));
    }
}

void Menu_document::use_template(const Json_node& node, const Scope& scope) {
    count(node.mark(), COPY_COST + node.members().size());
    expect_members(node, {"template", "arguments"});
    const Json_node& name = *directive(node, "template");
    const std::string title = replaced(name, scope, Unknown::REJECTED);
    const auto found = m_templates.find(title);
    if (found == m_templates.end()) {
        Nearest_name nearest(title);
        for (const auto& [known, written] : m_templates) {
            if (!offer_within_bounds(nearest, known, m_searched)) {
                break;
            }
        }
        throw Placed_error(name.place(), "there is no template \"" + title + "\"" + nearest.hint());
    }
    found->second.is_used = true;
    if (found->second.content == nullptr) {
        throw Told_already();
    }
    Scope inner = scope_of_use(node, found->second, scope);
    if (inner.depth > DEEPEST_TEMPLATE) {
        throw Placed_error(name.place(), "templates are used inside each other more than " +
                                             std::to_string(DEEPEST_TEMPLATE) + " deep");
    }
    inner.title = title;
    set_copy(inner);
    for (const Json_node& element : found->second.content->elements()) {
        m_problems.attempt([&] {
            count(element.mark(), 1);
            expand_element(element, inner);
        });
    }
}

// The arguments of a template are all that its placeholders can mean.
Menu_document::Scope Menu_document::scope_of_use(const Json_node& node, const Template& used,
                                                 const Scope& scope) {
    Scope inner;
    inner.depth = scope.depth + 1;
    const Json_node* const written = node.member("arguments");
    const Json_node arguments =
        written == nullptr ? Json_node(Kind::OBJECT, node.mark()) : expand(*written, scope);
    const Json_value value(arguments, m_problems);
    std::vector<const char*> names(used.arguments.size());
    std::transform(used.arguments.begin(), used.arguments.end(), names.begin(),
                   [](const std::string& name) { return name.c_str(); });
    value.expect_members(names);
    for (const std::string& name : used.arguments) {
        const Json_value argument = value.member(name.c_str());
        const Json_node* const given = arguments.member(name);
        if (given == nullptr || (!given->is(Kind::INTEGER) && !given->is(Kind::TEXT))) {
            argument.fail("expected a whole number or a text");
        }
        const std::optional<int64_t> number = given->integer();
        inner.values[name] = number ? Json_node::of_integer(*number, given->mark()) : *given;
    }
    return inner;
}

// What identifies a copy in messages.
void Menu_document::set_copy(Scope& scope) {
    std::string text;
    for (const auto& [name, value] : scope.values) {
        if (text.size() < LONGEST_SHOWN) {
            text += (text.empty() ? "" : ", ") + name + " = " + shortened(shown(value));
        }
    }
    if (!scope.title.empty()) {
        text = "in \"" + shortened(scope.title) + "\"" + (text.empty() ? "" : " with ") + text;
    }
    scope.copy = text.empty() ? nullptr : &m_copies.emplace_back(shortened(std::move(text)));
}

std::string Menu_document::replaced(const Json_node& text, const Scope& scope, Unknown unknown) {
    std::string written(text.text());
    if (scope.copy == nullptr) {
        return written;
    }
    const Json_mark mark = with_copy(text.mark(), scope.copy);
    std::string result;
    size_t done = 0;
    while (const auto found = find_placeholder(written, done)) {
        result.append(written, done, found->begin - done);
        const auto value = scope.values.find(found->name);
        const auto named = scope.named.find(found->name);
        if (named != scope.named.end()) {
            *named->second = true;
        }
        if (value == scope.values.end() && !stays(unknown, *found)) {
            throw Placed_error(mark.place(), "\"{" + found->name + "}\" is unknown here");
        }
        if (value == scope.values.end()) {
            result.append(written, found->begin, found->end - found->begin);
        } else if (found->is_plain) {
            result += shown(value->second);
        } else if (const auto number = value->second.integer()) {
            result += std::to_string(calculated(*found, *number, mark));
        } else {
            throw Placed_error(mark.place(), "\"" + found->name + "\" is not a whole number here");
        }
        done = found->end;
        if (result.size() > LONGEST_TEXT) {
            break;
        }
    }
    result.append(written, done, std::string::npos);
    if (result.size() > LONGEST_TEXT) {
        throw Placed_error(mark.place(),
                           "the text grows beyond " + std::to_string(LONGEST_TEXT) + " bytes here");
    }
    return result;
}

void Menu_document::include(const Json_node& node, const Scope& scope,
                            const std::function<void(const Json_node&)>& work) {
    const Json_node* const written = directive(node, "include");
    if (written == nullptr) {
        return;  // callers ask first
    }
    count(node.mark(), COPY_COST + node.members().size());
    expect_members(node, {"include"});
    in_file(*written, replaced(*written, scope, Unknown::REJECTED), work);
}

// The elements of a list in a file take the place of the element that includes it.
void Menu_document::include_elements(const Json_node& node, const Scope& scope) {
    include(node, scope, [&](const Json_node& file) {
        if (!file.is(Kind::LIST)) {
            expand_element(file, scope);
        }
        for (const Json_node& element : file.elements()) {
            m_problems.attempt([&] {
                count(element.mark(), 1);
                expand_element(element, scope);
            });
        }
    });
}

// Does `work` on what a file holds, which is read once.
void Menu_document::in_file(const Json_node& name, const std::string& text,
                            const std::function<void(const Json_node&)>& work) {
    File& file = file_of(name, text);
    if (std::find(m_including.begin(), m_including.end(), &file) != m_including.end()) {
        throw Placed_error(name.place(), "\"" + file.path + "\" includes itself");
    }
    if (m_including.size() > DEEPEST_FILE) {
        throw Placed_error(name.place(), "files include each other more than " +
                                             std::to_string(DEEPEST_FILE) + " deep");
    }
    if (file.document == nullptr) {
        throw Told_already();
    }
    m_including.push_back(&file);
    const Inside<File> inside{m_including};
    work(file.document->root());
}

Menu_document::File& Menu_document::file_of(const Json_node& name, const std::string& text) {
    if (text.empty() || text.size() > LONGEST_FILE_NAME) {
        throw Placed_error(name.place(), "expected a file name of 1 to " +
                                             std::to_string(LONGEST_FILE_NAME) + " bytes, found " +
                                             std::to_string(text.size()));
    }
    const std::string path =
        (fs::path(name.place().source->name).parent_path() / text).lexically_normal().string();
    const auto [known, is_new] = m_paths.emplace(path, nullptr);
    if (is_new) {
        count(name.mark(), FILE_COST);
        known->second = find_file(name, path);
    }
    if (known->second == nullptr) {
        throw Placed_error(name.place(), "there is no file \"" + path + "\"");
    }
    return *known->second;
}

// Null when there is none. A file is the same under each of its names.
Menu_document::File* Menu_document::find_file(const Json_node& name, const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return nullptr;
    }
    File*& file = m_files_by_id[{status.st_dev, status.st_ino}];
    if (file == nullptr) {
        file = &m_files.emplace_back(File{path, nullptr});
        m_problems.attempt([&] { file->document = parse(name, path); });
    }
    return file;
}

std::unique_ptr<Json_document> Menu_document::parse(const Json_node& name,
                                                    const std::string& path) {
    std::string text = text_of(name, path);
    m_file_bytes += text.size();
    if (m_file_bytes > MOST_BYTES) {
        m_problems.end(name.place(), "the files of the menu are larger than " +
                                         std::to_string(MOST_BYTES) + " bytes with this one");
    }
    const Source& source = m_sources.emplace_back(Source{path, m_sources.size()});
    auto document = std::make_unique<Json_document>(source, std::move(text));
    m_file_values += document->value_count();
    if (m_file_values > MOST_VALUES) {
        m_problems.end(name.place(), "the files of the menu have more than " +
                                         std::to_string(MOST_VALUES) + " values with this one");
    }
    return document;
}

}  // namespace frontpanel
