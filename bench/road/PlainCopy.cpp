#include "PlainCopy.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number)
    {
        if (number < 0)
            throw std::system_error(errno, std::generic_category(), "a plain copy");
    }
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    ~Descriptor()
    {
        if (m_number >= 0)
            close(m_number);
    }
    operator int() const { return m_number; }

private:
    int m_number;
};

sockaddr_in Loopback()
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// A socket on a port that the system chose.
Descriptor Bound(sockaddr_in& address)
{
    Descriptor listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    address = Loopback();
    socklen_t size = sizeof address;
    bind(listener, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    return listener;
}

void SendFile(const std::string& path, int to, std::size_t block)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::string bytes(block, '\0');
    for (ssize_t got; (got = read(file, bytes.data(), block)) > 0;)
        for (ssize_t sent = 0; sent < got;) {
            const ssize_t put = send(to, bytes.data() + sent, static_cast<std::size_t>(got - sent), MSG_NOSIGNAL);
            if (put <= 0)
                return;
            sent += put;
        }
}

} // namespace

Clock::duration PlainCopy(const std::string& path, std::size_t block)
{
    sockaddr_in address{};
    const Descriptor listener = Bound(address);
    listen(listener, 1);
    std::thread sender([&] {
        const Descriptor to(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const int on = 1;
        setsockopt(to, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        if (connect(to, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            SendFile(path, to, block);
    });
    const Descriptor from(accept(listener, nullptr, nullptr));
    std::string bytes(block, '\0');
    Clock::time_point first;
    Clock::time_point last;
    while (recv(from, bytes.data(), block, 0) > 0) {
        last = Clock::now();
        if (first == Clock::time_point())
            first = last;
    }
    sender.join();
    return last - first;
}

int FreePort()
{
    sockaddr_in address{};
    const Descriptor taken = Bound(address);
    return ntohs(address.sin_port);
}
