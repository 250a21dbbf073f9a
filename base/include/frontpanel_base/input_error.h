// Errors in files and options that the panel was given.
#ifndef FRONTPANEL_BASE_INPUT_ERROR_H
#define FRONTPANEL_BASE_INPUT_ERROR_H

#include <cstddef>
#include <stdexcept>
#include <string>

namespace frontpanel {

// A text that may quote an input, made printable and put on one line. The middle of a text beyond 1000 bytes is left
// out.
std::string one_line(std::string text);

// `what()` is one line: file, place in it, and what was expected.
class Input_error : public std::runtime_error {
public:
    explicit Input_error(const std::string& text) : std::runtime_error(one_line(text)) {}
};

// Bytes of a menu file, a script or a file with a PIN.
inline constexpr std::size_t LARGEST_INPUT = std::size_t{4} * 1024 * 1024;

// The text of a file. Input_error when it cannot be read or has more than `largest` bytes, a whole number of KiB.
std::string read_input_file(const std::string& path, std::size_t largest = LARGEST_INPUT);

}  // namespace frontpanel

#endif
