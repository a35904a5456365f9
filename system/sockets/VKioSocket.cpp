#include "VKioSocket.h"

#include "VKLog.h"
#include "VKdeadline.h"
#include "VKioException.h"
#include "VKioSocketEventHandler.h"
#include "VKprintf.h"
#include "VKsystemError.h"

#include <arpa/inet.h>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstring>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr const char* kSource = "../src/VKioSocket";
constexpr std::size_t kLongestText = std::size_t{1} << 20;

std::string_view WithoutLineEnd(std::string_view line)
{
    if (!line.empty() && line.back() == '\n')
        line.remove_suffix(1);
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

} // namespace

VKioSocket::~VKioSocket()
{
    if (m_iSocket >= 0)
        close(m_iSocket);
}

void VKioSocket::Fail(const char* file, int line, const char* message, const char* systemMessage) const
{
    throw VKioException(m_strRemoteAddress, file, line, message, systemMessage ? systemMessage : VKgetLastError());
}

/// Traffic may be binary: what is no printable ASCII stands as a point.
void VKioSocket::LogTraffic(const char* format, const unsigned char* data, unsigned int size) const
{
    if (!vk::LogWanted(m_pLogger, VKLogInterface::TRACE))
        return;
    std::string text(data, data + size);
    for (char& c : text)
        if (c < ' ' || c > '~')
            c = '.';
    text.insert(0, format);
    vk::LogWrite(*m_pLogger, VKLogInterface::TRACE, VK_LOG_PLACE, text);
}

bool VKioSocket::SetNonBlockingMode(bool nonBlocking)
{
    const int flags = fcntl(m_iSocket, F_GETFL);
    return flags >= 0 && fcntl(m_iSocket, F_SETFL, nonBlocking ? flags | O_NONBLOCK : flags & ~O_NONBLOCK) == 0;
}

int VKioSocket::GetErrorCode() const
{
    int error = 0;
    socklen_t length = sizeof error;
    return getsockopt(m_iSocket, SOL_SOCKET, SO_ERROR, &error, &length) == 0 ? error : errno;
}

void VKioSocket::Close()
{
    if (m_iSocket < 0)
        return;
    if (m_pEventHandler)
        m_pEventHandler->OnClosing(*this);
    close(m_iSocket);
    m_iSocket = -1;
}

/// With poll(): select() writes past its sets for a descriptor of 1024 or more.
VKioSocket::SocketStatus VKioSocket::Wait(bool read, bool write, int ms)
{
    if (m_iSocket < 0)
        return Failed;
    const vk::Deadline deadline(ms);
    pollfd entry{m_iSocket, static_cast<short>((read ? POLLIN : 0) | (write ? POLLOUT : 0)), 0};
    int ready;
    do
        ready = poll(&entry, 1, deadline.RemainingMs());
    while (ready < 0 && errno == EINTR);
    if (ready < 0 || (entry.revents & POLLNVAL))
        return Failed;
    if (ready == 0)
        return TimedOut;
    const bool broken = (entry.revents & (POLLERR | POLLHUP)) != 0;
    if (read && (broken || (entry.revents & POLLIN)))
        return Readable;
    return Writable;
}

unsigned int VKioSocket::Read(unsigned char* buffer, unsigned int size, int ms, SocketStatus& status, bool log)
{
    status = Wait(true, false, ms);
    if (status != Readable || size == 0)
        return 0;
    const ssize_t count = recv(m_iSocket, buffer, size, 0);
    if (count == 0)
        Fail(kSource, __LINE__, "Socket is closed", "");
    if (count < 0)
        Fail(kSource, __LINE__, "Socket Read Error");
    status = Done;
    NoteActive();
    if (log)
        LogTraffic("=> ", buffer, static_cast<unsigned int>(count));
    return static_cast<unsigned int>(count);
}

int VKioSocket::ReadChar(int ms, SocketStatus& status, bool log)
{
    unsigned char byte = 0;
    return Read(&byte, 1, ms, status, log) == 1 ? byte : -1;
}

std::string VKioSocket::ReadTill(unsigned char* mark, int ms, SocketStatus& status)
{
    const std::string end(reinterpret_cast<const char*>(mark));
    const vk::Deadline deadline(ms);
    std::string text;
    status = Done;
    while (text.size() < end.size() || text.compare(text.size() - end.size(), end.size(), end) != 0) {
        if (text.size() >= kLongestText)
            Fail(kSource, __LINE__, "Socket Read Error", "No end of a text within 1 MiB");
        const int byte = ReadChar(deadline.RemainingMs(), status, false);
        if (byte < 0)
            break;
        text += static_cast<char>(byte);
    }
    LogTraffic("=> ", reinterpret_cast<const unsigned char*>(text.data()), static_cast<unsigned int>(text.size()));
    return text;
}

std::string VKioSocket::ReadLine(int ms, SocketStatus& status)
{
    unsigned char lineFeed[] = "\n";
    return ReadTill(lineFeed, ms, status);
}

std::string VKioSocket::ReadLine(SocketStatus& status, int ms)
{
    return std::string(WithoutLineEnd(ReadLine(ms, status)));
}

unsigned int VKioSocket::Write(unsigned char* data, unsigned int size)
{
    unsigned int written = 0;
    while (written < size) {
        const ssize_t count = send(m_iSocket, data + written, size - written, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0)
            written += static_cast<unsigned int>(count);
        else if (count < 0 && errno != EINTR && errno != EAGAIN)
            Fail(kSource, __LINE__, "Socket Write Error");
        else if (count < 0 && errno == EAGAIN && Wait(false, true, kStallMs) != Writable)
            Fail(kSource, __LINE__, "Socket Write Error", "The peer takes nothing");
    }
    NoteActive();
    LogTraffic("<= ", data, size);
    return written;
}

unsigned int VKioSocket::Write(const std::string& text)
{
    std::string copy(text);
    return Write(reinterpret_cast<unsigned char*>(copy.data()), static_cast<unsigned int>(copy.size()));
}

unsigned int VKioSocket::WriteFormat(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = vk::FormatV(format, arguments);
    va_end(arguments);
    return Write(text);
}

int VKioSocket::VKAsciiToPort(char* service, char* protocol)
{
    if (!service || !*service)
        return -1;
    int port = 0;
    const char* const end = service + strlen(service);
    if (const auto read = std::from_chars(service, end, port); read.ec == std::errc() && read.ptr == end)
        return port >= 0 && port <= 65535 ? port : -1;
    servent entry{};
    servent* found = nullptr;
    char names[1024];
    if (getservbyname_r(service, protocol, &entry, names, sizeof names, &found) != 0 || !found)
        return -1;
    return ntohs(static_cast<uint16_t>(found->s_port));
}
