#pragma once

#include "VKobject.h"

#include <atomic>
#include <memory>
#include <pthread.h>

class VKconDelegate;

/// A detached thread that runs a delegate. The object and its running thread share a state of their own, so either may
/// go first: an object may be deleted while its thread runs, and no operation touches a thread that has ended.
/// All operations may be called from any thread; failures are thrown as VKconException.
class VKconThread : public VKobject
{
public:
    VKconThread() = default;
    ~VKconThread() override;
    VKconThread(const VKconThread&) = delete;
    VKconThread& operator=(const VKconThread&) = delete;

    /// Starts the thread; the delegate must outlive its work. Throws "Create Thread Failed".
    void Run(VKconDelegate* delegate);

    /// Ends the thread with SIGQUIT; it unwinds from where it stands, so kill only a thread that waits in a system
    /// call. Does nothing without a thread; throws "Kill Thread Failed".
    void Kill();

    /// Holds the thread in a signal handler until it gets SIGUSR2; returns when it is held. `Resume` sends SIGUSR1,
    /// which does not wake it. Throw "Suspend Thread Failed", "Resume Thread Failed".
    void Stop();
    void Resume();

    bool IsRunning();

    /// Waits until the thread has ended or `ms` milliseconds, a multiple of 250, are over; any other number waits for
    /// the end alone. Always 0.
    int WaitForThreadObject(unsigned long ms);

    /// The thread's identifier; the value -1 when there is no thread.
    unsigned long GetThreadID() const { return m_ulThreadId; }

    /// Whether the thread deletes this object and its delegate when it has done its work. Set it before `Run`, and do
    /// not touch the object after it.
    void SetAutoClean(bool autoClean);

    static unsigned long GetMyThreadID();

    /// Whether a process of this number exists.
    static bool IsThreadActive(unsigned long pid);

    /// Whether the thread with this identifier (a GetMyThreadID value of this process) has not ended. Knows the threads
    /// started by this class and all others that ever asked for their own identifier.
    static bool IsThreadAlive(unsigned long threadId);

    /// Installs the signal handlers of `Kill`, `Stop` and `Resume`; SIGQUIT and SIGTERM end the thread that receives
    /// them. Once a process, before any thread is started. Throw "Create Lock Failed", "Initialize Thread Lib Failed".
    static void InitializeLibrary();
    static void CloseLibrary();

private:
    struct State;
    struct StartRecord;
    class EndOfThread;

    static constexpr unsigned long kNoThread = static_cast<unsigned long>(-1);

    static void* ThreadWork(void* record);
    static void StopSingleHandler(int signal);
    static void StartSingleHandler(int signal);
    static void EndThreadHandler(int signal);

    std::shared_ptr<State> CurrentState() const { return std::atomic_load(&m_state); }
    int Send(int signal) const;

    std::atomic<bool> m_bAutoClean{false};
    std::atomic<unsigned long> m_ulThreadId{kNoThread};
    std::shared_ptr<State> m_state; ///< null until Run; through std::atomic_load and atomic_store

    static pthread_mutex_t the_ThreadGuard; ///< one thread is being suspended at a time
    static std::atomic<bool> is_Suspend;    ///< the suspend handler has reached its thread
};
