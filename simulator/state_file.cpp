#include <frontpanel_simulator/state_file.h>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>
#include <utility>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_base/json_value.h>

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

constexpr int VERSION = 1;
constexpr int MOST_ASIDE = 9;  // damaged files that are kept
constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr int64_t HIGHEST_ID = std::numeric_limits<uint32_t>::max();
constexpr size_t LONGEST_HEX = 2 * size_t{MAX_STRING_LENGTH};

bool is_printable(const std::string& text) {
    for (const char byte : text) {
        if (byte < ' ' || byte > '~') {
            return false;
        }
    }
    return true;
}

std::string to_hex(const std::string& bytes) {
    constexpr const char* DIGITS = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += DIGITS[value >> 4U];
        text += DIGITS[value & 0xFU];
    }
    return text;
}

std::string from_hex(const Json_value& value) {
    const std::string text = value.text_of_length(0, LONGEST_HEX);
    if (text.size() % 2 != 0 || text.find_first_not_of("0123456789abcdef") != std::string::npos) {
        value.fail("expected pairs of the digits 0 to 9 and a to f");
    }
    std::string bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

int int_of(const Json_value& value) {
    return static_cast<int>(value.integer(LOWEST, HIGHEST));
}

Memory_device::Value value_of(const Json_value& entry) {
    Memory_device::Value value{};
    value.pid = static_cast<uint32_t>(entry.member("pid").integer(0, HIGHEST_ID));
    value.varidx = static_cast<uint32_t>(entry.member("index").integer(0, HIGHEST_ID));
    value.type = STRING;
    if (const auto number = entry.find("integer")) {
        entry.expect_members({"pid", "index", "integer"});
        value.type = INTEGER;
        value.number = static_cast<int32_t>(number->integer(LOWEST, HIGHEST));
    } else if (const auto bytes = entry.find("hex")) {
        entry.expect_members({"pid", "index", "hex"});
        value.text = from_hex(*bytes);
    } else {
        entry.expect_members({"pid", "index", "text"});
        value.text = entry.member("text").text_of_length(0, MAX_STRING_LENGTH);
    }
    return value;
}

std::string line_of(const Memory_device::Value& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("pid");
    writer.Uint(value.pid);
    writer.Key("index");
    writer.Uint(value.varidx);
    if (value.type == INTEGER) {
        writer.Key("integer");
        writer.Int(value.number);
    } else {
        const bool is_text = is_printable(value.text);
        writer.Key(is_text ? "text" : "hex");
        writer.String((is_text ? value.text : to_hex(value.text)).c_str());
    }
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

std::string line_of(const std::pair<int, int>& document, int option) {
    return "{\"slot\":" + std::to_string(document.first) +
           ",\"pid\":" + std::to_string(document.second) + ",\"option\":" + std::to_string(option) +
           "}";
}

std::string list_of(const std::vector<std::string>& lines) {
    std::string text = "[";
    const char* separator = "\n";
    for (const std::string& line : lines) {
        text += separator + line;
        separator = ",\n";
    }
    return text + "\n]";
}

std::string shown(const Memory_device::Value& value) {
    if (value.type == INTEGER) {
        return std::to_string(value.number);
    }
    return is_printable(value.text) ? "\"" + value.text + "\"" : "0x" + to_hex(value.text);
}

int give(Memory_device& device, const Memory_device::Value& value) {
    return value.type == INTEGER ? device.set_integer(value.pid, value.varidx, value.number)
                                 : device.set_text(value.pid, value.varidx, value.text);
}

}  // namespace

State_file::State_file(std::string file, Memory_device& device, Card_service* cards)
    : m_file(std::move(file)), m_device(device), m_cards(cards) {}

std::vector<std::string> State_file::restore() {
    std::vector<std::string> lines;
    std::error_code error;
    if (const auto status = fs::status(m_file, error); status.type() == fs::file_type::not_found) {
        return lines;
    } else if (status.type() != fs::file_type::regular) {
        throw Input_error(m_file + ": cannot be read: it is no file");
    }
    const std::string text = read_input_file(m_file);
    try {
        apply(read(text), lines);
    } catch (const Input_error& damage) {
        lines.push_back(damage.what() + std::string("; ") + put_aside());
    }
    return lines;
}

// As a whole, before any of it is used: of a damaged file no part can be trusted.
State_file::Content State_file::read(const std::string& text) const {
    const Source source{m_file, 0};
    Problems problems;
    const Json_node document = parse_json(source, text);
    const Json_value root(document, problems);
    root.expect_members({"version", "values", "selections"});
    root.member("version").integer(VERSION, VERSION);
    Content content;
    for (const Json_value& entry : root.member("values").items()) {
        const Memory_device::Value value = value_of(entry);
        if (!content.values.emplace(Key(value.pid, value.varidx, value.type), value).second) {
            entry.fail("this parameter is there twice");
        }
    }
    if (const auto selections = root.find("selections")) {
        read_selections(*selections, content);
    }
    if (problems.error_count() > 0) {
        throw Input_errors(problems.errors());
    }
    return content;
}

void State_file::read_selections(const Json_value& selections, Content& content) {
    for (const Json_value& entry : selections.items()) {
        entry.expect_members({"slot", "pid", "option"});
        const Slot_and_pid key(int_of(entry.member("slot")), int_of(entry.member("pid")));
        if (!content.selections.emplace(key, int_of(entry.member("option"))).second) {
            entry.fail("this list is there twice");
        }
    }
}

// The oldest damaged file tells most of what went wrong, so none is replaced but the last.
std::string State_file::put_aside() const {
    std::string aside;
    for (int i = 1; i <= MOST_ASIDE; ++i) {
        aside = m_file + ".damaged" + (i == 1 ? "" : "-" + std::to_string(i));
        if (!fs::exists(fs::symlink_status(aside))) {
            break;
        }
    }
    if (std::rename(m_file.c_str(), aside.c_str()) != 0) {
        throw Input_error(m_file + ": is damaged and cannot be put aside: " + std::strerror(errno));
    }
    return "the file is now " + aside + ", the device has its start values";
}

void State_file::apply(const Content& content, std::vector<std::string>& lines) {
    for (const auto& [key, value] : content.values) {
        apply(value, lines);
    }
    for (const auto& [document, option] : content.selections) {
        apply(document, option, lines);
    }
}

void State_file::apply(const Memory_device::Value& value, std::vector<std::string>& lines) {
    if (m_device.type(value.pid, value.varidx) != value.type) {
        m_for_others.values.emplace(Key(value.pid, value.varidx, value.type), value);
    } else if (const int result = give(m_device, value); result != Memory_device::DONE) {
        lines.push_back(m_file + ": parameter " + std::to_string(value.pid) + " with index " +
                        std::to_string(value.varidx) + " has its start value: " + shown(value) +
                        " is " + Memory_device::result_text(result));
    }
}

// -1 stands for nothing selected, as on a tree at first.
void State_file::apply(const Slot_and_pid& document, int option, std::vector<std::string>& lines) {
    const auto [slot, pid] = document;
    if (m_cards == nullptr || !m_cards->has_document(slot, pid)) {
        m_for_others.selections.emplace(document, option);
    } else if (option >= 0 && !m_cards->select(slot, pid, option)) {
        lines.push_back(m_file + ": list " + std::to_string(pid) + " of the card in slot " +
                        std::to_string(slot) + " has its start selection: there is no option " +
                        std::to_string(option));
    }
}

State_file::Content State_file::content() const {
    Content content = m_for_others;
    for (const Memory_device::Value& value : m_device.values()) {
        content.values.insert_or_assign(Key(value.pid, value.varidx, value.type), value);
    }
    if (m_cards != nullptr) {
        for (const auto& [slot, pid, option] : m_cards->selections()) {
            content.selections.insert_or_assign(Slot_and_pid(slot, pid), option);
        }
    }
    return content;
}

void State_file::save() const {
    const Content kept = content();
    std::vector<std::string> values;
    for (const auto& [key, value] : kept.values) {
        values.push_back(line_of(value));
    }
    std::vector<std::string> selections;
    for (const auto& [document, option] : kept.selections) {
        selections.push_back(line_of(document, option));
    }
    write_whole_file(
        m_file, "{\"version\": " + std::to_string(VERSION) + ", \"values\": " + list_of(values) +
                    (selections.empty() ? "" : ", \"selections\": " + list_of(selections)) + "}\n");
}

}  // namespace frontpanel
