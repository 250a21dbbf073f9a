// A non-recursive mutex with explicit initialisation, as the range entries use it for their bounds.
#ifndef FRONTPANEL_DATA_JMUTEX_H
#define FRONTPANEL_DATA_JMUTEX_H

#include <pthread.h>

#include <frontpanel_data/export.h>

class FRONTPANEL_DATA_EXPORT JMutex {
public:
    JMutex();
    ~JMutex();
    JMutex(const JMutex&) = delete;
    JMutex& operator=(const JMutex&) = delete;

    // Makes the mutex usable. A second call changes nothing. 0, or an error number of the platform.
    int Init();
    // 0, or EINVAL before `Init`, or an error number of the platform. Locking twice from one thread blocks.
    int Lock();
    int Unlock();
    bool IsInitialized() const { return m_initialised; }

private:
    pthread_mutex_t m_mutex;
    bool m_initialised;
};

#endif
