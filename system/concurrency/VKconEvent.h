#pragma once

#include "VKobject.h"

#include <atomic>
#include <pthread.h>

/// An event that threads wait for. A manual-reset event stays signalled until `Reset`; an auto-reset event is taken by
/// one `Wait`. Starts unsignalled. All operations may be called from any thread; the destructor lets threads that are
/// still inside an operation leave it before the event goes away, so that a woken waiter may delete the event at once.
class VKconEvent : public VKobject
{
public:
    enum WaitResult { WAIT_SIGNALLED = 16, WAIT_TIMED_OUT = 17, WAIT_FAILED = 18 };

    /// Both throw VKconException: "Create lock failed", "Create condition event failed".
    VKconEvent() : VKconEvent(false) {}
    explicit VKconEvent(bool manualReset);
    ~VKconEvent() override;
    VKconEvent(const VKconEvent&) = delete;
    VKconEvent& operator=(const VKconEvent&) = delete;

    /// Waits for the event and returns a WaitResult. -1 waits without limit. Otherwise whole seconds of `ms` are
    /// honoured and the remainder below one second counts as microseconds: 500 lasts half a millisecond, 1500 about a
    /// second. A spurious wake of a bounded wait counts as signalled. Throws "Lock failed", "Unlock failed".
    int Wait(int ms);

    /// Signals the event: wakes all waiters of a manual-reset event, one of an auto-reset event.
    void Broadcast();

    /// Makes a manual-reset event unsignalled; does nothing on an auto-reset event.
    void Reset();

    /// Looks at the event without waiting and without taking it.
    bool IsSignalled();

    /// Creates the mutex and the condition; called by the constructors.
    void Initialize();

private:
    int WaitLocked(int ms);

    bool m_bManualReset;
    pthread_cond_t m_condition;
    pthread_mutex_t m_mutex;
    bool m_bAlwaysTrue = false;   ///< set when the event is created or reset; nothing reads it
    bool m_bSignalled = false;    ///< guarded by m_mutex
    bool m_bClosing = false;      ///< guarded by m_mutex: the destructor runs, waiters leave
    std::atomic<int> m_inside{0}; ///< threads inside Wait and Broadcast, for the destructor
};
