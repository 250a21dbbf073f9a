#include "adapter_message.h"

#include <rapidjson/reader.h>
#include <rapidjson/stream.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/json_allocator.h>
#include <frontpanel_base/numbers.h>
#include <frontpanel_base/text_bytes.h>

namespace frontpanel {
namespace {

using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, Json_allocator>;
using Writer = rapidjson::Writer<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, Json_allocator>;

constexpr std::size_t LONGEST_QUOTE = 40;

// The JSON library can check that as well, but reads beyond the end of a text that ends within a character.
bool is_utf8(const std::string& text) {
    return characters_of(text).find(DAMAGED) == std::u32string::npos;
}

Adapter_message faulty(std::string text) {
    Adapter_message message;
    message.kind = Adapter_message::FAULTY;
    message.text = std::move(text);
    return message;
}

Adapter_message no_object(const std::string& line) {
    return faulty("expected a JSON object, found " +
                  printable(quoted_beginning(line, LONGEST_QUOTE)));
}

// The members of the outermost object; what is deeper is passed over. The parser keeps its own state in memory that grows
// with the line, not on the stack.
class Members {
public:
    struct Member {
        std::string_view name;
        Adapter_value value{};
    };

    // Of the names that matter. A member that is missing has the value MISSING.
    const Adapter_value& operator[](std::string_view name) const {
        static const Adapter_value MISSING;
        for (const Member& member : m_members) {
            if (member.name == name) {
                return member.value;
            }
        }
        return MISSING;
    }
    bool is_object() const { return m_is_object; }

    bool Null() { return take({Adapter_value::NOTHING}); }
    bool Bool(bool value) { return take({Adapter_value::NUMBER, value ? "1" : "0"}); }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        return take({Adapter_value::NUMBER, std::string(text, length)});
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        return take({Adapter_value::TEXT, std::string(text, length)});
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        if (m_depth == 1) {
            m_open = nullptr;
            for (Member& member : m_members) {
                m_open = member.name == std::string_view(text, length) ? &member : m_open;
            }
        }
        return true;
    }
    bool StartObject() {
        m_is_object = m_is_object || m_depth == 0;
        return open();
    }
    bool EndObject(rapidjson::SizeType /*count*/) { return close(); }
    bool StartArray() { return open(); }
    bool EndArray(rapidjson::SizeType /*count*/) { return close(); }
    // The parser makes none of these from numbers as they are written.
    bool Int(int /*value*/) { return false; }
    bool Uint(unsigned /*value*/) { return false; }
    bool Int64(std::int64_t /*value*/) { return false; }
    bool Uint64(std::uint64_t /*value*/) { return false; }
    bool Double(double /*value*/) { return false; }

private:
    bool take(Adapter_value value) {
        if (m_depth == 1 && m_open != nullptr) {
            m_open->value = std::move(value);
        }
        return true;
    }
    bool open() {
        take({Adapter_value::OTHER});
        ++m_depth;
        return true;
    }
    bool close() {
        --m_depth;
        return true;
    }

    std::array<Member, 6> m_members{
        {{"type"}, {"id"}, {"version"}, {"name"}, {"value"}, {"message"}}};
    Member* m_open = nullptr;  // whose value comes next
    std::size_t m_depth = 0;
    bool m_is_object = false;
};

std::optional<std::int64_t> integer_of(const Adapter_value& value) {
    return value.kind == Adapter_value::NUMBER ? parse_number<std::int64_t>(value.text)
                                               : std::nullopt;
}

Adapter_message::Kind kind_of(const std::string& type) {
    constexpr std::array<std::pair<const char*, Adapter_message::Kind>, 4> TYPES{
        {{"hello", Adapter_message::HELLO},
         {"result", Adapter_message::RESULT},
         {"changed", Adapter_message::CHANGED},
         {"error", Adapter_message::ERROR}}};
    for (const auto& [name, kind] : TYPES) {
        if (type == name) {
            return kind;
        }
    }
    return Adapter_message::UNKNOWN;
}

// Which member that the message cannot do without is missing or of the wrong kind; null for none.
const char* missing_member(const Adapter_message& message, const Members& members) {
    switch (message.kind) {
        case Adapter_message::HELLO:
            return integer_of(members["version"]) ? nullptr : "version";
        case Adapter_message::RESULT:
            return message.id ? nullptr : "id";
        case Adapter_message::CHANGED:
            return members["name"].kind == Adapter_value::TEXT ? nullptr : "name";
        case Adapter_message::ERROR:
            return message.id || members["id"].kind == Adapter_value::MISSING ? nullptr : "id";
        case Adapter_message::UNKNOWN:
        case Adapter_message::FAULTY:
            break;
    }
    return nullptr;
}

Adapter_message message_of(const Members& members) {
    const Adapter_value& type = members["type"];
    if (type.kind != Adapter_value::TEXT) {
        return faulty("a message has no text \"type\"");
    }
    Adapter_message message;
    message.kind = kind_of(type.text);
    message.id = integer_of(members["id"]);
    message.version = integer_of(members["version"]).value_or(0);
    message.name = members["name"].text;
    message.text = members["message"].kind == Adapter_value::TEXT ? members["message"].text : "";
    message.value = members["value"];
    if (const char* const missing = missing_member(message, members)) {
        return faulty("a message \"" + type.text + "\" has no valid \"" + missing + "\"");
    }
    return message;
}

rapidjson::ParseResult parse(const std::string& line, Members& members) {
    constexpr unsigned FLAGS =
        rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
    rapidjson::StringStream stream(line.c_str());
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, Json_allocator> reader;
    return reader.Parse<FLAGS>(stream, members);
}

bool begins_number(char character) {
    return character == '-' || (character >= '0' && character <= '9');
}

// The place behind the closing quotation mark of the text that begins there.
std::size_t end_of_text(const std::string& line, std::size_t begin) {
    std::size_t at = begin + 1;
    while (at < line.size() && line[at] != '"') {
        at += line[at] == '\\' ? 2U : 1U;  // with what is escaped
    }
    return std::min(at + 1, line.size());
}

bool is_too_large(const std::string& number) {
    Members unused;
    return parse(number, unused).Code() == rapidjson::kParseErrorNumberTooBig;
}

// A number that the JSON library accepts and every parameter rejects, or zero for a zero. No longer than what it replaces.
std::string lesser_number(const std::string& number) {
    const std::size_t exponent = std::min(number.find_first_of("eE"), number.size());
    const bool is_zero = number.find_first_of("123456789") >= exponent;
    std::string lesser = is_zero ? "0" : number.front() == '-' ? "-1e300" : "1e300";
    lesser.resize(number.size(), ' ');
    return lesser;
}

// The JSON library rejects a line with a number beyond the limits of a double, even one that is not used. Replaces each
// such number from `at` on, where a number begins, so that the line has to be parsed only once more.
void lessen_numbers(std::string& line, std::size_t at) {
    while (at < line.size()) {
        if (line[at] == '"') {
            at = end_of_text(line, at);
        } else if (begins_number(line[at])) {
            const std::size_t end =
                std::min(line.find_first_not_of("+-.0123456789eE", at), line.size());
            const std::string number = line.substr(at, end - at);
            if (is_too_large(number)) {
                line.replace(at, number.size(), lesser_number(number));
            }
            at = end;
        } else {
            ++at;
        }
    }
}

template <typename Write_more>
std::string line_of(const char* type, std::optional<std::int64_t> id, Write_more write_more) {
    Buffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    writer.Key("type");
    writer.String(type);
    if (id) {
        writer.Key("id");
        writer.Int64(*id);
    }
    write_more(writer);
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

void write_text(Writer& writer, const char* name, const std::string& text) {
    writer.Key(name);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

std::string name_line(const char* type, std::int64_t id, const std::string& name) {
    return line_of(type, id, [&](Writer& writer) { write_text(writer, "name", name); });
}

}  // namespace

Adapter_message parse_adapter_message(std::string line) {
    if (line.find('\0') != std::string::npos || !is_utf8(line)) {
        return no_object(line);
    }
    Members members;
    rapidjson::ParseResult result = parse(line, members);
    if (result.Code() == rapidjson::kParseErrorNumberTooBig) {
        lessen_numbers(line, result.Offset());
        members = Members();
        result = parse(line, members);
    }
    return result.IsError() || !members.is_object() ? no_object(line) : message_of(members);
}

std::string hello_line() {
    return line_of("hello", std::nullopt, [](Writer& writer) {
        writer.Key("version");
        writer.Int64(PROTOCOL_VERSION);
    });
}

std::string read_line(std::int64_t id, const std::string& name) {
    return name_line("read", id, name);
}

std::string subscribe_line(std::int64_t id, const std::string& name) {
    return name_line("subscribe", id, name);
}

std::string write_number_line(std::int64_t id, const std::string& name, const std::string& number) {
    return line_of("write", id, [&](Writer& writer) {
        write_text(writer, "name", name);
        writer.Key("value");
        writer.RawValue(number.data(), number.size(), rapidjson::kNumberType);
    });
}

std::optional<std::string> write_text_line(std::int64_t id, const std::string& name,
                                           const std::string& text) {
    if (!is_utf8(text)) {
        return std::nullopt;
    }
    return line_of("write", id, [&](Writer& writer) {
        write_text(writer, "name", name);
        write_text(writer, "value", text);
    });
}

std::string error_line(const std::string& reason) {
    return line_of("error", std::nullopt,
                   [&](Writer& writer) { write_text(writer, "message", printable(reason)); });
}

}  // namespace frontpanel
