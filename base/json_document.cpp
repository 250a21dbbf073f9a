#include <frontpanel_base/json_document.h>

#include <rapidjson/encodedstream.h>
#include <rapidjson/encodings.h>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <limits>

#include <frontpanel_base/json_allocator.h>

namespace frontpanel {
namespace {

constexpr size_t DEEPEST_VALUE = 100;  // values are handled by recursion

using Stream = rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream>;

// Follows the text to a place in it.
class Line_counter {
public:
    Line_counter(const Source& source, const std::string& text) : m_source(source), m_text(text) {}

    Place place_at(size_t offset) {
        for (; m_offset < std::min(offset, m_text.size()); ++m_offset) {
            if (m_text[m_offset] == '\n') {
                ++m_line;
                m_line_start = m_offset + 1;
            }
        }
        return {&m_source, m_line, offset - m_line_start + 1, nullptr};
    }

private:
    const Source& m_source;
    const std::string& m_text;
    size_t m_offset = 0;
    size_t m_line = 1;
    size_t m_line_start = 0;
};

// Builds the values while the parser finds them. A token begins behind the one before it and what may stand
// between two tokens. It ends where the parser stands when it tells of it, but for a bracket, which the parser
// tells of before it takes it.
class Builder {
public:
    Builder(const Source& source, const std::string& text, const Stream& stream)
        : m_text(text), m_stream(stream), m_counter(source, text), m_end(stream.Tell()) {}

    bool Null() { return add(Json_node::Kind::NOTHING) != nullptr; }
    bool Bool(bool value) {
        add(Json_node::Kind::BOOLEAN)->boolean = value;
        return true;
    }
    bool Int(int value) { return Int64(value); }
    bool Uint(unsigned value) { return Int64(value); }
    bool Int64(int64_t value) {
        add(Json_node::Kind::INTEGER)->number = value;
        return true;
    }
    bool Uint64(uint64_t value) {
        const bool fits = value <= static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
        return fits ? Int64(static_cast<int64_t>(value)) : Double(0);
    }
    bool Double(double /*value*/) { return add(Json_node::Kind::REAL) != nullptr; }
    bool RawNumber(const char* /*text*/, rapidjson::SizeType /*length*/, bool /*copy*/) {
        return Double(0);
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        add(Json_node::Kind::TEXT)->text.assign(text, length);
        return true;
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        Json_member member{std::string(text, length), next_place(), {}};
        m_open.back()->members.push_back(std::move(member));
        return true;
    }
    bool StartObject() { return open(Json_node::Kind::OBJECT); }
    bool EndObject(rapidjson::SizeType /*count*/) { return close(); }
    bool StartArray() { return open(Json_node::Kind::LIST); }
    bool EndArray(rapidjson::SizeType /*count*/) { return close(); }

    Json_node take_root() { return std::move(m_root); }

private:
    Place next_place() {
        const size_t start = std::min(m_text.find_first_not_of(" \t\r\n,:", m_end), m_text.size());
        m_end = std::max(start + 1, m_stream.Tell());
        return m_counter.place_at(start);
    }
    Json_node* add(Json_node::Kind kind) {
        Json_node* node = &m_root;
        if (!m_open.empty() && m_open.back()->kind == Json_node::Kind::OBJECT) {
            node = &m_open.back()->members.back().value;
        } else if (!m_open.empty()) {
            node = &m_open.back()->elements.emplace_back();
        }
        node->kind = kind;
        node->place = next_place();
        return node;
    }
    bool open(Json_node::Kind kind) {
        m_open.push_back(add(kind));
        if (m_open.size() > DEEPEST_VALUE) {
            throw Placed_error(m_open.back()->place, "values are nested more than " +
                                                         std::to_string(DEEPEST_VALUE) + " deep");
        }
        return true;
    }
    bool close() {
        next_place();
        m_open.pop_back();
        return true;
    }

    const std::string& m_text;
    const Stream& m_stream;
    Line_counter m_counter;
    size_t m_end;
    Json_node m_root;
    std::vector<Json_node*> m_open;  // the last of its neighbours so far, so it stays where it is
};

}  // namespace

const Json_node* Json_node::member(const char* name) const {
    const auto found =
        std::find_if(members.begin(), members.end(),
                     [name](const Json_member& candidate) { return candidate.name == name; });
    return found == members.end() ? nullptr : &found->value;
}

Json_node parse_json(const Source& source, const std::string& text) {
    rapidjson::MemoryStream bytes(text.data(), text.size());
    Stream stream(bytes);
    Builder builder(source, text, stream);
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, Json_allocator> reader;
    // Iterative, so that no depth of nesting can exhaust the stack.
    const rapidjson::ParseResult result =
        reader.Parse<rapidjson::kParseIterativeFlag>(stream, builder);
    if (result.IsError()) {
        throw Placed_error(Line_counter(source, text).place_at(result.Offset()),
                           rapidjson::GetParseError_En(result.Code()));
    }
    return builder.take_root();
}

}  // namespace frontpanel
