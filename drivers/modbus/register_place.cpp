#include "register_place.h"

#include <algorithm>
#include <array>
#include <optional>

#include <frontpanel_base/json_members.h>

namespace frontpanel {
namespace {

constexpr int WORD_BITS = 16;
constexpr std::int64_t LAST_ADDRESS = 65535;

struct Table {
    const char* member;
    const char* noun;
};

// In the order of `Register_table`.
constexpr std::array<Table, 4> TABLES{{{"holding", "holding register"},
                                       {"input", "input register"},
                                       {"coil", "coil"},
                                       {"discrete", "discrete input"}}};

struct Type {
    const char* name;
    int registers;
    bool is_signed;
};

constexpr std::array<Type, 4> TYPES{
    {{"uint16", 1, false}, {"int16", 1, true}, {"uint32", 2, false}, {"int32", 2, true}}};

constexpr std::array<const char*, 5> REGISTER_MEMBERS{"type", "words", "bit", "width", "scale"};

std::size_t table_of(const Json_value& source) {
    std::optional<std::size_t> found;
    for (std::size_t table = 0; table < TABLES.size(); ++table) {
        if (const auto address = source.find(TABLES[table].member)) {
            if (found) {
                address->fail(std::string("\"") + TABLES[table].member + "\" does not go with \"" +
                              TABLES[*found].member + "\"");
            }
            found = table;
        }
    }
    if (!found) {
        source.fail("expected a member \"holding\", \"input\", \"coil\" or \"discrete\"");
    }
    return *found;
}

void expect_bit(const Json_value& source, const char* noun) {
    for (const char* const name : REGISTER_MEMBERS) {
        if (const auto value = source.find(name)) {
            value->fail(std::string("\"") + name + "\" does not go with a " + noun);
        }
    }
}

Type type_of(const Json_value& source) {
    const auto value = source.find("type");
    if (!value) {
        return TYPES.front();
    }
    std::vector<const char*> names(TYPES.size());
    std::transform(TYPES.begin(), TYPES.end(), names.begin(),
                   [](const Type& type) { return type.name; });
    return TYPES[value->choice(names)];
}

void read_number(const Json_value& source, const Modbus_settings& settings, Register_place& place) {
    const Type type = type_of(source);
    place.range.count = type.registers;
    place.is_signed = type.is_signed;
    place.is_low_word_first = is_low_word_first(source, settings.is_low_word_first);
    place.width = type.registers * WORD_BITS;
    if (source.find("bit") || source.find("width")) {
        place.bit = integer_or(source, "bit", 0, place.width - 1, 0);
        place.width = integer_or(source, "width", 1, place.width - place.bit, 1);
    }
    place.scale = Scale::of(source);
}

// The register that holds bits 16 * `word` and up.
std::size_t index_of(const Register_place& place, int word) {
    return static_cast<std::size_t>(place.is_low_word_first ? word : place.range.count - 1 - word);
}

std::uint32_t mask_of(const Register_place& place) {
    constexpr std::uint64_t ONE = 1;
    return static_cast<std::uint32_t>(((ONE << place.width) - 1) << place.bit);
}

std::uint32_t bits_in(const Register_place& place, const std::uint16_t* words) {
    std::uint32_t bits = 0;
    for (int word = 0; word < place.range.count; ++word) {
        bits |= std::uint32_t{words[index_of(place, word)]} << (word * WORD_BITS);
    }
    return bits;
}

std::int64_t raw_number_in(const Register_place& place, const std::uint16_t* words) {
    if (place.range.is_bits()) {
        return words[0] != 0 ? 1 : 0;
    }
    const std::int64_t number = (bits_in(place, words) & mask_of(place)) >> place.bit;
    return number > place.highest() ? number - (std::int64_t{1} << place.width) : number;
}

}  // namespace

const char* noun_of(Register_table table) {
    return TABLES[static_cast<std::size_t>(table)].noun;
}

std::vector<std::uint16_t> Register_place::masks() const {
    if (range.is_bits()) {
        return {1};
    }
    std::vector<std::uint16_t> result(static_cast<std::size_t>(range.count));
    for (int word = 0; word < range.count; ++word) {
        result[index_of(*this, word)] =
            static_cast<std::uint16_t>(mask_of(*this) >> (word * WORD_BITS));
    }
    return result;
}

std::int64_t Register_place::lowest() const {
    return is_signed ? -(std::int64_t{1} << (width - 1)) : 0;
}

std::int64_t Register_place::highest() const {
    return (std::int64_t{1} << (is_signed ? width - 1 : width)) - 1;
}

std::vector<const char*> register_members() {
    std::vector<const char*> names(TABLES.size());
    std::transform(TABLES.begin(), TABLES.end(), names.begin(),
                   [](const Table& table) { return table.member; });
    names.insert(names.end(), REGISTER_MEMBERS.begin(), REGISTER_MEMBERS.end());
    names.push_back("unit");
    return names;
}

Register_place register_place_of(const Json_value& source, const Modbus_settings& settings) {
    const std::size_t table = table_of(source);
    Register_place place;
    place.range.table = static_cast<Register_table>(table);
    place.range.unit = unit_of(source, settings.is_serial(), settings.unit);
    if (place.range.is_bits()) {
        expect_bit(source, TABLES[table].noun);
        place.width = 1;
    } else {
        read_number(source, settings, place);
    }
    place.range.first = static_cast<int>(
        source.member(TABLES[table].member).integer(0, LAST_ADDRESS + 1 - place.range.count));
    return place;
}

Scaled_number number_in(const Register_place& place, const std::uint16_t* words) {
    const std::int64_t raw = raw_number_in(place, words);
    Scaled_number number = place.scale.from_device(raw);
    if (auto* const reason = std::get_if<std::string>(&number)) {
        *reason += ": " + std::to_string(raw);
    }
    return number;
}

std::string put_number(const Register_place& place, std::int32_t number, Words& words) {
    const std::int64_t raw = place.scale.to_whole(number);
    if (raw < place.lowest() || raw > place.highest()) {
        return std::to_string(raw) + " is beyond " + std::to_string(place.lowest()) + ".." +
               std::to_string(place.highest()) + " of the " + noun_of(place.range.table);
    }
    if (place.range.is_bits()) {
        words[0] = static_cast<std::uint16_t>(raw);
        return "";
    }
    const std::uint32_t mask = mask_of(place);
    const std::uint32_t bits = (bits_in(place, words.data()) & ~mask) |
                               ((static_cast<std::uint32_t>(raw) << place.bit) & mask);
    for (int word = 0; word < place.range.count; ++word) {
        words[index_of(place, word)] = static_cast<std::uint16_t>(bits >> (word * WORD_BITS));
    }
    return "";
}

}  // namespace frontpanel
