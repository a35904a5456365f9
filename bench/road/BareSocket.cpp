#include "BareSocket.h"

#include <cerrno>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int OpenSocket(const std::string& server, int port)
{
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(server.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
        return -1;
    const int descriptor = socket(found->ai_family, found->ai_socktype | SOCK_CLOEXEC, found->ai_protocol);
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const bool connected = descriptor >= 0 && connect(descriptor, found->ai_addr, found->ai_addrlen) == 0;
    freeaddrinfo(found);
    if (!connected && descriptor >= 0)
        close(descriptor);
    return connected ? descriptor : -1;
}

} // namespace

gloox::ConnectionError BareSocket::connect()
{
    if (m_socket < 0) {
        m_socket = OpenSocket(m_server, m_port);
        if (m_socket < 0)
            return gloox::ConnConnectionRefused;
    }
    return gloox::ConnectionTCPClient::connect();
}

gloox::ConnectionError BareSocket::recv(int timeout)
{
    if (m_socket < 0)
        return gloox::ConnNotConnected;
    pollfd polled{m_socket, POLLIN, 0};
    if (timeout != 0)
        poll(&polled, 1, timeout < 0 ? -1 : timeout / 1000);
    const ssize_t got = ::recv(m_socket, m_buf, static_cast<std::size_t>(m_bufsize), MSG_DONTWAIT);
    if (got < 0 && (errno == EAGAIN || errno == EINTR))
        return gloox::ConnNoError;
    if (got <= 0) {
        const gloox::ConnectionError error = got == 0 ? gloox::ConnStreamClosed : gloox::ConnIoError;
        if (m_handler)
            m_handler->handleDisconnect(this, error);
        return error;
    }
    m_totalBytesIn += got;
    if (m_handler)
        m_handler->handleReceivedData(this, std::string(m_buf, static_cast<std::size_t>(got)));
    return gloox::ConnNoError;
}

gloox::ConnectionBase* BareSocket::newInstance() const
{
    return new BareSocket(m_handler, m_logInstance, m_server, m_port);
}
