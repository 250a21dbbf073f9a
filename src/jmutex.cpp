#include <frontpanel_data/jmutex.h>

#include <cerrno>

JMutex::JMutex() : m_mutex(), m_initialised(false) {}

JMutex::~JMutex() {
    if (m_initialised) {
        pthread_mutex_destroy(&m_mutex);
    }
}

int JMutex::Init() {
    if (m_initialised) {
        return 0;
    }
    const int result = pthread_mutex_init(&m_mutex, nullptr);
    m_initialised = result == 0;
    return result;
}

int JMutex::Lock() {
    return m_initialised ? pthread_mutex_lock(&m_mutex) : EINVAL;
}

int JMutex::Unlock() {
    return m_initialised ? pthread_mutex_unlock(&m_mutex) : EINVAL;
}
