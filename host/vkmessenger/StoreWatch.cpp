#include "StoreWatch.h"

namespace vk {

StoreWatch::StoreWatch(Tell tell, std::chrono::milliseconds first, std::chrono::milliseconds again)
    : m_tell(std::move(tell)), m_first(first), m_again(again), m_thread([this] { Run(); })
{
}

StoreWatch::~StoreWatch()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_stop = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

/// Wakes nobody: there are thousands a second, and the thread looks by itself.
void StoreWatch::Begin()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_began = Clock::now();
}

void StoreWatch::End()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_began = {};
}

void StoreWatch::Run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    Clock::time_point of{}; // the operation that was told of last
    auto next = m_first;    // when to tell of it again, counted from its beginning
    while (!m_stop) {
        if (m_began != of) {
            of = m_began;
            next = m_first;
        }
        const auto now = Clock::now();
        if (of != Clock::time_point{} && now - of >= next) {
            next = std::chrono::duration_cast<std::chrono::milliseconds>(now - of) + m_again;
            lock.unlock();
            m_tell(std::chrono::duration_cast<std::chrono::seconds>(now - of));
            lock.lock();
            continue;
        }
        // One that begins now is told of within the first span and a half, however long this wait is.
        m_changed.wait_for(lock, m_first / 2, [&] { return m_stop; });
    }
}

} // namespace vk
