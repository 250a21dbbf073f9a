// The message classes, without the constructors of messages with a payload (payload_message.cpp). Nothing here throws or
// calls what may throw. This unit needs only the classes.
#define FRONTPANEL_DATA_WITHOUT_MESSAGE_OBJECTS
#include <frontpanel_data/front_panel_messages.h>

namespace FrontPanel {

Message::Message(uint32_t message_type) : type(message_type), length(0), payload(nullptr) {}

Message::~Message() = default;

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

UserInputTimeoutShortcutMessage::~UserInputTimeoutShortcutMessage() = default;

DisplayUpdateMessage::DisplayUpdateMessage() : Message(DisplayUpdateT) {}

DisplayUpdateMessage::~DisplayUpdateMessage() = default;

DisplayClearMessage::DisplayClearMessage() : Message(DisplayClearT) {}

DisplayClearMessage::~DisplayClearMessage() = default;

UserInputTimeoutMessage::UserInputTimeoutMessage() : Message(UserInputTimeoutT) {}

UserInputTimeoutMessage::~UserInputTimeoutMessage() = default;

SelectPressMessageClass::~SelectPressMessageClass() = default;

EscapePressMessageClass::~EscapePressMessageClass() = default;

GenericInvalidMessage::GenericInvalidMessage() : Message(LastMessageT) {}

GenericInvalidMessage::~GenericInvalidMessage() = default;

}  // namespace FrontPanel
