#include "PumpThread.h"

#include "BareClient.h"

#include <array>
#include <cerrno>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

PumpThread::PumpThread() : m_epoll(epoll_create1(EPOLL_CLOEXEC)), m_stop(eventfd(0, EFD_CLOEXEC))
{
    epoll_event event{};
    event.events = EPOLLIN;
    if (epoll_ctl(m_epoll, EPOLL_CTL_ADD, m_stop, &event) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
    m_thread = std::thread([this] { Run(); });
}

PumpThread::~PumpThread()
{
    eventfd_write(m_stop, 1);
    m_thread.join();
    close(m_stop);
    close(m_epoll);
}

void PumpThread::Add(BareClient& client)
{
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = &client;
    if (epoll_ctl(m_epoll, EPOLL_CTL_ADD, client.Socket(), &event) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
}

void PumpThread::Run()
{
    std::array<epoll_event, 64> events;
    for (;;) {
        const int count = epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), -1);
        for (int i = 0; i < count; ++i) {
            auto* const client = static_cast<BareClient*>(events[static_cast<std::size_t>(i)].data.ptr);
            if (!client)
                return;
            const int socket = client->Socket();
            if (!client->Pump())
                epoll_ctl(m_epoll, EPOLL_CTL_DEL, socket, nullptr);
        }
    }
}
