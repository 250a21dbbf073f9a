#include <frontpanel_ui/key_message.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace frontpanel {
namespace {

using FrontPanel::Message;
using FrontPanel::PayloadMessage;

constexpr int NO_BUTTON = FrontPanel::BYTE_MASK;  // the shortcut that nobody pushed
constexpr int LAST_SHORTCUT = NO_BUTTON - 1;
constexpr unsigned char COARSER_CODE = 14;
constexpr unsigned char FINER_CODE = 15;
constexpr unsigned char INSERT_CODE = 16;
constexpr unsigned char DELETE_CODE = 17;
constexpr unsigned char DIAGNOSTICS_CODE = 18;
constexpr unsigned char LEFT_CODE = 19;
constexpr unsigned char RIGHT_CODE = 20;
constexpr unsigned char ERASE_CODE = 21;

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
    if (button < 0 || button > LAST_SHORTCUT) {
        return nullptr;
    }
    auto message = std::make_unique<FrontPanel::UserInputTimeoutShortcutMessage>();
    message->payload[0] = static_cast<unsigned char>(button);
    return message;
}

bool is_byte_of(const Message& message, uint32_t type) {
    return message.type == type && message.length == 1 && message.payload != nullptr;
}

// The code of a push button; nothing when the message is none.
std::optional<unsigned char> button_code(const Message& message) {
    const Message& select = FrontPanel::SelectPressMessage;
    const size_t code = select.length - 1U;
    if (message.type != select.type || message.length != select.length ||
        message.payload == nullptr || std::memcmp(message.payload, select.payload, code) != 0) {
        return std::nullopt;
    }
    return message.payload[code];
}

std::optional<Key::Kind> key_of_code(unsigned char code) {
    if (code == button_code(FrontPanel::SelectPressMessage)) {
        return Key::SELECT;
    }
    if (code == button_code(FrontPanel::EscapePressMessage)) {
        return Key::BACK;
    }
    switch (code) {
        case COARSER_CODE:
            return Key::COARSER;
        case FINER_CODE:
            return Key::FINER;
        case INSERT_CODE:
            return Key::INSERT;
        case DELETE_CODE:
            return Key::DELETE;
        case DIAGNOSTICS_CODE:
            return Key::DIAGNOSTICS;
        case LEFT_CODE:
            return Key::LEFT;
        case RIGHT_CODE:
            return Key::RIGHT;
        case ERASE_CODE:
            return Key::ERASE;
        default:
            return std::nullopt;
    }
}

std::vector<Key> steps_of(const Message& message) {
    int8_t steps = 0;
    std::memcpy(&steps, message.payload, sizeof steps);
    return std::vector<Key>(static_cast<size_t>(std::abs(steps)),
                            Key{steps > 0 ? Key::UP : Key::DOWN});
}

}  // namespace

Message_pointer message_of(const Key& key) {
    switch (key.kind) {
        case Key::UP:
            return shaft_message(1);
        case Key::DOWN:
            return shaft_message(-1);
        case Key::SELECT:
            return std::make_unique<FrontPanel::SelectPressMessageClass>();
        case Key::BACK:
            return std::make_unique<FrontPanel::EscapePressMessageClass>();
        case Key::COARSER:
            return button_message(COARSER_CODE);
        case Key::FINER:
            return button_message(FINER_CODE);
        case Key::INSERT:
            return button_message(INSERT_CODE);
        case Key::DELETE:
            return button_message(DELETE_CODE);
        case Key::DIAGNOSTICS:
            return button_message(DIAGNOSTICS_CODE);
        case Key::LEFT:
            return button_message(LEFT_CODE);
        case Key::RIGHT:
            return button_message(RIGHT_CODE);
        case Key::ERASE:
            return button_message(ERASE_CODE);
        case Key::SHORTCUT:
            return shortcut_message(key.button);
    }
    return nullptr;
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
