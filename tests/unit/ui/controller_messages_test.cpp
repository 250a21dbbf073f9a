// What the controller does with the messages that it receives.
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"pid": 100, "type": "integer", "min": 0, "max": 200, "value": 3})";

constexpr const char* ITEMS = R"(
    {"type": "node", "name": "Audio", "items": [
        {"type": "node", "name": "Output", "items": [
            {"type": "range", "name": "Gain", "pid": 100, "format": "%d dB", "shortcut": 1}]}]},
    {"type": "range", "name": "Level", "pid": 100})";

const Lines TOP = {">Audio           ...", " Level             3"};
const Lines GAIN = {">Gain           3 dB", "                    "};

class Messages : public testing::Test {
protected:
    void receive(const Key& key) { panel.controller().receive(*message_of(key)); }
    void receive_bytes(uint32_t type, const std::vector<unsigned char>& bytes) {
        FrontPanel::PayloadMessage message(static_cast<unsigned short>(bytes.size()));
        message.type = type;
        std::copy(bytes.begin(), bytes.end(), message.payload);
        panel.controller().receive(message);
    }

    Menu_panel panel{menu_text(PARAMETERS, ITEMS)};
};

TEST_F(Messages, OfKeysMoveThroughTheMenus) {
    receive({Key::SELECT});
    receive({Key::SELECT});
    EXPECT_EQ(panel.lines(), GAIN);
    receive({Key::BACK});
    receive({Key::BACK});
    EXPECT_EQ(panel.lines(), TOP);
    receive({Key::DOWN});
    EXPECT_EQ(panel.lines(), (Lines{" Audio           ...", ">Level             3"}));
    receive({Key::UP});
    EXPECT_EQ(panel.lines(), TOP);
    receive({Key::SHORTCUT, 1});
    EXPECT_EQ(panel.lines(), GAIN);
}

TEST_F(Messages, OfTheCatalogueSelectAndEscape) {
    panel.controller().receive(FrontPanel::SelectPressMessage);
    EXPECT_EQ(panel.lines()[0], ">Output          ...");
    panel.controller().receive(FrontPanel::EscapePressMessage);
    EXPECT_EQ(panel.lines(), TOP);
}

TEST_F(Messages, OfTheShaftStepAsOftenAsItWasTurned) {
    receive({Key::SHORTCUT, 1});
    receive({Key::SELECT});
    receive_bytes(FrontPanel::ShaftEncoderUIT, {5});
    EXPECT_EQ(panel.lines()[1], "8 dB                ");
    receive({Key::COARSER});
    receive_bytes(FrontPanel::ShaftEncoderUIT, {2});
    EXPECT_EQ(panel.lines()[1], "28 dB               ");
    receive({Key::FINER});
    receive_bytes(FrontPanel::ShaftEncoderUIT, {0xFD});
    receive({Key::SELECT});
    EXPECT_EQ(panel.lines()[0], ">Gain          25 dB");
}

TEST_F(Messages, ThatNobodyTouchesThePanelBringItHome) {
    for (const FrontPanel::Message* const message :
         {static_cast<const FrontPanel::Message*>(&FrontPanel::UserInputTimeout),
          static_cast<const FrontPanel::Message*>(&FrontPanel::UserInputTimeoutShortcut)}) {
        receive({Key::SHORTCUT, 1});
        receive({Key::SELECT});
        receive({Key::UP});
        EXPECT_EQ(panel.lines(), (Lines{"Gain                ", "4 dB                "}));
        panel.controller().receive(*message);
        EXPECT_EQ(panel.lines(), TOP) << "and the edited value is dropped";
        EXPECT_FALSE(panel.leds().edit);
        receive({Key::DOWN});
        panel.controller().receive(*message);
        EXPECT_EQ(panel.lines(), TOP);
    }
}

TEST_F(Messages, ThatNobodyTouchesThePanelAcknowledgeNothing) {
    panel.fail(Memory_device::Operation_kind::WRITE, 100);
    receive({Key::SHORTCUT, 1});
    receive({Key::SELECT});
    receive({Key::UP});
    receive({Key::SELECT});
    const Lines notice = panel.lines();
    EXPECT_TRUE(panel.leds().alarm);
    panel.controller().receive(FrontPanel::UserInputTimeout);
    EXPECT_EQ(panel.lines(), notice);
    receive({Key::SELECT});
    EXPECT_EQ(panel.lines()[0], TOP[0]);
}

TEST_F(Messages, ThatAreUnknownOrDamagedAreIgnored) {
    receive({Key::SELECT});
    const Lines before = panel.lines();
    panel.controller().receive(FrontPanel::HeartBeat);
    panel.controller().receive(FrontPanel::Reset);
    panel.controller().receive(FrontPanel::GenericInvalid);
    receive_bytes(FrontPanel::PushButtonUIT, {2, 0, 1});
    receive_bytes(FrontPanel::PushButtonUIT, {2, 0, 1, 77});
    receive_bytes(FrontPanel::PushButtonUIT, {2, 0, 1, 11, 11});
    receive_bytes(FrontPanel::ShaftEncoderUIT, {});
    receive_bytes(FrontPanel::ShaftEncoderUIT, {1, 1, 1, 1});
    receive_bytes(FrontPanel::LcdUIT, {1});
    EXPECT_EQ(panel.lines(), before);
}

TEST_F(Messages, ThatWaitAreAllTakenInOrder) {
    Message_queue waiting;
    for (const Key::Kind kind : {Key::SELECT, Key::SELECT, Key::SELECT, Key::UP, Key::SELECT}) {
        waiting.push(message_of({kind}));
    }
    panel.controller().receive(waiting);
    EXPECT_EQ(waiting.pop(), nullptr);
    EXPECT_EQ(panel.lines()[0], ">Gain           4 dB");
}

}  // namespace
}  // namespace frontpanel
