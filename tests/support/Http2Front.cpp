#include "Http2Front.h"

#include "FreePort.h"
#include "Until.h"

#include <set>
#include <sstream>
#include <stdexcept>

namespace vktest {

Http2Front::Http2Front(int backendPort, const Identity& identity, const std::string& clientAuthority)
    : m_backendPort(backendPort), m_identity(identity), m_clientAuthority(clientAuthority), m_port(FreePort())
{
    Start();
}

Http2Front::~Http2Front() { m_process->End(SIGKILL); }

void Http2Front::Restart()
{
    m_process->End(SIGKILL);
    Start();
}

void Http2Front::Start()
{
    std::vector<std::string> words = {"nghttpx",
                                      "--frontend=127.0.0.1," + std::to_string(m_port),
                                      "--backend=127.0.0.1," + std::to_string(m_backendPort),
                                      "--conf=/dev/null",
                                      "--workers=1",
                                      "--single-process",
                                      "--accesslog-file=" + m_dir / "access.log",
                                      "--accesslog-format=$alpn $remote_port $tls_client_subject_name",
                                      "--errorlog-file=" + m_dir / "error.log"};
    if (!m_clientAuthority.empty())
        words.insert(words.end(), {"--verify-client", "--verify-client-cacert=" + m_clientAuthority});
    words.insert(words.end(), {m_identity.key, m_identity.certificate});
    m_process.emplace(words, m_dir / "output", m_dir / "output");
    if (!AwaitPort())
        throw std::runtime_error("nghttpx did not start: " + m_dir.Read("output") + m_dir.Read("error.log"));
}

/// Tries the port until it takes a connection, for ten seconds at most.
bool Http2Front::AwaitPort()
{
    const auto isOpen = [this] {
        const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const sockaddr_in address = LoopbackAddress(m_port);
        const bool open = connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        close(probe);
        return open;
    };
    return Until([&] { return m_process->HasEnded() || isOpen(); }, std::chrono::seconds(10)) && !m_process->HasEnded();
}

std::size_t Http2Front::Connections() const
{
    std::set<std::string> ports;
    std::istringstream log(m_dir.Read("access.log"));
    std::string protocol, port, rest;
    while (log >> protocol >> port && std::getline(log, rest))
        if (protocol == "h2")
            ports.insert(port);
    return ports.size();
}

std::string Http2Front::LastClient() const
{
    std::istringstream log(m_dir.Read("access.log"));
    std::string line, last;
    while (std::getline(log, line))
        last = line;
    std::istringstream words(last);
    std::string protocol, port, name;
    words >> protocol >> port;
    std::getline(words, name);
    return name;
}

} // namespace vktest
