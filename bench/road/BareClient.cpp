#include "BareClient.h"

#include "BareSocket.h"
#include "Statistics.h"
#include "VKMXPTlsOpenSsl.h"

#include <gloox/message.h>
#include <gloox/messagesession.h>

#include <poll.h>
#include <stdexcept>

BareClient::BareClient(const std::string& jid, const std::string& password, int port, Tls tls)
    : m_client(std::make_unique<gloox::Client>(gloox::JID(jid), password, port))
{
    auto socket = std::make_unique<BareSocket>(m_client.get(), m_client->logInstance(), "127.0.0.1", port);
    m_socket = socket.get();
    m_client->setConnectionImpl(socket.release());
    if (tls == Tls::Own) {
        auto own = std::make_unique<VKMXPTlsOpenSsl>(m_client.get(), m_client->jid().server(), std::string());
        own->init();
        m_client->setEncryptionImpl(own.release());
    }
    m_client->setTls(gloox::TLSRequired);
    m_client->setCompression(false);
    m_client->disableRoster();
    m_client->registerConnectionListener(this);
    m_client->registerMessageHandler(this);
}

BareClient::~BareClient() { Disconnect(); }

void BareClient::Connect()
{
    {
        const std::lock_guard<std::mutex> inside(m_lock);
        m_client->connect(false);
    }
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!m_connected) {
        pollfd polled{Socket(), POLLIN, 0};
        poll(&polled, 1, 100);
        if (!Pump() || Clock::now() > deadline)
            throw std::runtime_error("a bare client could not log in as " + FullJid());
    }
}

void BareClient::Disconnect()
{
    const std::lock_guard<std::mutex> inside(m_lock);
    m_client->disconnect();
    m_connected = false;
}

bool BareClient::Pump()
{
    const std::lock_guard<std::mutex> inside(m_lock);
    return m_client->recv(0) == gloox::ConnNoError;
}

void BareClient::OpenSession(const std::string& jid)
{
    const std::lock_guard<std::mutex> inside(m_lock);
    SessionFor(jid);
}

void BareClient::Send(const std::string& jid, const std::string& body)
{
    const std::lock_guard<std::mutex> inside(m_lock);
    SessionFor(jid).send(body, std::string());
}

int BareClient::Socket() const { return m_socket->socket(); }

void BareClient::handleMessage(const gloox::Message& message, gloox::MessageSession*)
{
    if (m_handler)
        m_handler(message.from().full(), message.body());
}

gloox::MessageSession& BareClient::SessionFor(const std::string& jid)
{
    gloox::MessageSession*& session = m_sessions[jid];
    if (!session) {
        session = new gloox::MessageSession(m_client.get(), gloox::JID(jid)); // the client owns it
        session->registerMessageHandler(this);
    }
    return *session;
}
