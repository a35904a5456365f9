#include "VKconThread.h"

#include "VKconDelegate.h"
#include "VKconException.h"
#include "VKlivingThreads.h"
#include "VKprintf.h"
#include "VKsystemError.h"
#include "VKthread.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <sched.h>

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes one");

pthread_mutex_t VKconThread::the_ThreadGuard = PTHREAD_MUTEX_INITIALIZER;
std::atomic<bool> VKconThread::is_Suspend{false};

namespace {

/// Throws with the text of a pthread result or errno when it is not 0.
void Check(int result, const char* message, int line)
{
    if (result == 0)
        return;
    errno = result;
    throw VKconException(GetMyThreadID(), "../src/VKconThread.cpp", line, message, VKgetLastError());
}

std::string CreateFailure(int result)
{
    switch (result) {
    case ENOMEM: return "Out of resource";
    case EINVAL: return "Invalid attribute";
    case EPERM: return "Permission denied";
    default: return printfToString("Unknown Error [%d]", result);
    }
}

/// A thread that is on its way out must not be hit by the signals that would end it. Safe in a signal handler.
void BlockEndSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGQUIT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace

/// What the object and its running thread share.
struct VKconThread::State
{
    std::mutex mutex;
    std::condition_variable changed;
    VKconThread* object = nullptr; ///< null once the object is gone
    bool autoClean = false;
    bool ended = false; ///< set by the thread as its last deed, after which its identifier means nothing
    pthread_t id{};
};

struct VKconThread::StartRecord
{
    std::shared_ptr<State> state;
    VKconDelegate* delegate;
};

/// Thread-local, so that it marks the end whichever way the thread ends, `pthread_exit` in a handler included.
class VKconThread::EndOfThread
{
public:
    ~EndOfThread()
    {
        std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->ended = true;
        m_state->changed.notify_all();
    }
    explicit EndOfThread(std::shared_ptr<State> state) : m_state(std::move(state)) {}
    EndOfThread(const EndOfThread&) = delete;
    EndOfThread& operator=(const EndOfThread&) = delete;

private:
    std::shared_ptr<State> m_state;
};

VKconThread::~VKconThread()
{
    if (const auto state = CurrentState()) {
        std::lock_guard<std::mutex> lock(state->mutex);
        state->object = nullptr;
    }
}

void VKconThread::SetAutoClean(bool autoClean)
{
    m_bAutoClean = autoClean;
    if (const auto state = CurrentState()) {
        std::lock_guard<std::mutex> lock(state->mutex);
        state->autoClean = autoClean;
    }
}

void VKconThread::Run(VKconDelegate* delegate)
{
    if (const auto previous = CurrentState()) {
        std::lock_guard<std::mutex> lock(previous->mutex);
        previous->object = nullptr;
    }
    const auto state = std::make_shared<State>();
    state->object = this;
    state->autoClean = m_bAutoClean;
    auto record = std::make_unique<StartRecord>(StartRecord{state, delegate});

    // Held until the identifier is stored: the new thread waits for it.
    std::unique_lock<std::mutex> lock(state->mutex);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    const int result = pthread_create(&state->id, &attributes, &VKconThread::ThreadWork, record.get());
    pthread_attr_destroy(&attributes);
    if (result != 0)
        throw VKconException(::GetMyThreadID(), "../src/VKconThread.cpp", __LINE__, "Create Thread Failed",
                             CreateFailure(result));
    record.release(); // the thread owns it now
    m_ulThreadId = state->id;
    std::atomic_store(&m_state, state);
}

void* VKconThread::ThreadWork(void* raw)
{
    const std::unique_ptr<StartRecord> record(static_cast<StartRecord*>(raw));
    const std::shared_ptr<State> state = std::move(record->state);
    VKconDelegate* const delegate = record->delegate;
    static thread_local const EndOfThread end(state);
    vk::NoteLivingThread();
    std::unique_lock<std::mutex>(state->mutex).unlock(); // until Run has stored the identifier

    if (delegate)
        delegate->DoWork(delegate->GetUserData());

    BlockEndSignals();
    std::unique_lock<std::mutex> lock(state->mutex);
    VKconThread* const object = state->object;
    if (object)
        object->m_ulThreadId = kNoThread;
    const bool clean = state->autoClean;
    if (clean)
        state->object = nullptr;
    lock.unlock();
    if (clean) {
        delete object;
        delete delegate;
    }
    return nullptr;
}

bool VKconThread::IsRunning()
{
    return m_ulThreadId != kNoThread && Send(0) == 0;
}

/// Sends a signal to the thread, 0 to only look; the pthread result, ESRCH when it has ended.
int VKconThread::Send(int signal) const
{
    const auto state = CurrentState();
    if (!state)
        return ESRCH;
    std::unique_lock<std::mutex> lock(state->mutex);
    if (state->ended)
        return ESRCH;
    const pthread_t id = state->id;
    if (pthread_equal(id, pthread_self()))
        lock.unlock(); // the handler may end this very thread, which must not hold the mutex then
    return pthread_kill(id, signal);
}

void VKconThread::Kill()
{
    if (m_ulThreadId.exchange(kNoThread) != kNoThread)
        Check(Send(SIGQUIT), "Kill Thread Failed", __LINE__);
}

void VKconThread::Stop()
{
    struct Guard
    {
        Guard() { pthread_mutex_lock(&the_ThreadGuard); }
        ~Guard() { pthread_mutex_unlock(&the_ThreadGuard); }
    } guard;
    is_Suspend = false;
    Check(Send(SIGUSR1), "Suspend Thread Failed", __LINE__);
    while (!is_Suspend && Send(0) == 0) // no bound but the thread's end
        sched_yield();
}

void VKconThread::Resume()
{
    // Meant: the same signal as Stop, which does not wake a thread that is held.
    Check(Send(SIGUSR1), "Resume Thread Failed", __LINE__);
}

int VKconThread::WaitForThreadObject(unsigned long ms)
{
    constexpr unsigned long kStep = 250;
    const auto state = CurrentState();
    if (!state)
        return 0;
    std::unique_lock<std::mutex> lock(state->mutex);
    while (!state->ended) {
        if (state->changed.wait_for(lock, std::chrono::milliseconds(kStep), [&] { return state->ended; }))
            break;
        ms -= kStep;
        if (ms == 0) // meant: equality, any other time waits for the end
            break;
    }
    return 0;
}

unsigned long VKconThread::GetMyThreadID() { return ::GetMyThreadID(); }

bool VKconThread::IsThreadActive(unsigned long pid) { return kill(static_cast<pid_t>(pid), 0) == 0; }

bool VKconThread::IsThreadAlive(unsigned long threadId) { return vk::IsLivingThread(threadId); }

void VKconThread::InitializeLibrary()
{
    if (pthread_mutex_init(&the_ThreadGuard, nullptr) == -1)
        Check(errno, "Create Lock Failed", __LINE__);

    struct Row
    {
        int signal;
        void (*handler)(int);
    };
    constexpr Row kRows[] = {{SIGUSR1, &StopSingleHandler},
                             {SIGUSR2, &StartSingleHandler},
                             {SIGQUIT, &EndThreadHandler},
                             {SIGTERM, &EndThreadHandler}};
    for (const Row& row : kRows) {
        struct sigaction action = {};
        action.sa_handler = row.handler;
        sigemptyset(&action.sa_mask);
        if (sigaction(row.signal, &action, nullptr) != 0)
            Check(errno, "Initialize Thread Lib Failed", __LINE__);
    }
}

void VKconThread::CloseLibrary()
{
    Check(pthread_mutex_destroy(&the_ThreadGuard), "Initialize Thread Lib Failed", __LINE__);
}

void VKconThread::StopSingleHandler(int)
{
    const int savedErrno = errno;
    is_Suspend = true;
    sigset_t allButResume;
    sigfillset(&allButResume);
    sigdelset(&allButResume, SIGUSR2);
    sigsuspend(&allButResume);
    errno = savedErrno;
}

void VKconThread::StartSingleHandler(int) {}

void VKconThread::EndThreadHandler(int)
{
    BlockEndSignals();
    pthread_exit(nullptr);
}
