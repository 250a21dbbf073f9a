#include <frontpanel_driver_file/file_driver.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <map>
#include <optional>
#include <utility>

#include <frontpanel_base/json_members.h>
#include <frontpanel_base/text_bytes.h>
#include <frontpanel_drivers/scale.h>
#include "file_reader.h"
#include "line_part.h"
#include "path_pattern.h"

namespace frontpanel {
namespace {

constexpr std::chrono::milliseconds LONGEST_READ(400);  // before the writes that wait
constexpr std::size_t LONGEST_BEGINNING = 100;
constexpr std::size_t LONGEST_NAME = 100;
constexpr int64_t LAST_LINE = 100000;
constexpr int64_t LAST_WORD = 1000;
constexpr std::size_t LONGEST_QUOTED = 20;
constexpr std::size_t LONGEST_NUMBER = 64;

std::string quoted(std::string_view text) {
    return quoted_beginning(text, LONGEST_QUOTED);
}

std::string joined(const std::string& folder, const std::string& path) {
    return folder.empty() || (!path.empty() && path.front() == '/') ? path : folder + "/" + path;
}

// One parameter.
struct Spot {
    std::string parameter;
    Place place;  // of its source, while the menu file is read
    Path_pattern path;
    std::optional<Path_pattern> write_path;
    std::string
        written_to;  // the file and its name, as the menu file has them; empty: it is only read
    Line_part part;
    bool is_text;
    bool is_hexadecimal;
    Scale scale;
    std::optional<Parameter_value> absent;  // what stands for a file that is missing
};

std::string path_of(const Json_value& value, const std::string& folder) {
    std::string path = value.text().empty() ? "" : joined(folder, value.text());
    if (const std::string mistake = Path_pattern::mistake_in(path); !mistake.empty()) {
        value.fail(mistake);
    }
    return path;
}

Line_part part_of_source(const Json_value& source) {
    Line_part part;
    if (const auto line = source.find("line")) {
        if (line->is_text()) {
            part.beginning = line->text_of_length(1, LONGEST_BEGINNING);
        } else {
            part.line = static_cast<std::size_t>(line->integer(1, LAST_LINE));
        }
    }
    part.word = static_cast<std::size_t>(integer_or(source, "word", 1, LAST_WORD, 0));
    return part;
}

bool is_hexadecimal(const Json_value& source) {
    const auto format = source.find("format");
    return format && format->choice({"decimal", "hexadecimal"}) == 1;
}

std::optional<Parameter_value> absent_value(const Json_value& source,
                                            const Driver_parameter& parameter) {
    const auto value = source.find("absent");
    if (!value) {
        return std::nullopt;
    }
    if (parameter.is_text) {
        return Parameter_value(value->text_of_length(0, parameter.length));
    }
    return Parameter_value(static_cast<std::int32_t>(value->integer(parameter.min, parameter.max)));
}

void expect_text_members(const Json_value& source) {
    for (const char* const name : {"scale", "format"}) {
        if (const auto member = source.find(name)) {
            member->report("\"" + std::string(name) + "\" is for numbers");
        }
    }
}

Scaled_number number_of_hexadecimal(std::string_view text, const Scale& scale) {
    constexpr int BASE = 16;
    std::int64_t number = 0;
    const std::string_view prefix = text.substr(0, 2);
    const std::string_view digits = prefix == "0x" || prefix == "0X" ? text.substr(2) : text;
    const char* const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, number, BASE);
    if (error == std::errc::result_out_of_range) {
        return "the number does not fit 32 bits";
    }
    if (error != std::errc() || stopped != end || digits.front() == '-') {
        return "not a number";
    }
    return scale.from_device(number);
}

void deliver_number(std::size_t number, const Spot& spot, std::string_view text, Value_sink& sink) {
    if (text.size() > LONGEST_NUMBER) {
        sink.failure(number, "not a number: " + quoted(text));
        return;
    }
    const Scaled_number scaled = spot.is_hexadecimal ? number_of_hexadecimal(text, spot.scale)
                                                     : spot.scale.from_device(text);
    if (const auto* const reason = std::get_if<std::string>(&scaled)) {
        sink.failure(number, text.empty() ? "the file is empty" : *reason + ": " + quoted(text));
    } else {
        sink.value(number, std::get<std::int32_t>(scaled));
    }
}

// A text is a line: a file of several shows its first.
void deliver_text(std::size_t number, std::string_view text, Value_sink& sink) {
    const std::string_view line = text.substr(0, text.find('\n'));
    sink.value(number, std::string(line.substr(0, line.find_last_not_of(" \t\r") + 1)));
}

void deliver_failure(std::size_t number, const Spot& spot, const std::string& failure,
                     bool is_missing, Value_sink& sink) {
    if (is_missing && spot.absent) {
        sink.value(number, *spot.absent);
    } else {
        sink.failure(number, failure);
    }
}

void read_spot(std::size_t number, const Spot& spot, File_reader& reader, Value_sink& sink) {
    const Path_pattern::Found found = spot.path.find(reader);
    if (found.path.empty()) {
        deliver_failure(number, spot, found.failure, found.is_missing, sink);
        return;
    }
    const File_reader::Content& content = reader.read(found.path);
    if (!content.failure.empty()) {
        deliver_failure(number, spot, content.failure, content.is_missing, sink);
        return;
    }
    const Found_part part = part_of(content.text, spot.part);
    if (!part.failure.empty()) {
        sink.failure(number, part.failure);
    } else if (spot.is_text) {
        deliver_text(number, part.text, sink);
    } else {
        deliver_number(number, spot, part.text, sink);
    }
}

// Why a file cannot be written; empty when it can.
std::string write_failure(const Path_pattern& path, File_reader& reader) {
    const Path_pattern::Found found = path.find(reader);
    if (found.path.empty()) {
        return found.failure;
    }
    return access(found.path.c_str(), W_OK) == 0 ? "" : std::strerror(errno);
}

std::string text_for(const Spot& spot, const Parameter_value& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return *text;
    }
    const std::int32_t number = std::get<std::int32_t>(value);
    if (!spot.is_hexadecimal) {
        return spot.scale.to_decimal(number);
    }
    constexpr int BASE = 16;
    char digits[sizeof(std::int64_t) * 2 + 1];
    const std::int64_t whole = spot.scale.to_whole(number);
    const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), whole, BASE);
    return "0x" + std::string(digits, end);
}

class File_driver : public Driver {
public:
    explicit File_driver(std::string folder) : m_folder(std::move(folder)) {}

    void add(const Json_value& source, const Driver_parameter& parameter) override {
        const std::string name = text_or(source, "name", "");
        const std::string name_file = text_or(source, "name-file", "name");
        check_name(source, name, name_file);
        if (parameter.is_text) {
            expect_text_members(source);
        }
        const std::string path = path_of(source.member("path"), m_folder);
        const Line_part part = part_of_source(source);
        const auto write = source.find("write");
        std::optional<Path_pattern> write_path;
        std::string written_to = part.is_all() ? path + "\n" + name : "";
        if (write) {
            const std::string target = path_of(*write, m_folder);
            written_to = target + "\n" + name;
            write_path.emplace(target, name, name_file);
        }
        const bool is_number = !parameter.is_text;
        if (is_number && is_hexadecimal(source) && parameter.min < 0) {
            source.member("format").report("a hexadecimal number is at least 0: \"min\" is below");
        }
        m_spots.push_back({parameter.name, source.place(), Path_pattern(path, name, name_file),
                           std::move(write_path), std::move(written_to), part, parameter.is_text,
                           is_number && is_hexadecimal(source),
                           is_number ? Scale::of(source) : Scale(),
                           absent_value(source, parameter)});
    }

    void check(Problems& problems) const override {
        File_reader reader;
        std::map<std::string, const Spot*> written;
        for (const Spot& spot : m_spots) {
            const Path_pattern::Found found = spot.path.find(reader);
            const bool is_found = !found.path.empty();
            const std::string failure = is_found ? reader.read(found.path).failure : found.failure;
            const bool is_missing =
                is_found ? reader.read(found.path).is_missing : found.is_missing;
            if (!failure.empty() && !(is_missing && spot.absent)) {
                problems.warn(spot.place, "cannot be read here: " + failure);
            }
            if (spot.write_path) {
                const std::string refusal = write_failure(*spot.write_path, reader);
                if (!refusal.empty()) {
                    problems.warn(spot.place, "cannot be written here: " + refusal);
                }
                const auto [first, is_new] = written.emplace(spot.written_to, &spot);
                if (!is_new) {
                    problems.warn(spot.place, "\"" + first->second->parameter +
                                                  "\" is written to the same file");
                }
            }
        }
    }

    Driver_result connect() override { return Driver_result::done(); }

    Driver_result read(const std::vector<std::size_t>& numbers, Value_sink& sink) override {
        const auto end = std::chrono::steady_clock::now() + LONGEST_READ;
        File_reader reader;
        for (const std::size_t number : numbers) {
            read_spot(number, m_spots[number], reader, sink);
            if (std::chrono::steady_clock::now() >= end) {
                break;
            }
        }
        return Driver_result::done();
    }

    Driver_result write(std::size_t number, const Parameter_value& value) override {
        const Spot& spot = m_spots[number];
        if (spot.written_to.empty()) {
            return Driver_result::refused("a part of a line can only be read");
        }
        File_reader reader;
        const Path_pattern::Found found =
            (spot.write_path ? *spot.write_path : spot.path).find(reader);
        if (found.path.empty()) {
            return Driver_result::refused(found.failure);
        }
        const std::string failure = write_file(found.path, text_for(spot, value) + "\n");
        return failure.empty() ? Driver_result::done() : Driver_result::refused(failure);
    }

private:
    static void check_name(const Json_value& source, const std::string& name,
                           const std::string& name_file) {
        if (const auto value = source.find("name")) {
            (void)value->text_of_length(1, LONGEST_NAME);
        }
        const auto file = source.find("name-file");
        if (file && name.empty()) {
            file->fail("\"name-file\" needs a \"name\"");
        }
        if (file && (name_file.empty() || name_file.find('/') != std::string::npos)) {
            file->fail("expected the name of a file, without a folder");
        }
    }

    std::string m_folder;
    std::vector<Spot> m_spots;
};

std::unique_ptr<Driver> create(const Json_value& options, const Driver_setup& setup) {
    return std::make_unique<File_driver>(joined(setup.folder, text_or(options, "folder", "")));
}

}  // namespace

const Driver_row& file_driver_row() {
    static const Driver_row ROW{
        "file",
        {"folder"},
        {"path", "name", "name-file", "line", "word", "format", "scale", "write", "absent"},
        create};
    return ROW;
}

}  // namespace frontpanel
