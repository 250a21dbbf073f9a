#include "topic_source.h"

#include <algorithm>
#include <utility>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_base/json_members.h>
#include <frontpanel_base/text_bytes.h>

namespace frontpanel {
namespace {

constexpr int LARGEST_QOS = 2;
constexpr std::size_t MOST_WORDS = 256;
constexpr std::size_t LONGEST_QUOTED = 20;
constexpr std::size_t LONGEST_NUMBER = 64;
constexpr const char* BLANKS = " \t\r\n";
constexpr const char* LINE_END = "\r\n";

using Found_text = std::variant<std::string, No_value>;

std::string quoted(std::string_view text) {
    return quoted_beginning(text, LONGEST_QUOTED);
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(BLANKS), text.size());
    return text.substr(first, text.find_last_not_of(BLANKS) + 1 - first);
}

Message_member member_of(const Json_value& source, const char* name) {
    const auto value = source.find(name);
    return value ? Message_member(*value) : Message_member();
}

std::vector<std::string> words_of(const Json_value& source) {
    std::vector<std::string> words;
    if (const auto list = source.find("words")) {
        for (const Json_value& item : list->some_items(MOST_WORDS, "words")) {
            std::string word = item.shown_text();
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

bool is_utf8(std::string_view text) {
    return characters_of(text).find(DAMAGED) == std::u32string::npos;
}

Found_text text_of_node(const Json_node& node, const std::string& member) {
    switch (node.kind()) {
        case Json_node::Kind::TEXT:
        case Json_node::Kind::REAL:
            return std::string(node.text());
        case Json_node::Kind::INTEGER:
            return std::to_string(node.integer().value_or(0));
        case Json_node::Kind::BOOLEAN:
            return std::string(node.boolean() ? "true" : "false");
        default:
            return No_value{"\"" + member + "\" is neither a number nor a text"};
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
    if (!source.member.is_whole() && (word == "true" || word == "false")) {
        return Parameter_value(word == "true" ? 1 : 0);
    }
    if (word.size() > LONGEST_NUMBER) {
        return No_value{"not a number: " + quoted(word)};
    }
    const Scaled_number number = source.scale.from_json(word);
    if (const auto* const reason = std::get_if<std::string>(&number)) {
        return No_value{*reason + ": " + quoted(word)};
    }
    return Parameter_value(std::get<std::int32_t>(number));
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

std::variant<std::string, No_value> Topic_message::text_of(const Message_member& member) {
    if (!std::exchange(m_is_parsed, true) && m_text.find('\0') == std::string_view::npos) {
        try {
            m_document.emplace(m_source, std::string(m_text));
        } catch (const Input_error&) {
            // What is wrong with it is no news to the person at the panel.
        }
    }
    if (!m_document) {
        return No_value{"the message is not JSON"};
    }
    const Json_node* const node = member.find(m_document->root());
    if (node == nullptr) {
        return No_value{"the message has no member \"" + member.name() + "\""};
    }
    return text_of_node(*node, member.name());
}

std::variant<Parameter_value, No_value> value_in(const Topic_source& source,
                                                 Topic_message& message) {
    if (message.text().size() > Topic_message::LARGEST) {
        return No_value{"the message has more than 64 KiB"};
    }
    Found_text text = source.member.is_whole() ? Found_text(std::string(message.text()))
                                               : message.text_of(source.member);
    if (const auto* const none = std::get_if<No_value>(&text)) {
        return *none;
    }
    std::string& found = std::get<std::string>(text);
    if (!source.is_text) {
        return number_in(source, found);
    }
    if (!is_utf8(found)) {
        return No_value{"the text is not UTF-8"};
    }
    found.resize(found.find_last_not_of(LINE_END) + 1);
    return Parameter_value(std::move(found));
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
    if (!is_utf8(text)) {
        return No_value{"the text is not UTF-8"};
    }
    if (source.write_member.is_whole()) {
        return text;
    }
    return source.write_member.message_with(is_number ? text : json_text(text));
}

}  // namespace frontpanel
