// This unit needs only the classes.
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

Message::Message(uint32_t message_type) : type(message_type), length(0), payload(nullptr) {}

Message::~Message() = default;

PayloadMessage::PayloadMessage(unsigned short size) : Message(InvalidMessageT) {
    length = size;
    payload = size > 0 ? new unsigned char[size]() : nullptr;
}

PayloadMessage::~PayloadMessage() {
    delete[] payload;
}

HeartBeatMessage::HeartBeatMessage() : Message(HeartBeatT) {}

HeartBeatMessage::~HeartBeatMessage() = default;

AckMessage::AckMessage() : Message(AckT) {}

AckMessage::~AckMessage() = default;

NackMessage::NackMessage() : Message(NackT) {}

NackMessage::~NackMessage() = default;

StartupMessage::StartupMessage() : Message(StartupT) {}

StartupMessage::~StartupMessage() = default;

ResetMessage::ResetMessage() : Message(ResetT) {}

ResetMessage::~ResetMessage() = default;

UpgradeStartMessage::UpgradeStartMessage() : Message(UpgradeStartT) {}

UpgradeStartMessage::~UpgradeStartMessage() = default;

UpgradeEndMessage::UpgradeEndMessage() : Message(UpgradeEndT) {}

UpgradeEndMessage::~UpgradeEndMessage() = default;

RequestDeviceTypeMessage::RequestDeviceTypeMessage() : Message(DeviceTypeT) {}

RequestDeviceTypeMessage::~RequestDeviceTypeMessage() = default;

RequestSerialNumberMessage::RequestSerialNumberMessage() : Message(SerialNumberT) {}

RequestSerialNumberMessage::~RequestSerialNumberMessage() = default;

RequestFirmwareVersionMessage::RequestFirmwareVersionMessage() : Message(FirmwareVersionT) {}

RequestFirmwareVersionMessage::~RequestFirmwareVersionMessage() = default;

UserInputTimeoutShortcutMessage::UserInputTimeoutShortcutMessage()
    : PayloadMessage(TIMEOUT_SHORTCUT.size()) {
    fill_button_message(*this, TIMEOUT_SHORTCUT);
}

UserInputTimeoutShortcutMessage::~UserInputTimeoutShortcutMessage() = default;

DisplayUpdateMessage::DisplayUpdateMessage() : Message(DisplayUpdateT) {}

DisplayUpdateMessage::~DisplayUpdateMessage() = default;

DisplayClearMessage::DisplayClearMessage() : Message(DisplayClearT) {}

DisplayClearMessage::~DisplayClearMessage() = default;

UserInputTimeoutMessage::UserInputTimeoutMessage() : Message(UserInputTimeoutT) {}

UserInputTimeoutMessage::~UserInputTimeoutMessage() = default;

SelectPressMessageClass::SelectPressMessageClass() : PayloadMessage(SELECT_PRESS.size()) {
    fill_button_message(*this, SELECT_PRESS);
}

SelectPressMessageClass::~SelectPressMessageClass() = default;

EscapePressMessageClass::EscapePressMessageClass() : PayloadMessage(ESCAPE_PRESS.size()) {
    fill_button_message(*this, ESCAPE_PRESS);
}

EscapePressMessageClass::~EscapePressMessageClass() = default;

GenericInvalidMessage::GenericInvalidMessage() : Message(LastMessageT) {}

GenericInvalidMessage::~GenericInvalidMessage() = default;

}  // namespace FrontPanel
