#include "json_value.h"

#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <set>
#include <utility>

#include "input_error.h"

namespace panel {
namespace {

std::string line_and_column(const std::string& text, size_t offset) {
    const std::string before = text.substr(0, offset);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const size_t line_start = before.rfind('\n') + 1;  // 0 on the first line
    return std::to_string(line) + ":" + std::to_string(before.size() - line_start + 1);
}

const char* kind_of(const rapidjson::Value& value) {
    switch (value.GetType()) {
        case rapidjson::kNullType:
            return "null";
        case rapidjson::kFalseType:
        case rapidjson::kTrueType:
            return "true or false";
        case rapidjson::kObjectType:
            return "an object";
        case rapidjson::kArrayType:
            return "a list";
        case rapidjson::kStringType:
            return "a text";
        case rapidjson::kNumberType:
            return value.IsInt64() ? "a whole number" : "a number";
    }
    return "nothing";
}

bool is_printable(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

}  // namespace

rapidjson::Document parse_json(const std::string& file, const std::string& text) {
    rapidjson::Document document;
    // Iterative, so that no depth of nesting can exhaust the stack.
    document.Parse<rapidjson::kParseIterativeFlag>(text.c_str(), text.size());
    if (document.HasParseError()) {
        throw Input_error(file + ":" + line_and_column(text, document.GetErrorOffset()) + ": " +
                          rapidjson::GetParseError_En(document.GetParseError()));
    }
    return document;
}

Json_value::Json_value(std::string file, const rapidjson::Value& root)
    : Json_value(std::move(file), "", root) {}

Json_value::Json_value(std::string file, std::string path, const rapidjson::Value& value)
    : m_file(std::move(file)), m_path(std::move(path)), m_value(&value) {}

std::string Json_value::message(const std::string& text) const {
    return m_file + ": " + (m_path.empty() ? "/" : m_path) + ": " + text;
}

void Json_value::fail(const std::string& text) const {
    throw Input_error(message(text));
}

void Json_value::fail_type(const char* expected) const {
    fail(std::string("expected ") + expected + ", found " + kind_of(*m_value));
}

std::optional<Json_value> Json_value::find(const char* name) const {
    if (!m_value->IsObject()) {
        fail_type("an object");
    }
    const auto found = m_value->FindMember(name);
    if (found == m_value->MemberEnd()) {
        return std::nullopt;
    }
    return Json_value(m_file, m_path + "/" + name, found->value);
}

Json_value Json_value::member(const char* name) const {
    const std::optional<Json_value> found = find(name);
    if (!found) {
        fail(std::string("expected a member \"") + name + "\"");
    }
    return *found;
}

std::vector<std::string> Json_value::names() const {
    if (!m_value->IsObject()) {
        fail_type("an object");
    }
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (const auto& member : m_value->GetObject()) {
        names.emplace_back(member.name.GetString(), member.name.GetStringLength());
        if (!seen.insert(names.back()).second) {
            fail("member \"" + names.back() + "\" comes twice");
        }
    }
    return names;
}

void Json_value::expect_members(const std::vector<const char*>& known) const {
    for (const std::string& name : names()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            fail("unknown member \"" + name + "\"");
        }
    }
}

std::vector<Json_value> Json_value::items() const {
    if (!m_value->IsArray()) {
        fail_type("a list");
    }
    std::vector<Json_value> items;
    for (const auto& item : m_value->GetArray()) {
        items.push_back(Json_value(m_file, m_path + "/" + std::to_string(items.size()), item));
    }
    return items;
}

bool Json_value::is_text() const {
    return m_value->IsString();
}

int64_t Json_value::integer(int64_t min, int64_t max) const {
    if (!m_value->IsInt64() || m_value->GetInt64() < min || m_value->GetInt64() > max) {
        const std::string found =
            m_value->IsInt64() ? std::to_string(m_value->GetInt64()) : kind_of(*m_value);
        fail("expected a whole number from " + std::to_string(min) + " to " + std::to_string(max) +
             ", found " + found);
    }
    return m_value->GetInt64();
}

bool Json_value::boolean() const {
    if (!m_value->IsBool()) {
        fail_type("true or false");
    }
    return m_value->GetBool();
}

std::string Json_value::text() const {
    if (!m_value->IsString()) {
        fail_type("a text");
    }
    std::string text(m_value->GetString(), m_value->GetStringLength());
    if (!is_printable(text)) {
        fail("expected printable ASCII characters");
    }
    return text;
}

std::string Json_value::json() const {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    m_value->Accept(writer);
    return {buffer.GetString(), buffer.GetSize()};
}

std::string Json_value::text_of_length(size_t min, size_t max) const {
    std::string text = this->text();
    if (text.size() < min || text.size() > max) {
        fail("expected a text of " + std::to_string(min) + " to " + std::to_string(max) +
             " characters, found " + std::to_string(text.size()));
    }
    return text;
}

}  // namespace panel
