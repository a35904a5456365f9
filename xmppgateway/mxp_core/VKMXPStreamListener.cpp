#include "VKMXPStreamListener.h"

#include "VKMXPTcpSocket.h"
#include "VKMXPTrafficWait.h"

#include <gloox/socks5bytestreamserver.h>

#include <algorithm>
#include <memory>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vk {

namespace {

constexpr std::size_t kMostWaiting = 64;
constexpr std::size_t kMostDropped = 4096; // behind that many who comes is sent away until there is a new server
constexpr int kBacklog = 10;

} // namespace

StreamListener::StreamListener(gloox::SOCKS5BytestreamServer& server, TrafficWait* wait)
    : m_server(&server), m_wait(wait)
{
}

StreamListener::~StreamListener()
{
    DropWaiting();
    if (m_listening < 0)
        return;
    if (m_wait)
        m_wait->Remove(m_listening);
    ::close(m_listening);
}

gloox::ConnectionError StreamListener::Listen(const std::string& host, int port)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.empty() ? nullptr : host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
        return gloox::ConnDnsError;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(found, &::freeaddrinfo);
    for (const addrinfo* address = addresses.get(); address; address = address->ai_next) {
        const int socket = ::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        const int on = 1;
        if (socket < 0)
            continue;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        if (::bind(socket, address->ai_addr, address->ai_addrlen) == 0 && ::listen(socket, kBacklog) == 0) {
            m_listening = socket;
            if (m_wait)
                m_wait->Add(socket, false);
            return gloox::ConnNoError;
        }
        ::close(socket);
    }
    return gloox::ConnIoError;
}

void StreamListener::Pump(bool onOffer)
{
    Accept(onOffer);
    const std::vector<VKMXPTcpSocket*> waiting = m_waiting;
    for (VKMXPTcpSocket* socket : waiting)
        if (socket->recv(0) != gloox::ConnNoError || socket->Descriptor() < 0)
            Drop(socket);
}

void StreamListener::Accept(bool onOffer)
{
    for (;;) {
        const int descriptor = ::accept4(m_listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (descriptor < 0)
            return;
        auto made = std::make_unique<VKMXPTcpSocket>(descriptor, m_wait);
        if (!onOffer || m_waiting.size() >= kMostWaiting || m_dropped >= kMostDropped)
            continue;
        made->Watch();
        m_waiting.push_back(made.release());
        m_server->handleIncomingConnection(nullptr, m_waiting.back());
    }
}

VKMXPTcpSocket* StreamListener::Release(const gloox::ConnectionBase* connection)
{
    const auto found = std::find(m_waiting.begin(), m_waiting.end(), connection);
    if (found == m_waiting.end())
        return nullptr;
    VKMXPTcpSocket* const socket = *found;
    m_waiting.erase(found);
    socket->Unwatch();
    return socket;
}

/// Only closed: the server deletes in its destructor whatever it was handed and did not make a stream of.
void StreamListener::Drop(VKMXPTcpSocket* socket)
{
    m_waiting.erase(std::remove(m_waiting.begin(), m_waiting.end(), socket), m_waiting.end());
    socket->cleanup();
    ++m_dropped;
}

void StreamListener::UseServer(gloox::SOCKS5BytestreamServer& server)
{
    m_server = &server;
    m_dropped = 0;
}

void StreamListener::DropWaiting()
{
    while (!m_waiting.empty())
        Drop(m_waiting.back());
}

} // namespace vk
