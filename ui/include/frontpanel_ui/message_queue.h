// Messages on their way from the panel's keys to the controller, in the order in which they came.
//
// For one thread. Messages that come while the queue is full are lost.
#ifndef FRONTPANEL_UI_MESSAGE_QUEUE_H
#define FRONTPANEL_UI_MESSAGE_QUEUE_H

#include <deque>

#include <frontpanel_ui/key_message.h>

namespace frontpanel {

class Message_queue {
public:
    static constexpr size_t CAPACITY = 64;

    // False when the message is null or lost.
    bool push(Message_pointer message);
    // The message that has waited longest; null when none waits.
    Message_pointer pop();

private:
    std::deque<Message_pointer> m_messages;
};

}  // namespace frontpanel

#endif
