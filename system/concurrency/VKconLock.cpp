#include "VKconLock.h"

#include "VKconException.h"
#include "VKsystemError.h"
#include "VKthread.h"

#include <cerrno>

VKconLock::VKconLock()
{
    pthread_mutexattr_t attributes;
    int result = pthread_mutexattr_init(&attributes);
    if (result == 0) {
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        result = pthread_mutex_init(&m_mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    if (result != 0) {
        errno = result;
        throw VKconException(GetMyThreadID(), "../src/VKconLock.cpp", __LINE__, "Create Lock Failed", VKgetLastError());
    }
}

VKconLock::~VKconLock() { pthread_mutex_destroy(&m_mutex); }

int VKconLock::Lock()
{
    const int result = pthread_mutex_lock(&m_mutex);
    return result == 0 || result == EDEADLK ? 0 : 2;
}

int VKconLock::Unlock() { return pthread_mutex_unlock(&m_mutex); }

int VKconLock::TryLock()
{
    const int result = pthread_mutex_trylock(&m_mutex);
    if (result == EBUSY)
        return 1;
    return result == 0 || result == EDEADLK ? 0 : 2;
}
