#include <frontpanel_ui/key_message.h>

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace frontpanel {

static bool operator==(const Key& left, const Key& right) {
    return left.kind == right.kind && left.button == right.button;
}

static std::ostream& operator<<(std::ostream& out, const Key& key) {
    return out << "key " << key.kind << ", button " << key.button;
}

namespace {

using FrontPanel::Message;
using FrontPanel::PayloadMessage;
using Bytes = std::vector<unsigned char>;
using Keys = std::vector<Key>;

Message_pointer message_with(uint32_t type, const Bytes& bytes) {
    auto message = std::make_unique<PayloadMessage>(static_cast<unsigned short>(bytes.size()));
    message->type = type;
    if (!bytes.empty()) {
        std::memcpy(message->payload, bytes.data(), bytes.size());
    }
    return message;
}

Bytes payload_of(const Message& message) {
    return Bytes(message.payload, message.payload + message.length);
}

struct Row {
    Key key;
    uint32_t type;
    Bytes payload;
};

const std::vector<Row> KEYS = {
    {{Key::UP}, FrontPanel::ShaftEncoderUIT, {1}},
    {{Key::DOWN}, FrontPanel::ShaftEncoderUIT, {255}},
    {{Key::SELECT}, FrontPanel::PushButtonUIT, {2, 0, 1, 11}},
    {{Key::BACK}, FrontPanel::PushButtonUIT, {2, 0, 1, 13}},
    {{Key::COARSER}, FrontPanel::PushButtonUIT, {2, 0, 1, 14}},
    {{Key::FINER}, FrontPanel::PushButtonUIT, {2, 0, 1, 15}},
    {{Key::INSERT}, FrontPanel::PushButtonUIT, {2, 0, 1, 16}},
    {{Key::DELETE}, FrontPanel::PushButtonUIT, {2, 0, 1, 17}},
    {{Key::DIAGNOSTICS}, FrontPanel::PushButtonUIT, {2, 0, 1, 18}},
    {{Key::LEFT}, FrontPanel::PushButtonUIT, {2, 0, 1, 19}},
    {{Key::RIGHT}, FrontPanel::PushButtonUIT, {2, 0, 1, 20}},
    {{Key::ERASE}, FrontPanel::PushButtonUIT, {2, 0, 1, 21}},
    {{Key::SHORTCUT, 0}, FrontPanel::PushButtonUIT, {0}},
    {{Key::SHORTCUT, 1}, FrontPanel::PushButtonUIT, {1}},
    {{Key::SHORTCUT, 99}, FrontPanel::PushButtonUIT, {99}},
    {{Key::SHORTCUT, 254}, FrontPanel::PushButtonUIT, {254}},
};

TEST(KeyMessage, HoldsEachKey) {
    for (const Row& row : KEYS) {
        SCOPED_TRACE(testing::PrintToString(row.key));
        const Message_pointer message = message_of(row.key);
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(message->type, row.type);
        EXPECT_EQ(payload_of(*message), row.payload);
    }
}

TEST(KeyMessage, StandsForItsKeyAgain) {
    for (const Row& row : KEYS) {
        const Message_pointer message = message_of(row.key);
        EXPECT_EQ(keys_of(*message), Keys{row.key});
        EXPECT_FALSE(tells_idle(*message));
    }
}

TEST(KeyMessage, HoldsNoShortcutBeyondAByte) {
    for (const int button : {-1, 255, 256, 0x7FFFFFFF}) {
        EXPECT_EQ(message_of({Key::SHORTCUT, button}), nullptr) << button;
    }
}

TEST(KeyMessage, OfTheCatalogueIsUnderstood) {
    EXPECT_EQ(keys_of(FrontPanel::SelectPressMessage), Keys{{Key::SELECT}});
    EXPECT_EQ(keys_of(FrontPanel::EscapePressMessage), Keys{{Key::BACK}});
}

TEST(KeyMessage, OfAFastShaftIsAKeyForEachStep) {
    EXPECT_EQ(keys_of(*message_with(FrontPanel::ShaftEncoderUIT, {3})), Keys(3, {Key::UP}));
    EXPECT_EQ(keys_of(*message_with(FrontPanel::ShaftEncoderUIT, {0xFE})), Keys(2, {Key::DOWN}));
    EXPECT_EQ(keys_of(*message_with(FrontPanel::ShaftEncoderUIT, {0x7F})), Keys(127, {Key::UP}));
    EXPECT_EQ(keys_of(*message_with(FrontPanel::ShaftEncoderUIT, {0x80})), Keys(128, {Key::DOWN}));
    EXPECT_EQ(keys_of(*message_with(FrontPanel::ShaftEncoderUIT, {0})), Keys());
}

TEST(KeyMessage, TellsWhenNobodyTouchesThePanel) {
    for (const Message* const message :
         {static_cast<const Message*>(&FrontPanel::UserInputTimeout),
          static_cast<const Message*>(&FrontPanel::UserInputTimeoutShortcut)}) {
        EXPECT_TRUE(tells_idle(*message));
        EXPECT_EQ(keys_of(*message), Keys());
    }
}

TEST(KeyMessage, ThatIsUnknownOrDamagedStandsForNothing) {
    const Message without_bytes(FrontPanel::PushButtonUIT);
    Message lost_bytes(FrontPanel::ShaftEncoderUIT);
    lost_bytes.length = 1;
    Message lost_code(FrontPanel::PushButtonUIT);
    lost_code.length = 4;
    std::vector<Message_pointer> built;
    for (const Bytes& bytes : {Bytes{2, 0}, Bytes{2, 0, 1}, Bytes{2, 0, 1, 10}, Bytes{2, 0, 1, 12},
                               Bytes{2, 0, 1, 99}, Bytes{2, 0, 1, 255}, Bytes{2, 0, 0, 11},
                               Bytes{2, 1, 1, 11}, Bytes{0, 0, 1, 11}, Bytes{2, 0, 1, 11, 0}}) {
        built.push_back(message_with(FrontPanel::PushButtonUIT, bytes));
    }
    built.push_back(message_with(FrontPanel::ShaftEncoderUIT, {}));
    built.push_back(message_with(FrontPanel::ShaftEncoderUIT, {1, 0}));
    built.push_back(message_with(FrontPanel::LedUIT, {1}));
    built.push_back(message_with(FrontPanel::LedUIT, {2, 0, 1, 11}));
    built.push_back(message_with(FrontPanel::InvalidMessageT, {2, 0, 1, 11}));
    built.push_back(message_with(FrontPanel::UserInputTimeoutT, {255}));
    std::vector<const Message*> messages = {&without_bytes,
                                            &lost_bytes,
                                            &lost_code,
                                            &FrontPanel::HeartBeat,
                                            &FrontPanel::Ack,
                                            &FrontPanel::Reset,
                                            &FrontPanel::Startup,
                                            &FrontPanel::DisplayUpdate,
                                            &FrontPanel::GenericInvalid};
    for (const Message_pointer& message : built) {
        messages.push_back(message.get());
    }
    for (const Message* const message : messages) {
        EXPECT_EQ(keys_of(*message), Keys()) << "type " << message->type;
        EXPECT_FALSE(tells_idle(*message)) << "type " << message->type;
    }
}

}  // namespace
}  // namespace frontpanel
