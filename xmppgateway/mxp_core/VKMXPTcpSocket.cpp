#include "VKMXPTcpSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kReadSize = 64U << 10;
constexpr int kDefaultPort = 5222; // RFC 6120, 14.7

void SetOption(int socket, int level, int name, int value) { ::setsockopt(socket, level, name, &value, sizeof value); }

/// Small stanzas leave at once, and a peer that has vanished without a word is noticed within about a minute, since
/// the stream itself carries no keep-alive.
void PrepareSocket(int socket)
{
    SetOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
    SetOption(socket, SOL_SOCKET, SO_KEEPALIVE, 1);
    SetOption(socket, IPPROTO_TCP, TCP_KEEPIDLE, 30);
    SetOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, 10);
    SetOption(socket, IPPROTO_TCP, TCP_KEEPCNT, 3);
    SetOption(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, 60000);
}

int MillisecondsUntil(VKMXPTcpSocket::Clock::time_point deadline)
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - VKMXPTcpSocket::Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 3600000));
}

bool Poll(int socket, short events, int milliseconds)
{
    pollfd polled{socket, events, 0};
    return ::poll(&polled, 1, milliseconds) > 0;
}

sockaddr_storage LocalAddress(int socket)
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    return address;
}

} // namespace

VKMXPTcpSocket::VKMXPTcpSocket(gloox::ConnectionDataHandler* handler, const std::string& server, int port,
                               vk::TrafficWait* wait, Clock::time_point deadline)
    : gloox::ConnectionBase(handler), m_pobjWait(wait), m_tDeadline(deadline)
{
    setServer(server, port);
}

VKMXPTcpSocket::VKMXPTcpSocket(int descriptor, vk::TrafficWait* wait)
    : gloox::ConnectionBase(nullptr), m_pobjWait(wait), m_tDeadline(Clock::now()), m_iSocket(descriptor)
{
    PrepareSocket(m_iSocket);
    m_state = gloox::StateConnected;
}

VKMXPTcpSocket::~VKMXPTcpSocket() { VKMXPTcpSocket::cleanup(); }

gloox::ConnectionError VKMXPTcpSocket::connect()
{
    if (!m_handler)
        return gloox::ConnNotConnected;
    if (m_state == gloox::StateConnected)
        return gloox::ConnNoError;
    if (m_bBeside)
        return BeginConnect();
    const gloox::ConnectionError result = Open();
    if (result != gloox::ConnNoError) {
        m_handler->handleDisconnect(this, result);
        return result;
    }
    m_state = gloox::StateConnected;
    m_handler->handleConnect(this);
    return gloox::ConnNoError;
}

gloox::ConnectionError VKMXPTcpSocket::BeginConnect()
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    if (m_iSocket >= 0 || ::getaddrinfo(m_server.c_str(), std::to_string(m_port).c_str(), &hints, &found) != 0)
        return gloox::ConnDnsError;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> address(found, &::freeaddrinfo);
    const int socket = ::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0)
        return gloox::ConnConnectionRefused;
    PrepareSocket(socket);
    if (::connect(socket, address->ai_addr, address->ai_addrlen) != 0 && errno != EINPROGRESS) {
        ::close(socket);
        return gloox::ConnConnectionRefused;
    }
    m_iSocket = socket;
    m_bOpening = true;
    m_state = gloox::StateConnecting;
    m_tDeadline = Clock::now() + kSendLimit;
    if (m_pobjWait) {
        m_pobjWait->Add(m_iSocket, true);
        m_bWatched = true;
    }
    return gloox::ConnNoError;
}

gloox::ConnectionError VKMXPTcpSocket::GoOnConnecting()
{
    if (!Poll(m_iSocket, POLLOUT, 0))
        return Clock::now() < m_tDeadline ? gloox::ConnNoError : Fail(gloox::ConnConnectionRefused);
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(m_iSocket, SOL_SOCKET, SO_ERROR, &error, &size);
    m_bOpening = false;
    if (error != 0)
        return Fail(gloox::ConnConnectionRefused);
    if (m_bWatched)
        m_pobjWait->Change(m_iSocket, false);
    m_state = gloox::StateConnected;
    m_handler->handleConnect(this);
    return gloox::ConnNoError;
}

gloox::ConnectionError VKMXPTcpSocket::Open()
{
    if (m_iSocket >= 0)
        return gloox::ConnNoError;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_ADDRCONFIG;
    addrinfo* found = nullptr;
    const std::string service = std::to_string(m_port > 0 ? m_port : kDefaultPort);
    if (::getaddrinfo(m_server.c_str(), service.c_str(), &hints, &found) != 0)
        return gloox::ConnDnsError;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(found, &::freeaddrinfo);

    for (const addrinfo* address = addresses.get(); address; address = address->ai_next) {
        m_iSocket = ConnectOne(*address);
        if (m_iSocket >= 0)
            return gloox::ConnNoError;
    }
    return gloox::ConnConnectionRefused;
}

int VKMXPTcpSocket::ConnectOne(const addrinfo& address) const
{
    const int socket =
        ::socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, address.ai_protocol);
    if (socket < 0)
        return -1;
    PrepareSocket(socket);
    int error = 0;
    if (::connect(socket, address.ai_addr, address.ai_addrlen) != 0) {
        error = errno;
        if (error == EINPROGRESS) {
            error = ETIMEDOUT;
            socklen_t size = sizeof error;
            if (Poll(socket, POLLOUT, MillisecondsUntil(m_tDeadline)))
                ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size);
        }
    }
    if (error == 0)
        return socket;
    ::close(socket);
    return -1;
}

void VKMXPTcpSocket::AwaitTraffic(int milliseconds) const
{
    if (m_iSocket >= 0)
        Poll(m_iSocket, static_cast<short>(POLLIN | (m_strUnsent.empty() ? 0 : POLLOUT)), milliseconds);
}

gloox::ConnectionError VKMXPTcpSocket::recv(int timeout)
{
    if (m_iSocket < 0)
        return gloox::ConnNotConnected;
    if (m_bBroken)
        return Fail(gloox::ConnIoError);
    if (timeout != 0)
        AwaitTraffic(timeout < 0 ? -1 : std::max(1, timeout / 1000));
    if (m_bOpening) {
        const gloox::ConnectionError result = GoOnConnecting();
        if (result != gloox::ConnNoError || m_bOpening || m_iSocket < 0)
            return result;
    }
    if (!FlushUnsent())
        return Fail(gloox::ConnIoError);

    // Not on the stack and not kept per connection: one buffer for each thread that pumps.
    thread_local std::array<char, kReadSize> buffer;
    const ssize_t got = ::recv(m_iSocket, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (got < 0)
        return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? gloox::ConnNoError
                                                                          : Fail(gloox::ConnIoError);
    if (got == 0)
        return Fail(gloox::ConnStreamClosed);
    m_lBytesIn += got;
    if (m_handler)
        m_handler->handleReceivedData(this, std::string(buffer.data(), static_cast<std::size_t>(got)));
    return gloox::ConnNoError;
}

gloox::ConnectionError VKMXPTcpSocket::Fail(gloox::ConnectionError error)
{
    if (m_handler)
        m_handler->handleDisconnect(this, error);
    cleanup();
    return error;
}

bool VKMXPTcpSocket::send(const std::string& data)
{
    if (m_iSocket < 0 || m_bBroken)
        return false;
    std::string_view rest(data);
    if (m_strUnsent.empty()) {
        const ssize_t sent = ::send(m_iSocket, rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            m_lBytesOut += sent;
            rest.remove_prefix(static_cast<std::size_t>(sent));
        }
        else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
            m_bBroken = true;
    }
    if (!m_bBroken && !rest.empty())
        KeepUnsent(rest);
    if (m_bBroken && m_pobjWait)
        m_pobjWait->Wake();
    return !m_bBroken;
}

void VKMXPTcpSocket::KeepUnsent(std::string_view rest)
{
    if (m_strUnsent.size() - m_uUnsentFrom + rest.size() > kUnsentLimit) {
        m_bBroken = true;
        return;
    }
    if (m_uUnsentFrom > m_strUnsent.size() / 2) { // the part that was sent goes when it has become the larger one
        m_strUnsent.erase(0, m_uUnsentFrom);
        m_uUnsentFrom = 0;
    }
    if (m_strUnsent.empty()) {
        m_tUnsentSince = Clock::now();
        if (m_bWatched)
            m_pobjWait->Change(m_iSocket, true);
    }
    m_strUnsent.append(rest);
}

/// Sends what waits, as far as the socket takes it. False when the peer is to be given up.
bool VKMXPTcpSocket::FlushUnsent()
{
    if (m_strUnsent.empty())
        return true;
    const ssize_t sent = ::send(m_iSocket, m_strUnsent.data() + m_uUnsentFrom, m_strUnsent.size() - m_uUnsentFrom,
                                MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
        return false;
    if (sent <= 0)
        return Clock::now() - m_tUnsentSince < kSendLimit;
    m_lBytesOut += sent;
    m_uUnsentFrom += static_cast<std::size_t>(sent);
    m_tUnsentSince = Clock::now();
    if (m_uUnsentFrom < m_strUnsent.size())
        return true;
    DropUnsent();
    if (m_bWatched)
        m_pobjWait->Change(m_iSocket, false);
    return true;
}

void VKMXPTcpSocket::DropUnsent()
{
    std::string().swap(m_strUnsent); // after a burst its memory goes back
    m_uUnsentFrom = 0;
}

gloox::ConnectionError VKMXPTcpSocket::receive()
{
    gloox::ConnectionError result = gloox::ConnNoError;
    while (result == gloox::ConnNoError && m_iSocket >= 0)
        result = recv(-1);
    return result == gloox::ConnNoError ? gloox::ConnNotConnected : result;
}

void VKMXPTcpSocket::disconnect()
{
    if (m_iSocket >= 0)
        FlushUnsent();
    cleanup();
}

void VKMXPTcpSocket::cleanup()
{
    if (m_iSocket >= 0) {
        if (m_bWatched)
            m_pobjWait->Remove(m_iSocket);
        ::close(m_iSocket);
    }
    m_iSocket = -1;
    m_bOpening = false;
    m_bWatched = false;
    m_bBroken = false;
    DropUnsent();
    m_state = gloox::StateDisconnected;
}

void VKMXPTcpSocket::getStatistics(long int& totalIn, long int& totalOut)
{
    totalIn = m_lBytesIn;
    totalOut = m_lBytesOut;
}

gloox::ConnectionBase* VKMXPTcpSocket::newInstance() const
{
    auto made = std::make_unique<VKMXPTcpSocket>(nullptr, m_server, m_port, m_pobjWait, Clock::now() + kSendLimit);
    made->m_bBeside = true;
    return made.release();
}

int VKMXPTcpSocket::localPort() const
{
    const sockaddr_storage address = LocalAddress(m_iSocket);
    if (address.ss_family == AF_INET)
        return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
    if (address.ss_family == AF_INET6)
        return ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port);
    return -1;
}

const std::string VKMXPTcpSocket::localInterface() const
{
    const sockaddr_storage address = LocalAddress(m_iSocket);
    std::array<char, NI_MAXHOST> host{};
    if (::getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, host.data(), host.size(), nullptr, 0,
                      NI_NUMERICHOST) != 0)
        return {};
    return host.data();
}

void VKMXPTcpSocket::Watch()
{
    if (!m_pobjWait || m_iSocket < 0 || m_bWatched)
        return;
    m_pobjWait->Add(m_iSocket, !m_strUnsent.empty());
    m_bWatched = true;
}

void VKMXPTcpSocket::Unwatch()
{
    if (m_bWatched)
        m_pobjWait->Remove(m_iSocket);
    m_bWatched = false;
}
