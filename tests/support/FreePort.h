#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

/// A TCP port on loopback that nobody has at the moment, or one that the test itself listens on and holds.
inline int FreePort(int* held = nullptr)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ::bind(socket, reinterpret_cast<sockaddr*>(&address), size);
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    if (held) {
        ::listen(socket, 1);
        *held = socket;
    } else
        ::close(socket);
    return ntohs(address.sin_port);
}
