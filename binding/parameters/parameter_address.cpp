#include <frontpanel_binding/parameter_address.h>

#include <algorithm>
#include <iterator>
#include <limits>

#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/data_model.h>

#include "parameters/source_text.h"

namespace frontpanel {
namespace {

constexpr std::uint32_t MOST_LEVELS = Data_model::S_CURRENT_SUPPORT_DIMENTIONS;
constexpr std::uint32_t LEVEL_SIZE = std::uint32_t{LAST_INDEX} + 1;  // of a variable index

std::size_t used_levels(const Index_t& index) {
    return std::min<std::size_t>(index.m_index_num, std::size(index.m_index));
}

bool is_digit(char byte) {
    return byte >= '0' && byte <= '9';
}

// Reads an address from its front.
class Address_reader {
public:
    explicit Address_reader(std::string_view text) : m_text(text) {}

    Parameter_address address() {
        Parameter_address address;
        address.pid = number(Data_entry::PID_NONE - 1);
        while (m_at < m_text.size() && m_text[m_at] == '.') {
            ++m_at;
            require(address.index.m_index_num < MOST_LEVELS,
                    "a parameter has at most two index levels");
            address.index.m_index[address.index.m_index_num++] =
                static_cast<std::uint16_t>(number(std::numeric_limits<std::uint16_t>::max()));
        }
        if (m_at < m_text.size()) {
            address.type = type_suffix();
        }
        return address;
    }

private:
    // A number saturates while it is read: it may have any number of digits.
    std::uint32_t number(std::uint32_t most) {
        const std::size_t begin = m_at;
        std::uint64_t number = 0;
        for (; m_at < m_text.size() && is_digit(m_text[m_at]); ++m_at) {
            number = std::min<std::uint64_t>(
                number * 10 + static_cast<std::uint64_t>(m_text[m_at] - '0'),
                std::numeric_limits<std::uint32_t>::max());
        }
        const std::string_view digits = m_text.substr(begin, m_at - begin);
        if (digits.empty() || number > most) {
            m_at = begin;
            fail(quoted_source(digits) + " is not a number from 0 to " + std::to_string(most));
        }
        return static_cast<std::uint32_t>(number);
    }

    RETURN_TYPE type_suffix() {
        const std::string_view suffix = m_text.substr(m_at);
        if (suffix != "@i" && suffix != "@s") {
            fail("expected \"@i\" or \"@s\", found " + quoted_source(suffix));
        }
        return suffix == "@s" ? STRING : INTEGER;
    }

    void require(bool condition, const char* message) const {
        if (!condition) {
            fail(message);
        }
    }
    [[noreturn]] void fail(std::string message) const {
        throw Address_error{m_at, std::move(message)};
    }

    std::string_view m_text;
    std::size_t m_at = 0;
};

}  // namespace

bool is_unique(const Index_t& index) {
    return std::all_of(index.m_index, index.m_index + used_levels(index),
                       [](std::uint16_t level) { return level <= LAST_INDEX; });
}

std::uint32_t varidx_of(const Index_t& index) {
    unsigned int varidx = 0;
    Data_model::Index_convert(&index, varidx);
    return varidx;
}

std::string address_text(std::uint32_t pid, const Index_t& index) {
    std::string text = std::to_string(pid);
    for (std::size_t level = 0; level < used_levels(index); ++level) {
        text += '.' + std::to_string(index.m_index[level]);
    }
    return text;
}

std::string address_text(std::uint32_t pid, std::uint32_t varidx) {
    std::string text = std::to_string(pid);
    if (varidx != 0) {
        text += '.' + std::to_string(varidx % LEVEL_SIZE);
    }
    if (varidx >= LEVEL_SIZE) {
        text += '.' + std::to_string(varidx / LEVEL_SIZE);
    }
    return text;
}

bool is_like_address(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && (is_digit(text[length]) || text[length] == '.')) {
        ++length;
    }
    return length > 0 && is_digit(text[0]) && (length == text.size() || text[length] == '@');
}

std::optional<Parameter_address> parse_address(std::string_view text, Address_error* error) {
    try {
        return Address_reader(text).address();
    } catch (Address_error& mistake) {
        if (error != nullptr) {
            *error = std::move(mistake);
        }
        return std::nullopt;
    }
}

}  // namespace frontpanel
