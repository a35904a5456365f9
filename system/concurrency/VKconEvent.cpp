#include "VKconEvent.h"

#include "VKconException.h"
#include "VKsystemError.h"
#include "VKthread.h"

#include <algorithm>
#include <cerrno>
#include <sched.h>
#include <sys/time.h>

namespace {

constexpr const char* kSource = "../src/VKconEvent.cpp";

/// Throws with the text of a pthread result when it is not 0.
void Check(int result, const char* message, int line)
{
    if (result == 0)
        return;
    errno = result;
    throw VKconException(GetMyThreadID(), kSource, line, message, VKgetLastError());
}

timespec Deadline(int ms)
{
    constexpr long kBillion = 1000000000;
    timeval now{};
    gettimeofday(&now, nullptr);
    ms = std::max(ms, 0);
    // Meant: the remainder in milliseconds is added to the microseconds as it is, unscaled.
    const long nanoseconds = (now.tv_usec + ms % 1000) * 1000L;
    timespec deadline{};
    deadline.tv_sec = now.tv_sec + ms / 1000 + nanoseconds / kBillion;
    deadline.tv_nsec = nanoseconds % kBillion;
    return deadline;
}

/// Counts a thread as inside the event; its end is the thread's last touch of the event.
class Inside
{
public:
    explicit Inside(std::atomic<int>& count) : m_count(count) { ++m_count; }
    ~Inside() { --m_count; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

private:
    std::atomic<int>& m_count;
};

} // namespace

VKconEvent::VKconEvent(bool manualReset) : m_bManualReset(manualReset) { Initialize(); }

VKconEvent::~VKconEvent()
{
    pthread_mutex_lock(&m_mutex);
    m_bClosing = true;
    pthread_mutex_unlock(&m_mutex);
    pthread_cond_broadcast(&m_condition);
    while (m_inside != 0)
        sched_yield();
    pthread_cond_destroy(&m_condition);
    pthread_mutex_destroy(&m_mutex);
}

void VKconEvent::Initialize()
{
    Check(pthread_mutex_init(&m_mutex, nullptr), "Create lock failed", __LINE__);
    const int result = pthread_cond_init(&m_condition, nullptr);
    if (result != 0)
        pthread_mutex_destroy(&m_mutex);
    Check(result, "Create condition event failed", __LINE__);
    m_bAlwaysTrue = true;
}

int VKconEvent::Wait(int ms)
{
    Inside inside(m_inside);
    Check(pthread_mutex_lock(&m_mutex), "Lock failed", __LINE__);
    const int result = WaitLocked(ms);
    Check(pthread_mutex_unlock(&m_mutex), "Unlock failed", __LINE__);
    if (result == ETIMEDOUT)
        return WAIT_TIMED_OUT;
    return result == 0 ? WAIT_SIGNALLED : WAIT_FAILED;
}

/// The wait itself, with the mutex held: the result of the pthread call.
int VKconEvent::WaitLocked(int ms)
{
    int result = 0;
    if (ms == -1) {
        while (!m_bSignalled && !m_bClosing && result == 0)
            result = pthread_cond_wait(&m_condition, &m_mutex);
    } else if (!m_bSignalled) {
        const timespec deadline = Deadline(ms);
        result = pthread_cond_timedwait(&m_condition, &m_mutex, &deadline); // meant: once, a spurious wake counts
    }
    if (result == 0 && !m_bManualReset)
        m_bSignalled = false;
    return result;
}

void VKconEvent::Broadcast()
{
    Inside inside(m_inside);
    Check(pthread_mutex_lock(&m_mutex), "Broadcast Event Failed", __LINE__);
    m_bSignalled = true;
    pthread_mutex_unlock(&m_mutex);
    Check(m_bManualReset ? pthread_cond_broadcast(&m_condition) : pthread_cond_signal(&m_condition),
          "Broadcast Event Failed", __LINE__);
}

void VKconEvent::Reset()
{
    if (!m_bManualReset)
        return;
    Check(pthread_mutex_lock(&m_mutex), "Lock Failed", __LINE__);
    m_bSignalled = false;
    m_bAlwaysTrue = true;
    pthread_mutex_unlock(&m_mutex);
}

bool VKconEvent::IsSignalled()
{
    Check(pthread_mutex_lock(&m_mutex), "Lock failed", __LINE__);
    const bool signalled = m_bSignalled;
    pthread_mutex_unlock(&m_mutex);
    return signalled;
}
