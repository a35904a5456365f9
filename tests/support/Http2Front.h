#pragma once

#include "ChildProcess.h"
#include "TempDir.h"
#include "TestAuthority.h"

#include <optional>
#include <string>

namespace vktest {

/// The distribution's nghttpx in front of an HTTP/1 server on loopback: takes HTTP/2 over TLS and hands each request
/// on. Not for several threads at once. Throws std::runtime_error with the program's own words when it does not start.
class Http2Front
{
public:
    /// With a client authority a client certificate of it is demanded.
    Http2Front(int backendPort, const Identity& identity, const std::string& clientAuthority = "");
    ~Http2Front();
    Http2Front(const Http2Front&) = delete;
    Http2Front& operator=(const Http2Front&) = delete;

    /// Ends it at once, as a crash would, and starts it again on the same port.
    void Restart();

    std::string Url() const { return "https://127.0.0.1:" + std::to_string(m_port); }
    /// How many connections brought the requests so far that came over HTTP/2, over all restarts.
    std::size_t Connections() const;
    /// How the client of the last request called itself in its certificate.
    std::string LastClient() const;

private:
    void Start();
    bool AwaitPort();

    TempDir m_dir;
    int m_backendPort;
    Identity m_identity;
    std::string m_clientAuthority;
    int m_port = 0;
    std::optional<ChildProcess> m_process;
};

} // namespace vktest
