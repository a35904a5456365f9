#pragma once

#include <arpa/inet.h>
#include <cstdint>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

inline sockaddr_in LoopbackAddress(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

/// A listening socket on loopback, the caller's, and its port.
inline std::pair<int, int> ListenOnLoopback(int backlog = 16)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = LoopbackAddress(0);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(socket, generic, size) != 0 || ::listen(socket, backlog) != 0 ||
        ::getsockname(socket, generic, &size) != 0)
        throw std::runtime_error("no port on loopback");
    return {socket, ntohs(address.sin_port)};
}

/// A TCP port on loopback that nobody has at the moment, or one that the test itself listens on and holds.
inline int FreePort(int* held = nullptr)
{
    const auto [socket, port] = ListenOnLoopback();
    if (held)
        *held = socket;
    else
        ::close(socket);
    return port;
}
