#pragma once

#include <gloox/gloox.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class VKMXPTcpSocket;

namespace gloox {
class ConnectionBase;
class SOCKS5BytestreamServer;
}

namespace vk {

class TrafficWait;

/// Listens for the peers of SOCKS5 streams (XEP-0065) and hands them to gloox's server, which speaks SOCKS5 with them. In
/// place of gloox's own listening: no select(), no call that blocks, and its sockets join the shared wait.
///
/// Threads: under the lock that guards the client. The server must outlive it, and keeps the sockets that never became a
/// stream, closed, to its own end.
class StreamListener
{
public:
    /// \param wait may be null; outlives this object.
    StreamListener(gloox::SOCKS5BytestreamServer& server, TrafficWait* wait);
    ~StreamListener();
    StreamListener(const StreamListener&) = delete;
    StreamListener& operator=(const StreamListener&) = delete;

    /// Gives ConnDnsError for a host that is not ours to listen on by name, ConnIoError when the port cannot be had.
    gloox::ConnectionError Listen(const std::string& host, int port);

    /// Hands who comes from now on to this server. Call it while nobody is here.
    void UseServer(gloox::SOCKS5BytestreamServer& server);

    /// How many sockets the server keeps for nothing.
    std::size_t Dropped() const { return m_dropped; }

    /// Takes in who has come and goes on speaking with those who are here. While nothing is on offer, who comes is sent
    /// away at once.
    void Pump(bool onOffer);

    /// The connection has become a stream of its own: it is looked at no more. Null when it is none of ours.
    VKMXPTcpSocket* Release(const gloox::ConnectionBase* connection);

    /// Closes those that never became a stream.
    void DropWaiting();

private:
    void Accept(bool onOffer);
    void Drop(VKMXPTcpSocket* socket);

    gloox::SOCKS5BytestreamServer* m_server;
    TrafficWait* m_wait;
    int m_listening = -1;
    std::vector<VKMXPTcpSocket*> m_waiting; ///< the server's until they are released
    std::size_t m_dropped = 0;
};

} // namespace vk
