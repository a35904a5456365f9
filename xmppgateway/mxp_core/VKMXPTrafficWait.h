#pragma once

#include <atomic>

namespace vk {

/// An eventfd: lets one thread end another thread's wait on descriptors. Wake may be called from any thread and from
/// signal handlers; it never blocks.
class Wakeup
{
public:
    /// Throws std::system_error when the descriptor cannot be had.
    Wakeup();
    ~Wakeup();
    Wakeup(const Wakeup&) = delete;
    Wakeup& operator=(const Wakeup&) = delete;

    void Wake() noexcept;
    void Drain() noexcept;
    int Descriptor() const noexcept { return m_iDescriptor; }

private:
    int m_iDescriptor;
};

/// The one place where the work thread waits: all sockets of all connections and one wake-up descriptor together. It
/// costs nothing while nothing happens, and ends at once when data comes on any connection, when a blocked connection
/// can send again, or when another thread calls Wake (a packet was queued, a stop was asked for).
///
/// Add, Change, Remove and Wake may be called from any thread; Wait is for the work thread.
class TrafficWait
{
public:
    /// Throws std::system_error when the descriptors cannot be had.
    TrafficWait();
    ~TrafficWait();
    TrafficWait(const TrafficWait&) = delete;
    TrafficWait& operator=(const TrafficWait&) = delete;

    /// Takes a socket in. The caller removes it before closing it.
    void Add(int socket, bool alsoWritable);
    void Change(int socket, bool alsoWritable) noexcept;
    void Remove(int socket) noexcept;

    /// Ends the running Wait, or the next one when none is running.
    void Wake() noexcept;

    /// Waits up to the given milliseconds. A Wake that came since the last Wait is used up by it; sockets stay ready
    /// until they are read.
    void Wait(int milliseconds) noexcept;

    /// Waits in the same way without using up a Wake; for any thread.
    void Watch(int milliseconds) const noexcept;

private:
    int m_iEpoll;
    Wakeup m_objWakeup;
    std::atomic<bool> m_bAwake{false}; ///< a wake is under way: another one need not enter the kernel
};

} // namespace vk
