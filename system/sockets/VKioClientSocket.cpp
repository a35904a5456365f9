#include "VKioClientSocket.h"

#include "VKioException.h"
#include "VKioSocketEventHandler.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr const char* kSource = "../src/VKioClientSocket";

} // namespace

void VKioClientSocket::Connect(const std::string& host, int port, SocketType type)
{
    Close();
    m_strRemoteAddress = host + ":" + std::to_string(port);
    MakeSocket(type);
    try {
        ConnectTo(host, port);
    } catch (...) {
        close(m_iSocket);
        m_iSocket = -1;
        throw;
    }
    NoteActive();
    if (m_pEventHandler)
        m_pEventHandler->OnConnected(*this);
}

void VKioClientSocket::MakeSocket(SocketType type)
{
    if (type != Stream && type != RawIcmp)
        Fail(kSource, __LINE__, "Socket Unknown Type", "");
    m_iSocket = type == Stream ? socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)
                               : socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_ICMP);
    if (m_iSocket < 0)
        Fail(kSource, __LINE__, "Socket Create Failed");
    if (type != Stream)
        return;
    // A peer that vanished without a word is noticed: on an idle connection, and for what was sent and never
    // acknowledged.
    const int on = 1;
    const unsigned int unacknowledgedMs = kStallMs;
    setsockopt(m_iSocket, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    setsockopt(m_iSocket, IPPROTO_TCP, TCP_USER_TIMEOUT, &unacknowledgedMs, sizeof unacknowledgedMs);
}

void VKioClientSocket::ConnectTo(const std::string& host, int port)
{
    // Not gethostbyname(), whose result all threads share.
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* answer = nullptr;
    const int refused = port < 0 || port > 65535
                            ? EAI_SERVICE
                            : getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &answer);
    if (refused != 0)
        Fail(kSource, __LINE__, "Socket Unknown Remote Host", gai_strerror(refused));
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> address(answer, &freeaddrinfo);

    SetNonBlockingMode(true);
    if (connect(m_iSocket, address->ai_addr, address->ai_addrlen) != 0) {
        if (errno != EINPROGRESS && errno != EINTR)
            Fail(kSource, __LINE__, "Socket Connecting Failed");
        errno = Wait(false, true, kStallMs) == Writable ? GetErrorCode() : ETIMEDOUT;
        if (errno != 0)
            Fail(kSource, __LINE__, "Socket Connecting Failed");
    }
    SetNonBlockingMode(false);
}
