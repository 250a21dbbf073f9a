#include "topic_source.h"

#include <algorithm>
#include <array>
#include <optional>

#include <frontpanel_base/json_document.h>
#include <frontpanel_base/json_members.h>

namespace frontpanel {
namespace {

constexpr int LARGEST_QOS = 2;
constexpr std::size_t MOST_WORDS = 256;
constexpr std::size_t LONGEST_MEMBER = 200;
constexpr std::size_t LONGEST_QUOTED = 20;
constexpr std::size_t LONGEST_NUMBER = 64;
constexpr const char* BLANKS = " \t\r\n";

using Found_text = std::variant<std::string, No_value>;

std::string quoted(std::string_view text) {
    const bool is_long = text.size() > LONGEST_QUOTED;
    return "\"" + std::string(text.substr(0, LONGEST_QUOTED)) + (is_long ? "...\"" : "\"");
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(BLANKS), text.size());
    return text.substr(first, text.find_last_not_of(BLANKS) + 1 - first);
}

// "a.b" as "a" and "b".
std::vector<std::string> steps_of(const std::string& member) {
    std::vector<std::string> steps(1);
    for (const char c : member) {
        if (c == '.') {
            steps.emplace_back();
        } else {
            steps.back() += c;
        }
    }
    return steps;
}

std::string member_of(const Json_value& source, const char* name) {
    const auto value = source.find(name);
    if (!value) {
        return "";
    }
    std::string member = value->text_of_length(1, LONGEST_MEMBER);
    const std::vector<std::string> steps = steps_of(member);
    if (std::any_of(steps.begin(), steps.end(),
                    [](const std::string& step) { return step.empty(); })) {
        value->fail("expected names with a \".\" between them, found \"" + member + "\"");
    }
    return member;
}

std::vector<std::string> words_of(const Json_value& source) {
    std::vector<std::string> words;
    if (const auto list = source.find("words")) {
        for (const Json_value& item : list->some_items(MOST_WORDS, "words")) {
            std::string word = item.text();
            if (std::find(words.begin(), words.end(), word) != words.end()) {
                item.fail("\"" + word + "\" is there already");
            }
            words.push_back(std::move(word));
        }
    }
    return words;
}

void expect_plain(const Json_value& source, const char* reason,
                  std::initializer_list<const char*> names) {
    for (const char* const name : names) {
        if (const auto value = source.find(name)) {
            value->report("\"" + std::string(name) + "\" " + reason);
        }
    }
}

Found_text text_of(const Json_node& node, const std::string& member) {
    switch (node.kind()) {
        case Json_node::Kind::TEXT:
        case Json_node::Kind::REAL:
            return std::string(node.text());
        case Json_node::Kind::INTEGER:
            return std::to_string(node.integer().value_or(0));
        case Json_node::Kind::BOOLEAN:
            return std::string(node.boolean() ? "true" : "false");
        default:
            return No_value{"\"" + member + "\" is no number and no text"};
    }
}

Found_text member_in(const std::string& member, std::string_view message) {
    const Source file{"message", 0};
    try {
        const std::string text(message);
        const Json_document document(file, text);
        const Json_node* node = &document.root();
        for (const std::string& step : steps_of(member)) {
            node = node->member(step);
            if (node == nullptr) {
                return No_value{"the message has no member \"" + member + "\""};
            }
        }
        return text_of(*node, member);
    } catch (const Input_error&) {
        return No_value{"the message is no JSON text"};
    }
}

std::variant<Parameter_value, No_value> number_in(const Topic_source& source,
                                                  std::string_view text) {
    const std::string_view word = trimmed(text);
    if (!source.words.empty()) {
        const auto found = std::find(source.words.begin(), source.words.end(), word);
        if (found == source.words.end()) {
            return No_value{quoted(word) + " is none of the words"};
        }
        return Parameter_value(static_cast<std::int32_t>(found - source.words.begin()));
    }
    if (!source.member.empty() && (word == "true" || word == "false")) {
        return Parameter_value(word == "true" ? 1 : 0);
    }
    if (word.size() > LONGEST_NUMBER) {
        return No_value{"not a number: " + quoted(word)};
    }
    const Scaled_number number = source.scale.from_device(word);
    if (const auto* const reason = std::get_if<std::string>(&number)) {
        return No_value{*reason + ": " + quoted(word)};
    }
    return Parameter_value(std::get<std::int32_t>(number));
}

std::string json_text(const std::string& text) {
    constexpr std::array<char, 17> DIGITS{"0123456789abcdef"};
    constexpr unsigned BLANK = 0x20;
    constexpr unsigned HALF_BITS = 4;
    constexpr unsigned HALF = 15;
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < BLANK) {
            result += std::string("\\u00") + DIGITS[byte >> HALF_BITS] + DIGITS[byte & HALF];
            continue;
        }
        if (c == '"' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result + "\"";
}

std::string json_with(const std::string& member, const std::string& value) {
    std::string begin;
    std::string end;
    for (const std::string& step : steps_of(member)) {
        begin += "{" + json_text(step) + ":";
        end += "}";
    }
    return begin + value + end;
}

}  // namespace

std::vector<const char*> topic_members() {
    return {"topic", "member", "write", "write-member", "qos", "retain", "scale", "words"};
}

Topic_source topic_source_of(const Json_value& source, const Mqtt_settings& settings,
                             bool is_text) {
    Topic_source result;
    result.topic = topic_of(source.member("topic"));
    result.member = member_of(source, "member");
    result.qos = integer_or(source, "qos", 0, LARGEST_QOS, settings.qos);
    if (const auto write = source.find("write")) {
        result.write_topic = topic_of(*write);
        result.write_member = member_of(source, "write-member");
        result.is_retained = boolean_or(source, "retain", false);
    } else {
        expect_plain(source, "needs \"write\"", {"write-member", "retain"});
    }
    result.is_text = is_text;
    if (is_text) {
        expect_plain(source, "is for numbers", {"scale", "words"});
        return result;
    }
    result.words = words_of(source);
    if (!result.words.empty()) {
        expect_plain(source, "does not go with \"words\"", {"scale"});
    } else {
        result.scale = Scale::of(source);
    }
    return result;
}

std::variant<Parameter_value, No_value> value_in(const Topic_source& source,
                                                 std::string_view message) {
    if (message.size() > LARGEST_MESSAGE) {
        return No_value{"the message has more than 64 KiB"};
    }
    Found_text text = source.member.empty() ? Found_text(std::string(message))
                                            : member_in(source.member, message);
    if (const auto* const none = std::get_if<No_value>(&text)) {
        return *none;
    }
    std::string& found = std::get<std::string>(text);
    if (source.is_text) {
        return Parameter_value(std::move(found));
    }
    return number_in(source, found);
}

std::variant<std::string, No_value> message_for(const Topic_source& source,
                                                const Parameter_value& value) {
    std::string text;
    bool is_number = false;
    if (const auto* const number = std::get_if<std::int32_t>(&value)) {
        is_number = source.words.empty();
        if (!is_number &&
            (*number < 0 || static_cast<std::size_t>(*number) >= source.words.size())) {
            return No_value{std::to_string(*number) + " has no word"};
        }
        text = is_number ? source.scale.to_decimal(*number)
                         : source.words[static_cast<std::size_t>(*number)];
    } else {
        text = std::get<std::string>(value);
    }
    if (source.write_member.empty()) {
        return text;
    }
    return json_with(source.write_member, is_number ? text : json_text(text));
}

}  // namespace frontpanel
