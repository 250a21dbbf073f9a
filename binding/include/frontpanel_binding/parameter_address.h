// The address of a parameter as menu files and rules write it: "100", "100.3" or "100.3.1".
#ifndef FRONTPANEL_BINDING_PARAMETER_ADDRESS_H
#define FRONTPANEL_BINDING_PARAMETER_ADDRESS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <frontpanel_data/data_interface.h>

namespace frontpanel {

// The last index of a level that no other address shares: 256 of the first level is 1 of the second.
inline constexpr std::uint16_t LAST_INDEX = 255;

// Whether no other index has the same variable: no level is beyond LAST_INDEX.
bool is_unique(const Index_t& index);

// The variable index that the device sees for an index.
std::uint32_t varidx_of(const Index_t& index);

// "100", "100.3" or "100.3.1": with the levels of the index; or, for a variable index, without zeros at its end.
std::string address_text(std::uint32_t pid, const Index_t& index);
std::string address_text(std::uint32_t pid, std::uint32_t varidx);

struct Parameter_address {
    std::uint32_t pid = 0;
    Index_t index{};                  // as many levels as the text has
    RETURN_TYPE type = INVALID_TYPE;  // INTEGER for "@i", STRING for "@s", else INVALID_TYPE
};

struct Address_error {
    std::size_t offset = 0;  // in the text, in bytes
    std::string message;
};

// Whether a text is meant as an address: it begins with a digit and holds digits and dots up to its end or to
// an "@". Names of parameters must not have this form.
bool is_like_address(std::string_view text);

// Parses a pid in decimal, up to two index levels, and "@i" or "@s". Returns nothing for any other text, with
// the reason in `error` when it is not null.
std::optional<Parameter_address> parse_address(std::string_view text,
                                               Address_error* error = nullptr);

}  // namespace frontpanel

#endif
