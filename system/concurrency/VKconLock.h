#pragma once

#include "VKobject.h"

#include <pthread.h>

/// A recursive mutex: every lock of this system may be taken again by the thread that holds it.
class VKconLock : public VKobject
{
public:
    /// Throws VKconException "Create Lock Failed".
    VKconLock();
    ~VKconLock() override;
    VKconLock(const VKconLock&) = delete;
    VKconLock& operator=(const VKconLock&) = delete;

    /// 0 when the lock is held now; 2 on failure.
    int Lock();
    /// What `pthread_mutex_unlock` returns: 0, or EPERM when the caller does not hold the lock.
    int Unlock();
    /// 0 when the lock is held now; 1 when another thread holds it; 2 on failure.
    int TryLock();

private:
    pthread_mutex_t m_mutex;
};
