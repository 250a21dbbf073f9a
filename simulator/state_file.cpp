#include <frontpanel_simulator/state_file.h>

#include <algorithm>
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

// The second version has rules. A file without them is of the first, which every panel reads.
constexpr int FIRST_VERSION = 1;
constexpr int LAST_VERSION = 2;
constexpr size_t LONGEST_NAME = 64;  // of rules
constexpr int MOST_ASIDE = 9;        // damaged files that are kept
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

constexpr const char* HEX_DIGITS = "0123456789abcdef";
constexpr unsigned HEX_BITS = 4;

std::string to_hex(const std::string& bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += HEX_DIGITS[value >> HEX_BITS];
        text += HEX_DIGITS[value & 0xFU];
    }
    return text;
}

unsigned value_of_digit(char digit) {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

std::string from_hex(const Json_value& value) {
    const std::string text = value.text_of_length(0, LONGEST_HEX);
    if (text.size() % 2 != 0 || text.find_first_not_of(HEX_DIGITS) != std::string::npos) {
        value.fail("expected pairs of the digits 0 to 9 and a to f");
    }
    std::string bytes;
    bytes.reserve(text.size() / 2);
    for (size_t i = 0; i < text.size(); i += 2) {
        bytes +=
            static_cast<char>(value_of_digit(text[i]) << HEX_BITS | value_of_digit(text[i + 1]));
    }
    return bytes;
}

// A text of printable ASCII in quotation marks.
std::string quoted(const std::string& text) {
    std::string quoted = "\"";
    quoted.reserve(text.size() + 2);
    for (const char byte : text) {
        if (byte == '"' || byte == '\\') {
            quoted += '\\';
        }
        quoted += byte;
    }
    return quoted += '"';
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
    std::string line =
        "{\"pid\":" + std::to_string(value.pid) + ",\"index\":" + std::to_string(value.varidx);
    if (value.type == INTEGER) {
        line += ",\"integer\":" + std::to_string(value.number);
    } else if (is_printable(value.text)) {
        line += ",\"text\":" + quoted(value.text);
    } else {
        line += ",\"hex\":\"" + to_hex(value.text) + '"';
    }
    return line += '}';
}

std::string line_of(const std::pair<int, int>& document, int option) {
    return "{\"slot\":" + std::to_string(document.first) +
           ",\"pid\":" + std::to_string(document.second) + ",\"option\":" + std::to_string(option) +
           "}";
}

std::string line_of(const std::string& rules, const std::vector<Memory_device::Value>& writes) {
    std::string line = "{\"rules\":" + quoted(rules) + ",\"writes\":[";
    for (const Memory_device::Value& write : writes) {
        line += (line.back() == '[' ? "" : ",") + line_of(write);
    }
    return line += "]}";
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

// Of a file without blanks.
std::string beginning_of(int version) {
    return "{\"version\":" + std::to_string(version) + ",\"values\":[";
}

bool is_same(const Memory_device::Value& left, const Memory_device::Value& right) {
    return left.pid == right.pid && left.varidx == right.varidx && left.type == right.type &&
           left.number == right.number && left.text == right.text;
}

// What is left of a state file after a loss of power: its beginning, or as many zeros. Any other file was named by
// mistake.
bool is_left_of_ours(const std::string& text) {
    if (text.find_first_not_of('\0') == std::string::npos) {
        return true;
    }
    std::string found;
    for (const char byte : text) {
        if (found.size() == beginning_of(FIRST_VERSION).size()) {
            break;
        }
        if (byte != ' ' && byte != '\t' && byte != '\r' && byte != '\n') {
            found += byte;
        }
    }
    return beginning_of(FIRST_VERSION).rfind(found, 0) == 0 ||
           beginning_of(LAST_VERSION).rfind(found, 0) == 0;
}

}  // namespace

State_file::State_file(std::string file, Memory_device& device, Card_service* cards,
                       std::size_t largest)
    : m_file(std::move(file)), m_device(device), m_cards(cards), m_largest(largest) {}

std::vector<std::string> State_file::restore() {
    std::vector<std::string> lines;
    std::error_code error;
    const fs::file_type type = fs::status(m_file, error).type();
    if (type == fs::file_type::not_found) {
        return lines;
    }
    if (type != fs::file_type::regular) {
        throw Input_error(m_file +
                          ": cannot be read: " + (error ? error.message() : "not a regular file"));
    }
    const std::string text = read_input_file(m_file, m_largest);
    try {
        apply(read(text), lines);
    } catch (const Input_error& damage) {
        if (!is_left_of_ours(text)) {
            throw Input_error(damage.what() +
                              std::string("; this is not a state file of version ") +
                              std::to_string(FIRST_VERSION) + " or " +
                              std::to_string(LAST_VERSION) + " and stays as it is");
        }
        lines.push_back(damage.what() + std::string("; ") + put_aside());
    }
    return lines;
}

// As a whole, before any of it is used: of a damaged file no part can be trusted.
State_file::Content State_file::read(const std::string& text) const {
    const Source source{m_file, 0};
    Problems problems;
    const Json_document document(source, text, text.size());  // all that `save` writes
    const Json_value root(document.root(), problems);
    if (root.member("version").integer(FIRST_VERSION, LAST_VERSION) == FIRST_VERSION) {
        root.expect_members({"version", "values", "selections"});
    } else {
        root.expect_members({"version", "values", "selections", "rules"});
    }
    Content content;
    for (const Json_value& entry : root.member("values").items()) {
        const Memory_device::Value value = value_of(entry);
        if (!content.values.emplace(Key(value.pid, value.varidx, value.type), value).second) {
            entry.fail("duplicate parameter");
        }
    }
    if (const auto selections = root.find("selections")) {
        read_selections(*selections, content);
    }
    if (const auto rules = root.find("rules")) {
        read_rules(*rules, content);
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
            entry.fail("duplicate list");
        }
    }
}

void State_file::read_rules(const Json_value& rules, Content& content) {
    for (const Json_value& entry : rules.items()) {
        entry.expect_members({"rules", "writes"});
        const std::string name = entry.member("rules").text_of_length(1, LONGEST_NAME);
        std::vector<Memory_device::Value> writes;
        for (const Json_value& write : entry.member("writes").items()) {
            writes.push_back(value_of(write));
        }
        if (!is_printable(name) || !content.rules.emplace(name, std::move(writes)).second) {
            entry.fail("these rules are there twice, or have no name");
        }
    }
}

// The oldest damaged file shows best what went wrong, so only the last one is replaced.
std::string State_file::put_aside() const {
    std::string aside;
    for (int i = 1; i <= MOST_ASIDE; ++i) {
        aside = m_file + ".damaged" + (i == 1 ? "" : "-" + std::to_string(i));
        std::error_code error;  // a name that is too long is refused below
        if (!fs::exists(fs::symlink_status(aside, error))) {
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
    const std::lock_guard<std::mutex> lock(m_rules_mutex);
    m_rules = content.rules;
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

// -1 means that nothing is selected, as on a tree at first.
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

std::vector<State_file::Rule_writes> State_file::rule_writes() const {
    const std::lock_guard<std::mutex> lock(m_rules_mutex);
    std::vector<Rule_writes> all;
    for (const auto& [name, writes] : m_rules) {
        all.push_back({name, writes});
    }
    return all;
}

bool State_file::set_rule_writes(const std::vector<Rule_writes>& rules) {
    const std::lock_guard<std::mutex> lock(m_rules_mutex);
    bool changes = false;
    for (const Rule_writes& each : rules) {
        const auto known = m_rules.find(each.rules);
        const bool is_known = known != m_rules.end()
                                  ? std::equal(known->second.begin(), known->second.end(),
                                               each.writes.begin(), each.writes.end(), is_same)
                                  : each.writes.empty();
        if (is_known) {
            continue;
        }
        changes = true;
        if (each.writes.empty()) {
            m_rules.erase(known);
        } else {
            m_rules[each.rules] = each.writes;
        }
    }
    return changes;
}

State_file::Content State_file::content() const {
    Content content = m_for_others;
    {
        const std::lock_guard<std::mutex> lock(m_rules_mutex);
        content.rules = m_rules;
    }
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

std::string State_file::text() const {
    const Content kept = content();
    const int version = kept.rules.empty() ? FIRST_VERSION : LAST_VERSION;
    std::string text = "{\"version\": " + std::to_string(version) + ", \"values\": [";
    const char* separator = "\n";
    for (const auto& [key, value] : kept.values) {
        text.append(separator).append(line_of(value));
        separator = ",\n";
    }
    text += "\n]";
    separator = ", \"selections\": [\n";
    for (const auto& [document, option] : kept.selections) {
        text.append(separator).append(line_of(document, option));
        separator = ",\n";
    }
    text += kept.selections.empty() ? "" : "\n]";
    separator = ", \"rules\": [\n";
    for (const auto& [name, writes] : kept.rules) {
        text.append(separator).append(line_of(name, writes));
        separator = ",\n";
    }
    text += kept.rules.empty() ? "}\n" : "\n]}\n";
    // A file that the next start refuses would lock the device out of all its values.
    if (text.size() > m_largest) {
        throw Input_error(m_file + ": cannot be written: the values need " +
                          std::to_string(text.size()) + " bytes, more than " +
                          std::to_string(m_largest));
    }
    return text;
}

void State_file::save() const {
    write_whole_file(m_file, text());
}

void State_file::check_savable() const {
    check_writable(m_file);
    text();
}

}  // namespace frontpanel
