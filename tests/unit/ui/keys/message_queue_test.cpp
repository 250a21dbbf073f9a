#include <frontpanel_ui/message_queue.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace frontpanel {
namespace {

TEST(MessageQueue, GivesMessagesInTheirOrder) {
    Message_queue queue;
    std::vector<const FrontPanel::Message*> sent;
    for (const Key::Kind kind : {Key::UP, Key::SELECT, Key::UP}) {
        Message_pointer message = message_of({kind});
        sent.push_back(message.get());
        EXPECT_TRUE(queue.push(std::move(message)));
    }
    for (const FrontPanel::Message* const message : sent) {
        EXPECT_EQ(queue.pop().get(), message);
    }
    EXPECT_EQ(queue.pop(), nullptr);
}

TEST(MessageQueue, TakesNothingForNothing) {
    Message_queue queue;
    EXPECT_FALSE(queue.push(message_of({Key::SHORTCUT, 1000})));
    EXPECT_EQ(queue.pop(), nullptr);
}

TEST(MessageQueue, LosesWhatComesWhileItIsFull) {
    Message_queue queue;
    for (size_t i = 0; i < Message_queue::CAPACITY; ++i) {
        EXPECT_TRUE(queue.push(message_of({Key::SHORTCUT, static_cast<int>(i)})));
    }
    EXPECT_FALSE(queue.push(message_of({Key::SELECT})));
    for (size_t i = 0; i < Message_queue::CAPACITY; ++i) {
        EXPECT_EQ(queue.pop()->payload[0], i);
    }
    EXPECT_EQ(queue.pop(), nullptr);
    EXPECT_TRUE(queue.push(message_of({Key::SELECT})));
}

}  // namespace
}  // namespace frontpanel
