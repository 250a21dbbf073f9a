// The messages between the application and the front panel's hardware, and one ready-made object of each
// common one.
//
// Every unit that includes this header builds a set of the objects of its own before `main` (or when its
// library is loaded) and destroys it afterwards, in reverse order; until then any thread may read them. A unit
// that needs the classes alone defines FRONTPANEL_DATA_WITHOUT_MESSAGE_OBJECTS before it includes this header.
#ifndef FRONTPANEL_DATA_FRONT_PANEL_MESSAGES_H
#define FRONTPANEL_DATA_FRONT_PANEL_MESSAGES_H

#include <cstdint>

#include <frontpanel_data/data_interface.h>
#include <frontpanel_data/export.h>

namespace FrontPanel {

using ::BYTE_MASK;

// Message types.
enum : uint32_t {
    HeartBeatT = 0,
    AckT = 1,
    NackT = 2,
    ResetT = 3,
    StartupT = 4,
    UpgradeStartT = 5,
    UpgradePacketT = 6,
    UpgradeEndT = 7,
    DeviceTypeT = 16,
    SerialNumberT = 17,
    FirmwareVersionT = 18,
    InvalidMessageT = 19,
    DisplayUpdateT = 32,
    DisplayClearT = 33,
    DisplaySetCursorT = 34,
    DisplaySetNormalT = 35,
    DisplaySetInverseT = 36,
    DisplayStringT = 37,
    PushButtonUIT = 48,
    LedUIT = 49,
    ShaftEncoderUIT = 50,
    LcdUIT = 51,
    NumberOfMessageTypes = 52,
    PerformNowT = 0x79999999,
    UserInputTimeoutT = 0x80000000,
    LastMessageT = 0xFFFFFFFF
};

// A message, plain unless a derived class says otherwise. Not copied, since a copy of the base would point
// into the payload of the message that it was made of.
class FRONTPANEL_DATA_EXPORT Message {
public:
    // Without payload.
    explicit Message(uint32_t message_type = InvalidMessageT);
    virtual ~Message();
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    uint32_t type;
    uint16_t length;         // bytes of the payload
    unsigned char* payload;  // null when there is none
};

// A message that owns its payload. The sender sets the type, may set a smaller length, and must not change the
// pointer.
class FRONTPANEL_DATA_EXPORT PayloadMessage : public Message {
public:
    // Of type InvalidMessageT, with `size` bytes of 0.
    explicit PayloadMessage(unsigned short size);
    ~PayloadMessage() override;
};

class FRONTPANEL_DATA_EXPORT HeartBeatMessage : public Message {
public:
    HeartBeatMessage();
    ~HeartBeatMessage() override;
};

class FRONTPANEL_DATA_EXPORT AckMessage : public Message {
public:
    AckMessage();
    ~AckMessage() override;
};

class FRONTPANEL_DATA_EXPORT NackMessage : public Message {
public:
    NackMessage();
    ~NackMessage() override;
};

class FRONTPANEL_DATA_EXPORT StartupMessage : public Message {
public:
    StartupMessage();
    ~StartupMessage() override;
};

class FRONTPANEL_DATA_EXPORT ResetMessage : public Message {
public:
    ResetMessage();
    ~ResetMessage() override;
};

class FRONTPANEL_DATA_EXPORT UpgradeStartMessage : public Message {
public:
    UpgradeStartMessage();
    ~UpgradeStartMessage() override;
};

class FRONTPANEL_DATA_EXPORT UpgradeEndMessage : public Message {
public:
    UpgradeEndMessage();
    ~UpgradeEndMessage() override;
};

class FRONTPANEL_DATA_EXPORT RequestDeviceTypeMessage : public Message {
public:
    RequestDeviceTypeMessage();
    ~RequestDeviceTypeMessage() override;
};

class FRONTPANEL_DATA_EXPORT RequestSerialNumberMessage : public Message {
public:
    RequestSerialNumberMessage();
    ~RequestSerialNumberMessage() override;
};

class FRONTPANEL_DATA_EXPORT RequestFirmwareVersionMessage : public Message {
public:
    RequestFirmwareVersionMessage();
    ~RequestFirmwareVersionMessage() override;
};

// A shortcut message that reports the idle panel instead of a button: its only byte is 255.
class FRONTPANEL_DATA_EXPORT UserInputTimeoutShortcutMessage : public PayloadMessage {
public:
    UserInputTimeoutShortcutMessage();
    ~UserInputTimeoutShortcutMessage() override;
};

class FRONTPANEL_DATA_EXPORT DisplayUpdateMessage : public Message {
public:
    DisplayUpdateMessage();
    ~DisplayUpdateMessage() override;
};

class FRONTPANEL_DATA_EXPORT DisplayClearMessage : public Message {
public:
    DisplayClearMessage();
    ~DisplayClearMessage() override;
};

// No key was pressed for a while.
class FRONTPANEL_DATA_EXPORT UserInputTimeoutMessage : public Message {
public:
    UserInputTimeoutMessage();
    ~UserInputTimeoutMessage() override;
};

// The push of the select button: 2, 0, 1 and the key code 11.
class FRONTPANEL_DATA_EXPORT SelectPressMessageClass : public PayloadMessage {
public:
    SelectPressMessageClass();
    ~SelectPressMessageClass() override;
};

// The push of the escape button: 2, 0, 1 and the key code 13.
class FRONTPANEL_DATA_EXPORT EscapePressMessageClass : public PayloadMessage {
public:
    EscapePressMessageClass();
    ~EscapePressMessageClass() override;
};

// A message without a meaning, of type LastMessageT.
class FRONTPANEL_DATA_EXPORT GenericInvalidMessage : public Message {
public:
    GenericInvalidMessage();
    ~GenericInvalidMessage() override;
};

#ifndef FRONTPANEL_DATA_WITHOUT_MESSAGE_OBJECTS
// The order is the order in which a unit builds them.
const HeartBeatMessage HeartBeat;
const AckMessage Ack;
const NackMessage Nack;
const StartupMessage Startup;
const ResetMessage Reset;
const UpgradeStartMessage UpgradeStart;
const UpgradeEndMessage UpgradeEnd;
const RequestDeviceTypeMessage RequestDeviceType;
const RequestSerialNumberMessage RequestSerialNumber;
const RequestFirmwareVersionMessage RequestFirmwareVersion;
const UserInputTimeoutShortcutMessage UserInputTimeoutShortcut;
const DisplayUpdateMessage DisplayUpdate;
const DisplayClearMessage DisplayClear;
const UserInputTimeoutMessage UserInputTimeout;
const SelectPressMessageClass SelectPressMessage;
const EscapePressMessageClass EscapePressMessage;
const GenericInvalidMessage GenericInvalid;
#endif

}  // namespace FrontPanel

#endif
