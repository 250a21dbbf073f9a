#include <frontpanel_ui/message_queue.h>

#include <utility>

namespace frontpanel {

bool Message_queue::push(Message_pointer message) {
    if (message == nullptr || m_messages.size() == CAPACITY) {
        return false;
    }
    m_messages.push_back(std::move(message));
    return true;
}

Message_pointer Message_queue::pop() {
    if (m_messages.empty()) {
        return nullptr;
    }
    Message_pointer message = std::move(m_messages.front());
    m_messages.pop_front();
    return message;
}

}  // namespace frontpanel
