#include <frontpanel_ui/key_message.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

using FrontPanel::Message;
using FrontPanel::PayloadMessage;

constexpr int NO_BUTTON = FrontPanel::BYTE_MASK;  // in the shortcut message of an idle panel
constexpr int LAST_BUTTON = NO_BUTTON - 1;

Message_pointer shaft_message(int8_t steps) {
    auto message = std::make_unique<PayloadMessage>(static_cast<unsigned short>(sizeof steps));
    message->type = FrontPanel::ShaftEncoderUIT;
    std::memcpy(message->payload, &steps, sizeof steps);
    return message;
}

// As the message of the select button, but for the code.
Message_pointer button_message(unsigned char code) {
    auto message = std::make_unique<FrontPanel::SelectPressMessageClass>();
    message->payload[message->length - 1] = code;
    return message;
}

Message_pointer shortcut_message(int button) {
    if (button < 0 || button > LAST_BUTTON) {
        return nullptr;
    }
    auto message = std::make_unique<FrontPanel::UserInputTimeoutShortcutMessage>();
    message->payload[0] = static_cast<unsigned char>(button);
    return message;
}

bool is_byte_of(const Message& message, uint32_t type) {
    return message.type == type && message.length == 1 && message.payload != nullptr;
}

// The code of a push button; nothing for any other message.
std::optional<unsigned char> button_code(const Message& message) {
    const Message& select = FrontPanel::SelectPressMessage;
    const size_t code = select.length - 1U;
    if (message.type != select.type || message.length != select.length ||
        message.payload == nullptr || std::memcmp(message.payload, select.payload, code) != 0) {
        return std::nullopt;
    }
    return message.payload[code];
}

std::vector<Key> steps_of(const Message& message) {
    int8_t steps = 0;
    std::memcpy(&steps, message.payload, sizeof steps);
    return std::vector<Key>(static_cast<size_t>(std::abs(steps)),
                            Key{steps > 0 ? Key::UP : Key::DOWN});
}

}  // namespace

Message_pointer message_of(const Key& key) {
    const Key_row* const row = row_of(key.kind);
    if (row == nullptr) {
        return key.kind == Key::SHORTCUT ? shortcut_message(key.button) : nullptr;
    }
    return row->detents != 0 ? shaft_message(row->detents) : button_message(row->code);
}

std::vector<Key> keys_of(const Message& message) {
    if (is_byte_of(message, FrontPanel::ShaftEncoderUIT)) {
        return steps_of(message);
    }
    if (is_byte_of(message, FrontPanel::PushButtonUIT)) {
        const int button = message.payload[0];
        return button == NO_BUTTON ? std::vector<Key>()
                                   : std::vector<Key>{Key{Key::SHORTCUT, button}};
    }
    const auto code = button_code(message);
    const auto kind = code ? key_of_code(*code) : std::nullopt;
    return kind ? std::vector<Key>{Key{*kind}} : std::vector<Key>();
}

bool tells_idle(const Message& message) {
    return (message.type == FrontPanel::UserInputTimeoutT && message.length == 0) ||
           (is_byte_of(message, FrontPanel::PushButtonUIT) && message.payload[0] == NO_BUTTON);
}

}  // namespace frontpanel
