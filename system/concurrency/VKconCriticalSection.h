#pragma once

#include "VKconLock.h"

/// The member by which a class guards its state: entered and left by hand around short sections, or held by a
/// `vk::ScopedSection`. Wraps a lock of its own or one that is lent to it.
class VKconCriticalSection
{
public:
    /// Makes and owns a lock; does not unlock on destruction.
    VKconCriticalSection();
    /// Takes an existing lock, which may be null (then `Enter` answers false). With `ownsLock` the lock is deleted with
    /// this object, otherwise it must outlive it.
    VKconCriticalSection(VKconLock* lock, bool lockNow, bool unlockOnDestruction, bool ownsLock);
    ~VKconCriticalSection();
    VKconCriticalSection(const VKconCriticalSection&) = delete;
    VKconCriticalSection& operator=(const VKconCriticalSection&) = delete;

    /// True when the lock is held now.
    bool Enter();
    void Leave();
    VKconLock* GetLockObj() { return m_pLock; }

private:
    VKconLock* m_pLock;
    bool m_bOwnsLock;
    bool m_bUnlockOnDestruction;
};

namespace vk {

/// Holds a critical section or a lock for the length of a block: `vk::ScopedSection guard(m_objLock);`
template <class Lock>
class ScopedSection
{
public:
    explicit ScopedSection(Lock& lock) : m_lock(&lock)
    {
        if (!Take(lock))
            m_lock = nullptr;
    }
    ~ScopedSection() { Release(); }
    ScopedSection(const ScopedSection&) = delete;
    ScopedSection& operator=(const ScopedSection&) = delete;

    /// Lets go before the block ends.
    void Release()
    {
        if (m_lock)
            Drop(*m_lock);
        m_lock = nullptr;
    }

private:
    static bool Take(VKconCriticalSection& section) { return section.Enter(); }
    static bool Take(VKconLock& lock) { return lock.Lock() == 0; }
    static void Drop(VKconCriticalSection& section) { section.Leave(); }
    static void Drop(VKconLock& lock) { lock.Unlock(); }

    Lock* m_lock; ///< null when nothing is held
};

} // namespace vk
