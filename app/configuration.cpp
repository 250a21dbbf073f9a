#include "configuration.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/nearest_name.h>

namespace frontpanel {
namespace {

// A character that no line has, so that the parser finds no comments: they are removed here, except within quotes.
constexpr char NO_COMMENT = '\x01';

bool is_control(char byte) {
    return (static_cast<unsigned char>(byte) < ' ' && byte != '\t') || byte == '\x7F';
}

bool is_quote(char byte) {
    return byte == '"' || byte == '\'';
}

// Where the comment of a line begins, outside quotes. A quote stands at the start of a value only: "it's" has none.
size_t comment_in(const std::string& line) {
    char quote = '\0';
    char before = '=';  // the last sign that is no blank
    for (size_t i = 0; i < line.size(); ++i) {
        const char byte = line[i];
        if (quote != '\0') {
            quote = byte == quote && line[i - 1] != '\\' ? '\0' : quote;
        } else if (byte == '#') {
            return i;
        } else if (is_quote(byte) && std::strchr("=,[", before) != nullptr) {
            quote = byte;
        }
        before = byte == ' ' || byte == '\t' ? before : byte;
    }
    if (quote != '\0') {
        throw Input_error(std::string("expected ") + quote + " at the end of the text");
    }
    return line.size();
}

// The line without its comment and the blanks around it.
std::string bare_line(const std::string& line) {
    if (std::any_of(line.begin(), line.end(), is_control)) {
        throw Input_error("control character");
    }
    std::string bare = CLI::detail::trim_copy(line);
    if (bare.empty() || bare.front() == '#' || bare.front() == ';') {
        return "";
    }
    bare.erase(comment_in(bare));
    return CLI::detail::rtrim(bare);
}

void check_form(const std::string& line) {
    const size_t equals = line.find('=');
    if (line.front() == '[' && line != "[default]") {
        throw Input_error("expected an option, found the section \"" + line + "\"");
    }
    if (equals == 0) {
        throw Input_error("expected the name of an option");
    }
    if (equals == std::string::npos) {
        return;
    }
    const std::string value = CLI::detail::trim_copy(line.substr(equals + 1));
    if (value.empty()) {
        throw Input_error("expected a value after \"=\"");
    }
    if (value.front() == '[' && value.back() != ']') {
        throw Input_error("expected \"]\" on the same line");
    }
}

// What the line holds; nothing for one without an option.
std::vector<CLI::ConfigItem> items_of(const std::string& line) {
    const std::string bare = bare_line(line);
    if (bare.empty()) {
        return {};
    }
    check_form(bare);
    CLI::ConfigTOML format;
    format.comment(NO_COMMENT);
    // The format skips lines of less than three characters.
    std::istringstream text(bare.size() < 3 ? bare + " =true" : bare);
    return format.from_config(text);
}

std::string hint_of_name(const CLI::App& app, const std::string& name) {
    Nearest_name nearest(name);
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_configurable()) {
            nearest.offer(option->get_lnames()[0]);
        }
    }
    return nearest.hint();
}

bool is_one_of(const std::string& text, std::initializer_list<const char*> words) {
    return std::find(words.begin(), words.end(), text) != words.end();
}

// The value that an option has which needs none, such as "true", or "table" of "dump"; empty when the text switches it
// off.
std::string flag_value(const CLI::Option& option, const std::string& text) {
    const std::string word = CLI::detail::to_lower(text);
    std::string usual = option.get_flag_value(option.get_lnames()[0], "");
    if (is_one_of(word, {"false", "no", "off", "0"})) {
        return "";
    }
    if (is_one_of(word, {"true", "yes", "on", "1"})) {
        return usual;
    }
    if (usual == "true") {
        throw Input_error(option.get_name() + ": expected true or false, found \"" + text + "\"");
    }
    return text;
}

class Configuration {
public:
    explicit Configuration(CLI::App& app) : m_app(app) {
        for (const CLI::Option* const option : app.get_options()) {
            if (option->count() > 0) {
                m_given.insert(option);
            }
        }
    }

    void take(const CLI::ConfigItem& item) {
        CLI::Option* const option = m_app.get_option_no_throw("--" + item.fullname());
        if (option == nullptr || !option->get_configurable()) {
            throw Input_error("unknown option \"" + item.fullname() + "\"" +
                              hint_of_name(m_app, item.fullname()));
        }
        const bool takes_several = option->get_items_expected_max() > 1;
        if (!m_named.insert(option).second && !takes_several) {
            throw Input_error("duplicate option \"" + item.name + "\"");
        }
        if (item.inputs.empty()) {
            throw Input_error("--" + item.name + ": expected a value");
        }
        if (item.inputs.size() > 1 && !takes_several) {
            throw Input_error("--" + item.name +
                              ": expected one value: quote a text with commas or blanks");
        }
        set(*option, item.inputs);
    }

private:
    bool is_on_command_line(const CLI::Option& option) const {
        if (m_given.count(&option) > 0) {
            return true;
        }
        const std::set<CLI::Option*> excluded = option.get_excludes();
        return std::any_of(excluded.begin(), excluded.end(),
                           [this](const CLI::Option* other) { return m_given.count(other) > 0; });
    }

    void check_excludes(const CLI::Option& option) const {
        for (const CLI::Option* const other : option.get_excludes()) {
            if (other->count() > 0) {
                throw Input_error(option.get_name() + " excludes " + other->get_name());
            }
        }
    }

    void set(CLI::Option& option, const std::vector<std::string>& values) {
        const bool is_flag = option.get_expected_min() == 0;
        const std::string of_flag = is_flag ? flag_value(option, values.front()) : "";
        if (is_flag && of_flag.empty()) {
            return;
        }
        if (is_on_command_line(option)) {
            return;
        }
        check_excludes(option);
        if (is_flag) {
            option.add_result(of_flag);
        } else {
            option.add_result(values);
        }
        option.run_callback();
    }

    CLI::App& m_app;
    std::set<const CLI::Option*> m_given;  // on the command line
    std::set<const CLI::Option*> m_named;  // in the file
};

// Some editors begin a file with the mark of UTF-8.
std::string without_mark(std::string text) {
    constexpr const char* MARK = "\xEF\xBB\xBF";
    return text.rfind(MARK, 0) == 0 ? text.substr(std::strlen(MARK)) : std::move(text);
}

}  // namespace

void configure(CLI::App& app, const std::string& file) {
    Configuration configuration(app);
    std::istringstream lines(without_mark(read_input_file(file)));
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        const std::string place = file + ":" + std::to_string(number) + ": ";
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        try {
            for (const CLI::ConfigItem& item : items_of(line)) {
                configuration.take(item);
            }
        } catch (const Input_error& error) {
            throw Input_error(place + error.what());
        } catch (const CLI::Error& error) {
            throw Input_error(place + error.what());
        }
    }
}

}  // namespace frontpanel
