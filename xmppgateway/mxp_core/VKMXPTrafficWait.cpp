#include "VKMXPTrafficWait.h"

#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace vk {

Wakeup::Wakeup() : m_iDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_iDescriptor < 0)
        throw std::system_error(errno, std::generic_category(), "no descriptor for waking the work thread");
}

Wakeup::~Wakeup() { ::close(m_iDescriptor); }

void Wakeup::Wake() noexcept
{
    const std::uint64_t one = 1;
    // The only failure is a full counter, and then the waiter wakes anyway.
    [[maybe_unused]] const ssize_t written = ::write(m_iDescriptor, &one, sizeof one);
}

void Wakeup::Drain() noexcept
{
    std::uint64_t count;
    [[maybe_unused]] const ssize_t got = ::read(m_iDescriptor, &count, sizeof count);
}

TrafficWait::TrafficWait() : m_iEpoll(::epoll_create1(EPOLL_CLOEXEC))
{
    if (m_iEpoll < 0)
        throw std::system_error(errno, std::generic_category(), "no descriptor for waiting on connections");
    Add(m_objWakeup.Descriptor(), false);
}

TrafficWait::~TrafficWait() { ::close(m_iEpoll); }

namespace {

epoll_event Interest(int socket, bool alsoWritable)
{
    epoll_event event{};
    event.events = EPOLLIN | (alsoWritable ? static_cast<std::uint32_t>(EPOLLOUT) : 0U);
    event.data.fd = socket;
    return event;
}

} // namespace

void TrafficWait::Add(int socket, bool alsoWritable)
{
    epoll_event event = Interest(socket, alsoWritable);
    if (::epoll_ctl(m_iEpoll, EPOLL_CTL_ADD, socket, &event) != 0 && errno != EEXIST)
        throw std::system_error(errno, std::generic_category(), "cannot wait on a connection");
}

void TrafficWait::Change(int socket, bool alsoWritable) noexcept
{
    epoll_event event = Interest(socket, alsoWritable);
    ::epoll_ctl(m_iEpoll, EPOLL_CTL_MOD, socket, &event);
}

void TrafficWait::Remove(int socket) noexcept { ::epoll_ctl(m_iEpoll, EPOLL_CTL_DEL, socket, nullptr); }

void TrafficWait::Wake() noexcept
{
    if (!m_bAwake.exchange(true))
        m_objWakeup.Wake();
}

void TrafficWait::Wait(int milliseconds) noexcept
{
    epoll_event events[16];
    const int ready = ::epoll_wait(m_iEpoll, events, 16, milliseconds);
    for (int i = 0; i < ready; ++i)
        if (events[i].data.fd == m_objWakeup.Descriptor()) {
            m_objWakeup.Drain();
            // A Wake that comes between these two ends this very wait: whoever waits looks for work behind it.
            m_bAwake.exchange(false);
        }
}

void TrafficWait::Watch(int milliseconds) const noexcept
{
    pollfd polled{m_iEpoll, POLLIN, 0};
    ::poll(&polled, 1, milliseconds);
}

} // namespace vk
