#pragma once

#include "TestAuthority.h"

#include <atomic>
#include <functional>
#include <openssl/ssl.h>
#include <optional>
#include <string>
#include <thread>

namespace vktest {

/// A server on a free port of 127.0.0.1, with or without TLS, that plays one script on each connection, one connection
/// at a time, on a thread of its own. Its end interrupts whatever the script waits for.
class LoopbackServer
{
public:
    struct Tls
    {
        Identity identity;
        std::string clientAuthority = {}; ///< when set, a client certificate of this authority is demanded
        bool silentHandshake = false;     ///< takes the connection and never answers
    };

    /// One connection, seen from the server.
    class Peer
    {
    public:
        /// What comes next, at most `size` bytes; empty when the client has closed or the server ends.
        std::string Read(std::size_t size = 65536);
        /// Exactly that many, or fewer at the end.
        std::string ReadWhole(std::size_t size);
        bool Write(const std::string& data);
        /// Makes the end of this connection a reset, without a word of TLS.
        void Reset();
        /// Until the client closes or the server ends.
        void AwaitClose();
        /// How the client's certificate calls it; empty without one.
        std::string ClientName() const;
        int Number() const { return m_number; } ///< the first connection is 1

    private:
        friend class LoopbackServer;
        bool AwaitReadable();

        int m_socket = -1;
        int m_stop = -1;
        int m_number = 0;
        SSL* m_ssl = nullptr;
    };

    using Script = std::function<void(Peer&)>;

    explicit LoopbackServer(Script script, std::optional<Tls> tls = std::nullopt);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    int Port() const { return m_port; }
    int Connections() const { return m_connections; }

private:
    void Run();
    void Serve(int socket);

    Script m_script;
    std::optional<Tls> m_tls;
    int m_listener = -1;
    int m_stop = -1;
    int m_port = 0;
    std::atomic<int> m_connections{0};
    std::thread m_thread;
};

} // namespace vktest
