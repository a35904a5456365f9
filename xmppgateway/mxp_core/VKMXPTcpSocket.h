#pragma once

#include "VKMXPTrafficWait.h"

#include <gloox/connectionbase.h>

#include <chrono>
#include <string>
#include <string_view>

/// The TCP connection under an XMPP stream, in place of gloox's own: no select() and so no limit on descriptor numbers,
/// no Nagle delay, no SIGPIPE, no call that blocks the work thread. What the peer does not take at once is kept and
/// sent when the socket can take more; a peer that takes nothing for kSendLimit is given up.
///
/// What newInstance gives is a stream beside the XMPP stream (XEP-0065). Its connect() begins and returns, the next recv
/// goes on with it, and it joins the shared wait by itself: whoever pumps the client never waits for somebody's host. Its
/// host must be an address, for a name would have to be resolved.
///
/// One thread at a time may be inside (the owner of the client sees to that); AwaitTraffic may run beside the others.
/// Name resolution is the system's and blocks the thread that calls Open().
class VKMXPTcpSocket : public gloox::ConnectionBase
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds kSendLimit{30};
    static constexpr std::size_t kUnsentLimit = 64U << 20; ///< bytes kept for a slow peer before it is given up

    /// \param wait the shared wait that Watch joins; may be null for a stand-alone client; outlives this object.
    /// \param deadline when Open() is to be given up.
    VKMXPTcpSocket(gloox::ConnectionDataHandler* handler, const std::string& server, int port, vk::TrafficWait* wait,
                   Clock::time_point deadline);

    /// Takes over a connected, non-blocking descriptor.
    VKMXPTcpSocket(int descriptor, vk::TrafficWait* wait);
    ~VKMXPTcpSocket() override;

    /// Makes the TCP connection, without a word to the handler: the part of connect() that takes its time. Gives
    /// ConnDnsError or ConnConnectionRefused when it fails.
    gloox::ConnectionError Open();

    /// Opens the socket when Open has not, and starts the stream.
    gloox::ConnectionError connect() override;

    /// Reads what is there and hands it to the handler. Waits up to timeout microseconds (-1: without limit) for this
    /// socket alone.
    gloox::ConnectionError recv(int timeout = -1) override;

    /// True when the bytes were sent or kept for sending. A failure shows in the next recv.
    bool send(const std::string& data) override;

    gloox::ConnectionError receive() override;
    void disconnect() override;
    void cleanup() override;
    void getStatistics(long int& totalIn, long int& totalOut) override;
    gloox::ConnectionBase* newInstance() const override;
    int localPort() const override;
    const std::string localInterface() const override;

    /// Joins the shared wait, so that traffic on this socket ends it.
    void Watch();

    /// Leaves it again: whoever reads the descriptor waits for it himself.
    void Unwatch();

    /// -1 while there is no connection. It stays this object's.
    int Descriptor() const { return m_iSocket; }

    /// Waits up to the given milliseconds for something to read, or for room to send what waits.
    void AwaitTraffic(int milliseconds) const;

private:
    gloox::ConnectionError BeginConnect();
    gloox::ConnectionError GoOnConnecting();
    int ConnectOne(const struct addrinfo& address) const;
    bool FlushUnsent();
    void KeepUnsent(std::string_view rest);
    void DropUnsent();
    gloox::ConnectionError Fail(gloox::ConnectionError error);

    vk::TrafficWait* m_pobjWait;
    Clock::time_point m_tDeadline;
    int m_iSocket = -1;
    bool m_bBeside = false;  ///< a stream beside the XMPP stream
    bool m_bOpening = false; ///< its connection is under way
    bool m_bWatched = false;
    bool m_bBroken = false; ///< a send failed; the next recv says so
    std::string m_strUnsent;       ///< empty when all was sent
    std::size_t m_uUnsentFrom = 0; ///< how much of it was sent since
    Clock::time_point m_tUnsentSince{};
    long int m_lBytesIn = 0;
    long int m_lBytesOut = 0;
};
