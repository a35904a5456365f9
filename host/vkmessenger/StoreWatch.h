#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace vk {

/// Tells when an operation of the store does not come back: a file that another process has locked, or a server that
/// has gone silent, keeps the thread that works on it for as long as it lasts. A thread of its own does the telling.
class StoreWatch
{
public:
    /// Called on the watch's thread with how long the operation has lasted so far.
    using Tell = std::function<void(std::chrono::seconds)>;

    /// Tells after `first`, then again each `again` as long as the operation lasts.
    StoreWatch(Tell tell, std::chrono::milliseconds first = std::chrono::seconds(10),
               std::chrono::milliseconds again = std::chrono::seconds(60));
    ~StoreWatch();
    StoreWatch(const StoreWatch&) = delete;
    StoreWatch& operator=(const StoreWatch&) = delete;

    /// An operation, as long as the object lives; one at a time.
    class Operation
    {
    public:
        explicit Operation(StoreWatch& watch) : m_watch(watch) { m_watch.Begin(); }
        ~Operation() { m_watch.End(); }
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;

    private:
        StoreWatch& m_watch;
    };

private:
    using Clock = std::chrono::steady_clock;

    void Begin();
    void End();
    void Run();

    const Tell m_tell;
    const std::chrono::milliseconds m_first;
    const std::chrono::milliseconds m_again;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Clock::time_point m_began{}; ///< of the operation, zero when there is none; guarded by m_mutex
    bool m_stop = false;         ///< guarded by m_mutex
    std::thread m_thread;        ///< last: it uses all the others
};

} // namespace vk
