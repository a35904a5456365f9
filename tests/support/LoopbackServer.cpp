#include "LoopbackServer.h"

#include "FreePort.h"

#include <csignal>
#include <cstdint>
#include <memory>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <tuple>
#include <unistd.h>

namespace vktest {

namespace {

/// False when the server is to end.
bool AwaitInput(int socket, int stop)
{
    pollfd entries[] = {{socket, POLLIN, 0}, {stop, POLLIN, 0}};
    return poll(entries, 2, -1) > 0 && entries[1].revents == 0;
}

} // namespace

bool LoopbackServer::Peer::AwaitReadable() { return AwaitInput(m_socket, m_stop); }

std::string LoopbackServer::Peer::Read(std::size_t size)
{
    std::string data(size, '\0');
    if ((!m_ssl || SSL_pending(m_ssl) == 0) && !AwaitReadable())
        return {};
    const ssize_t count =
        m_ssl ? SSL_read(m_ssl, data.data(), static_cast<int>(size)) : recv(m_socket, data.data(), size, 0);
    data.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return data;
}

std::string LoopbackServer::Peer::ReadWhole(std::size_t size)
{
    std::string data;
    while (data.size() < size) {
        const std::string more = Read(size - data.size());
        if (more.empty())
            break;
        data += more;
    }
    return data;
}

bool LoopbackServer::Peer::Write(const std::string& data)
{
    if (m_ssl)
        return SSL_write(m_ssl, data.data(), static_cast<int>(data.size())) == static_cast<int>(data.size());
    return send(m_socket, data.data(), data.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(data.size());
}

void LoopbackServer::Peer::Reset()
{
    const linger now{1, 0};
    setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    if (m_ssl)
        SSL_set_quiet_shutdown(m_ssl, 1);
}

void LoopbackServer::Peer::AwaitClose()
{
    while (!Read().empty()) {
    }
}

std::string LoopbackServer::Peer::ClientName() const
{
    const std::unique_ptr<X509, void (*)(X509*)> certificate(m_ssl ? SSL_get1_peer_certificate(m_ssl) : nullptr,
                                                             &X509_free);
    char name[256] = "";
    if (certificate)
        X509_NAME_get_text_by_NID(X509_get_subject_name(certificate.get()), NID_commonName, name, sizeof name);
    return name;
}

LoopbackServer::LoopbackServer(Script script, std::optional<Tls> tls)
    : m_script(std::move(script)), m_tls(std::move(tls)), m_stop(eventfd(0, EFD_CLOEXEC))
{
    std::tie(m_listener, m_port) = ListenOnLoopback();
    m_thread = std::thread([this] { Run(); });
}

LoopbackServer::~LoopbackServer()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t told = write(m_stop, &one, sizeof one);
    m_thread.join();
    close(m_listener);
    close(m_stop);
}

void LoopbackServer::Run()
{
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    while (AwaitInput(m_listener, m_stop)) {
        const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        Serve(socket);
        close(socket);
    }
}

void LoopbackServer::Serve(int socket)
{
    Peer peer;
    peer.m_socket = socket;
    peer.m_stop = m_stop;
    peer.m_number = ++m_connections;
    if (!m_tls)
        return m_script(peer);
    if (m_tls->silentHandshake) {
        peer.AwaitClose();
        return;
    }
    const std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
    SSL_CTX_use_certificate_chain_file(context.get(), m_tls->identity.certificate.c_str());
    SSL_CTX_use_PrivateKey_file(context.get(), m_tls->identity.key.c_str(), SSL_FILETYPE_PEM);
    if (!m_tls->clientAuthority.empty()) {
        SSL_CTX_load_verify_locations(context.get(), m_tls->clientAuthority.c_str(), nullptr);
        SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
    }
    const std::unique_ptr<SSL, void (*)(SSL*)> ssl(SSL_new(context.get()), &SSL_free);
    SSL_set_fd(ssl.get(), socket);
    if (SSL_accept(ssl.get()) != 1)
        return;
    peer.m_ssl = ssl.get();
    m_script(peer);
    SSL_shutdown(ssl.get());
}

} // namespace vktest
