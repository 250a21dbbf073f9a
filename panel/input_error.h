// What is wrong with a file or an option that somebody gave to the panel.
#ifndef FRONTPANEL_PANEL_INPUT_ERROR_H
#define FRONTPANEL_PANEL_INPUT_ERROR_H

#include <stdexcept>
#include <string>

namespace panel {

// `what()` is one line: file, place in it, and what was expected.
class Input_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The text of a file. Input_error when it cannot be read or is larger than any file of ours.
std::string read_input_file(const std::string& path);

}  // namespace panel

#endif
