// A line of the protocol between the panel and an adapter: a JSON object. docs/process-protocol.md describes them.
#ifndef FRONTPANEL_DRIVER_PROCESS_ADAPTER_MESSAGE_H
#define FRONTPANEL_DRIVER_PROCESS_ADAPTER_MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace frontpanel {

inline constexpr std::int64_t PROTOCOL_VERSION = 1;
inline constexpr std::size_t LONGEST_ADAPTER_LINE = 4096;  // bytes without its end
inline constexpr std::size_t LONGEST_ADAPTER_TEXT = 256;   // of a value
inline constexpr std::size_t LONGEST_ADAPTER_NAME = 64;    // of a parameter

// The member "value".
struct Adapter_value {
    enum Kind {
        MISSING,
        NOTHING,  // null: the parameter has no value now
        NUMBER,   // `text` as it was written; true and false are 1 and 0
        TEXT,
        OTHER  // a list or an object
    };
    Kind kind = MISSING;
    std::string text{};
};

// What an adapter says.
struct Adapter_message {
    enum Kind {
        HELLO,
        RESULT,
        CHANGED,
        ERROR,
        UNKNOWN,  // of a later version: it is ignored
        FAULTY    // not of the protocol: `text` says why
    };
    Kind kind = UNKNOWN;
    std::int64_t version = 0;          // of HELLO
    std::optional<std::int64_t> id{};  // of RESULT always, of ERROR unless it answers no request
    std::string name{};                // of CHANGED
    std::string text{};     // of ERROR, and of CHANGED when there is no value: the reason
    Adapter_value value{};  // of RESULT and CHANGED
};

// Takes any bytes. Nothing of the line is quoted in more than 40 of them.
Adapter_message parse_adapter_message(std::string line);

// What the panel says: lines without their ends.
std::string hello_line();
std::string read_line(std::int64_t id, const std::string& name);
std::string subscribe_line(std::int64_t id, const std::string& name);
// `number` is a decimal number.
std::string write_number_line(std::int64_t id, const std::string& name, const std::string& number);
// Nothing for a text that is not UTF-8.
std::optional<std::string> write_text_line(std::int64_t id, const std::string& name,
                                           const std::string& text);
std::string error_line(const std::string& reason);

}  // namespace frontpanel

#endif
