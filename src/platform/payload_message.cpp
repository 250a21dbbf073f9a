// The constructors of messages with a payload. They throw when there is no memory for it, unlike all other operations
// of messages.
#define FRONTPANEL_DATA_WITHOUT_MESSAGE_OBJECTS
#include <frontpanel_data/front_panel_messages.h>

#include <algorithm>
#include <array>

namespace FrontPanel {
namespace {

constexpr std::array<unsigned char, 1> TIMEOUT_SHORTCUT = {BYTE_MASK};
constexpr std::array<unsigned char, 4> SELECT_PRESS = {2, 0, 1, 11};
constexpr std::array<unsigned char, 4> ESCAPE_PRESS = {2, 0, 1, 13};

template <class Bytes>
void fill_button_message(PayloadMessage& message, const Bytes& bytes) {
    message.type = PushButtonUIT;
    std::copy(bytes.begin(), bytes.end(), message.payload);
}

}  // namespace

PayloadMessage::PayloadMessage(unsigned short size) : Message(InvalidMessageT) {
    length = size;
    payload = size > 0 ? new unsigned char[size]() : nullptr;
}

UserInputTimeoutShortcutMessage::UserInputTimeoutShortcutMessage()
    : PayloadMessage(TIMEOUT_SHORTCUT.size()) {
    fill_button_message(*this, TIMEOUT_SHORTCUT);
}

SelectPressMessageClass::SelectPressMessageClass() : PayloadMessage(SELECT_PRESS.size()) {
    fill_button_message(*this, SELECT_PRESS);
}

EscapePressMessageClass::EscapePressMessageClass() : PayloadMessage(ESCAPE_PRESS.size()) {
    fill_button_message(*this, ESCAPE_PRESS);
}

}  // namespace FrontPanel
