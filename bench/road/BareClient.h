#pragma once

#include <gloox/client.h>
#include <gloox/connectionlistener.h>
#include <gloox/messagehandler.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

class BareSocket;

/// A gloox client with nothing around it: what our road is measured against, and what plays the devices. Its socket is
/// gloox's own without the delays (BareSocket). One lock keeps the sending and the receiving thread apart, for gloox is
/// not made for two threads inside one client.
class BareClient : private gloox::ConnectionListener, private gloox::MessageHandler
{
public:
    /// Which TLS runs below. `Own` is the OpenSSL layer of this system, so that what is compared is the road and not
    /// two TLS libraries; `Gloox` is gloox's GnuTLS, which leaks megabytes for each client.
    enum class Tls { Own, Gloox };

    /// Called on the thread that pumps, under the client's lock: it may not send.
    using Handler = std::function<void(const std::string& from, const std::string& body)>;

    /// \param jid the account with a resource
    BareClient(const std::string& jid, const std::string& password, int port, Tls tls = Tls::Own);
    ~BareClient() override;

    /// Before Connect.
    void OnMessage(Handler handler) { m_handler = std::move(handler); }

    /// Logs in. Throws std::runtime_error when that has not worked within ten seconds.
    void Connect();
    void Disconnect();

    /// One look at the socket; what has come is handled. False when the connection has ended.
    bool Pump();

    /// Opens the session through which Send to this JID goes.
    void OpenSession(const std::string& jid);
    void Send(const std::string& jid, const std::string& body);

    std::string FullJid() const { return m_client->jid().full(); }
    int Socket() const;

private:
    void onConnect() override { m_connected = true; }
    void onDisconnect(gloox::ConnectionError) override { m_connected = false; }
    bool onTLSConnect(const gloox::CertInfo&) override { return true; }
    void handleMessage(const gloox::Message& message, gloox::MessageSession*) override;
    gloox::MessageSession& SessionFor(const std::string& jid);

    std::mutex m_lock;
    std::unique_ptr<gloox::Client> m_client;                  // m_lock
    BareSocket* m_socket = nullptr;                           // the client's
    std::map<std::string, gloox::MessageSession*> m_sessions; // the client's; m_lock
    Handler m_handler;
    bool m_connected = false; // m_lock
};
