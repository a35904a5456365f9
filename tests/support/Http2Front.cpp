#include "Http2Front.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <set>
#include <sstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vktest {

namespace {

sockaddr_in Loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

int FreePort()
{
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    socklen_t length = sizeof address;
    bind(probe, reinterpret_cast<sockaddr*>(&address), length);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    close(probe);
    return ntohs(address.sin_port);
}

} // namespace

Http2Front::Http2Front(int backendPort, const Identity& identity, const std::string& clientAuthority)
    : m_backendPort(backendPort), m_identity(identity), m_clientAuthority(clientAuthority), m_port(FreePort())
{
    Start();
}

Http2Front::~Http2Front() { Kill(); }

void Http2Front::Restart()
{
    Kill();
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
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const std::string output = m_dir / "output";

    m_pid = fork();
    if (m_pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // it must not outlive a test program that crashed
        const int out = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(out, STDOUT_FILENO);
        dup2(out, STDERR_FILENO);
        execv("/usr/sbin/nghttpx", arguments.data());
        execvp("nghttpx", arguments.data());
        _exit(127);
    }
    if (!AwaitPort())
        throw std::runtime_error("nghttpx did not start: " + m_dir.Read("output") + m_dir.Read("error.log"));
}

/// Tries the port until it takes a connection, for ten seconds at most.
bool Http2Front::AwaitPort() const
{
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < giveUp) {
        const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const sockaddr_in address = Loopback(m_port);
        const bool open = connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        close(probe);
        if (open)
            return true;
        if (waitpid(m_pid, nullptr, WNOHANG) != 0)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

void Http2Front::Kill()
{
    if (m_pid <= 0)
        return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
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
