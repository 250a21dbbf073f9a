#include "message_member.h"

#include <algorithm>
#include <array>
#include <optional>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

constexpr std::size_t LONGEST_MEMBER = 200;

// The step of a pointer with "~1" for "/" and "~0" for "~"; nothing when another character follows a "~".
std::optional<std::string> unescaped(const std::string& step) {
    std::string result;
    for (std::size_t at = 0; at < step.size(); ++at) {
        if (step[at] != '~') {
            result += step[at];
            continue;
        }
        const char next = at + 1 < step.size() ? step[++at] : '\0';
        if (next != '0' && next != '1') {
            return std::nullopt;
        }
        result += next == '0' ? '~' : '/';
    }
    return result;
}

const Json_node* element_of(const Json_node& list, const std::string& step) {
    const bool is_number = step == "0" || (!step.empty() && step.front() != '0');
    const auto number = is_number ? parse_number<std::size_t>(step) : std::nullopt;
    return number && *number < list.elements().size() ? &list.elements()[*number] : nullptr;
}

}  // namespace

Message_member::Message_member(const Json_value& value)
    : m_name(value.shown_text_of_length(1, LONGEST_MEMBER)) {
    if (m_name.front() != '/') {
        m_steps.push_back(m_name);
        return;
    }
    for (std::size_t at = 0; at < m_name.size();) {
        const std::size_t end = std::min(m_name.find('/', at + 1), m_name.size());
        std::optional<std::string> step = unescaped(m_name.substr(at + 1, end - at - 1));
        if (!step) {
            value.fail("expected a name or a JSON pointer such as \"/a/b\", found \"" + m_name +
                       "\"");
        }
        m_steps.push_back(*std::move(step));
        at = end;
    }
}

const Json_node* Message_member::find(const Json_node& message) const {
    const Json_node* node = &message;
    for (const std::string& step : m_steps) {
        node = node->is(Json_node::Kind::LIST) ? element_of(*node, step) : node->member(step);
        if (node == nullptr) {
            return nullptr;
        }
    }
    return node;
}

std::string Message_member::message_with(const std::string& value) const {
    std::string begin;
    std::string end;
    for (const std::string& step : m_steps) {
        begin += "{" + json_text(step) + ":";
        end += "}";
    }
    return begin + value + end;
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

}  // namespace frontpanel
