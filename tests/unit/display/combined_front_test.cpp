#include <frontpanel_display/combined_front.h>

#include <gtest/gtest.h>
#include <sys/eventfd.h>

#include <deque>

namespace frontpanel {
namespace {

struct Script {
    std::deque<Front_event> events;
    int source = -1;
    short interest = POLLIN;
    Time due = Time::max();
    int frames = 0;
};

template <typename Base>
class Scripted : public Base {
public:
    explicit Scripted(Script& script) : m_script(script) {}
    std::optional<Front_event> next(Time) override {
        if (m_script.events.empty()) {
            return std::nullopt;
        }
        const Front_event event = m_script.events.front();
        m_script.events.pop_front();
        return event;
    }
    pollfd source() const override { return {m_script.source, m_script.interest, 0}; }
    Time due() const override { return m_script.due; }

protected:
    Script& m_script;
};

class Scripted_front : public Scripted<Front> {
public:
    using Scripted::Scripted;
    void show(const Frame&) override { ++m_script.frames; }
};

class Combined_front_test : public testing::Test {
protected:
    Combined_front_test() {
        std::vector<std::unique_ptr<Input>> inputs;
        inputs.push_back(std::make_unique<Scripted<Input>>(knob));
        inputs.push_back(std::make_unique<Scripted<Input>>(buttons));
        std::vector<std::unique_ptr<Front>> fronts;
        fronts.push_back(std::make_unique<Scripted_front>(display));
        fronts.push_back(std::make_unique<Scripted_front>(lamps));
        front = std::make_unique<Combined_front>(std::move(fronts), std::move(inputs));
    }
    static Front_event key(Key::Kind kind) { return {Front_event::KEY, {kind}}; }
    bool is_ready() const {
        pollfd source = front->source();
        return poll(&source, 1, 0) == 1;
    }
    static void raise(int descriptor) {
        const uint64_t one = 1;
        ASSERT_EQ(write(descriptor, &one, sizeof one), static_cast<ssize_t>(sizeof one));
    }

    Script display;
    Script lamps;
    Script knob;
    Script buttons;
    std::unique_ptr<Combined_front> front;
    Time now{std::chrono::seconds(1)};
};

TEST_F(Combined_front_test, ShowsFramesOnEachDisplay) {
    front->show({Lcd({16, 2}), Leds()});
    EXPECT_EQ(display.frames, 1);
    EXPECT_EQ(lamps.frames, 1);
}

TEST_F(Combined_front_test, DeliversTheEventsOfAllInTurn) {
    display.events = {{Front_event::REDRAW}, {Front_event::REDRAW}};
    knob.events = {key(Key::UP), key(Key::UP)};
    buttons.events = {key(Key::SELECT)};
    std::vector<int> kinds;
    while (const std::optional<Front_event> event = front->next(now)) {
        kinds.push_back(event->kind == Front_event::REDRAW ? -1 : event->key.kind);
    }
    EXPECT_EQ(kinds, (std::vector<int>{-1, Key::UP, Key::SELECT, -1, Key::UP}));
}

TEST_F(Combined_front_test, IsDueWhenTheFirstOfThemIs) {
    EXPECT_EQ(front->due(), Time::max());
    buttons.due = now + std::chrono::seconds(2);
    knob.due = now + std::chrono::seconds(1);
    EXPECT_EQ(front->due(), knob.due);
    display.due = Time::min();
    EXPECT_EQ(front->due(), Time::min());
}

TEST_F(Combined_front_test, IsReadyWhenOneOfThemIs) {
    const Descriptor first(eventfd(0, EFD_CLOEXEC));
    const Descriptor second(eventfd(0, EFD_CLOEXEC));
    EXPECT_FALSE(is_ready());
    display.source = first.number();
    buttons.source = second.number();
    EXPECT_FALSE(is_ready());
    raise(second.number());
    EXPECT_TRUE(is_ready());
    buttons.source = -1;
    EXPECT_FALSE(is_ready());
    raise(first.number());
    EXPECT_TRUE(is_ready());
}

TEST_F(Combined_front_test, WaitsForRoomToWriteWhileAPartAsksForIt) {
    const Descriptor writable(eventfd(0, EFD_CLOEXEC));
    display.source = writable.number();
    EXPECT_FALSE(is_ready());
    display.interest = POLLIN | POLLOUT;
    EXPECT_TRUE(is_ready());
    display.interest = POLLIN;
    EXPECT_FALSE(is_ready());
}

TEST_F(Combined_front_test, ADescriptorThatWasOpenedAnewIsWaitedFor) {
    Descriptor source(eventfd(0, EFD_CLOEXEC));
    knob.source = source.number();
    EXPECT_FALSE(is_ready());
    const int number = source.number();
    source.reset();
    source = Descriptor(eventfd(1, EFD_CLOEXEC));
    ASSERT_EQ(source.number(), number);
    EXPECT_TRUE(is_ready());
}

}  // namespace
}  // namespace frontpanel
