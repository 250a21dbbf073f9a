// Tests for the texts in a shell command, so that no text of a card or a caller is executed.
#ifndef FRONTPANEL_DATA_SRC_LIVEDATA_SHELL_TEXT_H
#define FRONTPANEL_DATA_SRC_LIVEDATA_SHELL_TEXT_H

#include <string>

namespace shell_text {

// A dotted IPv4 address with an optional port from 0 to 65535 behind a colon.
bool is_card_address(const char* text);

// One ASCII letter or digit.
bool is_data_format(char letter);

// A path that no shell changes and no command takes for an option. Null is none.
bool is_plain_path(const char* text);

// The document that selects `value`, as a word of an echo command. False when `value` is not UTF-8.
bool make_commit_body(const char* value, std::string& body);

}  // namespace shell_text

#endif
