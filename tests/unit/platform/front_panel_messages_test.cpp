#include <frontpanel_data/front_panel_messages.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace {

using FrontPanel::Message;
using FrontPanel::PayloadMessage;
using Bytes = std::vector<unsigned char>;

struct Row {
    const char* name;
    const Message& message;
    const std::type_info& class_of;
    uint32_t type;
    Bytes payload;
};

#define ROW(object, class_of, ...)                                             \
    Row {                                                                      \
#object, FrontPanel::object, typeid(FrontPanel::class_of), __VA_ARGS__ \
    }

std::vector<Row> catalogue() {
    return {
        ROW(HeartBeat, HeartBeatMessage, 0, {}),
        ROW(Ack, AckMessage, 1, {}),
        ROW(Nack, NackMessage, 2, {}),
        ROW(Startup, StartupMessage, 4, {}),
        ROW(Reset, ResetMessage, 3, {}),
        ROW(UpgradeStart, UpgradeStartMessage, 5, {}),
        ROW(UpgradeEnd, UpgradeEndMessage, 7, {}),
        ROW(RequestDeviceType, RequestDeviceTypeMessage, 16, {}),
        ROW(RequestSerialNumber, RequestSerialNumberMessage, 17, {}),
        ROW(RequestFirmwareVersion, RequestFirmwareVersionMessage, 18, {}),
        ROW(UserInputTimeoutShortcut, UserInputTimeoutShortcutMessage, 48, {255}),
        ROW(DisplayUpdate, DisplayUpdateMessage, 32, {}),
        ROW(DisplayClear, DisplayClearMessage, 33, {}),
        ROW(UserInputTimeout, UserInputTimeoutMessage, 0x80000000, {}),
        ROW(SelectPressMessage, SelectPressMessageClass, 48, {2, 0, 1, 11}),
        ROW(EscapePressMessage, EscapePressMessageClass, 48, {2, 0, 1, 13}),
        ROW(GenericInvalid, GenericInvalidMessage, 0xFFFFFFFF, {}),
    };
}

TEST(MessageCatalogue, HoldsEachObjectAsItIsSent) {
    for (const Row& row : catalogue()) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(typeid(row.message) == row.class_of);
        EXPECT_EQ(row.message.type, row.type);
        ASSERT_EQ(row.message.length, row.payload.size());
        ASSERT_EQ(row.message.payload == nullptr, row.payload.empty());
        EXPECT_EQ(Bytes(row.message.payload, row.message.payload + row.message.length),
                  row.payload);
    }
}

TEST(MessageCatalogue, DerivesMessagesWithBytesFromTheOwnerOfBytes) {
    for (const Row& row : catalogue()) {
        EXPECT_EQ(dynamic_cast<const PayloadMessage*>(&row.message) != nullptr,
                  !row.payload.empty())
            << row.name;
    }
}

TEST(MessageCatalogue, NumbersTheTypes) {
    const std::vector<std::pair<uint32_t, uint32_t>> types = {
        {FrontPanel::HeartBeatT, 0},
        {FrontPanel::AckT, 1},
        {FrontPanel::NackT, 2},
        {FrontPanel::ResetT, 3},
        {FrontPanel::StartupT, 4},
        {FrontPanel::UpgradeStartT, 5},
        {FrontPanel::UpgradePacketT, 6},
        {FrontPanel::UpgradeEndT, 7},
        {FrontPanel::DeviceTypeT, 16},
        {FrontPanel::SerialNumberT, 17},
        {FrontPanel::FirmwareVersionT, 18},
        {FrontPanel::InvalidMessageT, 19},
        {FrontPanel::DisplayUpdateT, 32},
        {FrontPanel::DisplayClearT, 33},
        {FrontPanel::DisplaySetCursorT, 34},
        {FrontPanel::DisplaySetNormalT, 35},
        {FrontPanel::DisplaySetInverseT, 36},
        {FrontPanel::DisplayStringT, 37},
        {FrontPanel::PushButtonUIT, 48},
        {FrontPanel::LedUIT, 49},
        {FrontPanel::ShaftEncoderUIT, 50},
        {FrontPanel::LcdUIT, 51},
        {FrontPanel::NumberOfMessageTypes, 52},
        {FrontPanel::PerformNowT, 2040109465},
        {FrontPanel::UserInputTimeoutT, 2147483648},
        {FrontPanel::LastMessageT, 4294967295},
    };
    for (const auto& [type, number] : types) {
        EXPECT_EQ(type, number);
    }
    using Type = std::underlying_type_t<decltype(FrontPanel::AckT)>;
    EXPECT_TRUE((std::is_same_v<Type, uint32_t>));
}

TEST(MessageCatalogue, KnowsTheMaskOfAByte) {
    EXPECT_EQ(FrontPanel::BYTE_MASK, 255);
    EXPECT_EQ(&FrontPanel::BYTE_MASK, &::BYTE_MASK);
    using namespace FrontPanel;
    EXPECT_EQ(BYTE_MASK, 255);
}

TEST(Messages, ArePlainUntilTheyAreFilled) {
    const Message message;
    EXPECT_EQ(message.type, static_cast<uint32_t>(FrontPanel::InvalidMessageT));
    EXPECT_EQ(message.length, 0);
    EXPECT_EQ(message.payload, nullptr);
    EXPECT_EQ(Message(FrontPanel::LedUIT).type, static_cast<uint32_t>(FrontPanel::LedUIT));
}

TEST(Messages, WithAPayloadOwnItsBytes) {
    PayloadMessage message(3);
    EXPECT_EQ(message.type, static_cast<uint32_t>(FrontPanel::InvalidMessageT));
    EXPECT_EQ(message.length, 3);
    ASSERT_NE(message.payload, nullptr);
    EXPECT_EQ(Bytes(message.payload, message.payload + 3), (Bytes{0, 0, 0}));
    message.payload[2] = 9;
    EXPECT_EQ(message.payload[2], 9);
}

TEST(Messages, TakeEverySizeOfPayload) {
    const PayloadMessage empty(0);
    EXPECT_EQ(empty.length, 0);
    EXPECT_EQ(empty.payload, nullptr);
    const PayloadMessage longest(65535);
    EXPECT_EQ(longest.length, 65535);
    longest.payload[65534] = 1;
    EXPECT_EQ(longest.payload[65534], 1);
}

TEST(Messages, AreDeletedThroughTheirBase) {
    const Message* const message = new FrontPanel::SelectPressMessageClass;
    EXPECT_EQ(message->length, 4);
    delete message;
}

// A copy would release the same bytes once more.
TEST(Messages, AreNotCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<Message>);
    EXPECT_FALSE(std::is_copy_assignable_v<Message>);
    EXPECT_FALSE(std::is_copy_constructible_v<PayloadMessage>);
    EXPECT_FALSE(std::is_copy_assignable_v<PayloadMessage>);
    EXPECT_FALSE(std::is_copy_constructible_v<FrontPanel::EscapePressMessageClass>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Message>);
}

}  // namespace
