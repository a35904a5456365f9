#pragma once

#include "VKMXPTcpSocket.h"
#include "VKMXPTlsOpenSsl.h"
#include "VKMXPTrafficWait.h"

#include <gloox/client.h>
#include <gloox/connectionlistener.h>
#include <gloox/message.h>
#include <gloox/messagehandler.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Makes a client one of a server on loopback; it takes any certificate. The socket is the client's.
inline VKMXPTcpSocket* ConnectOnLoopback(gloox::Client& client, int port, vk::TrafficWait* traffic = nullptr)
{
    client.setServer("127.0.0.1");
    client.disableRoster();
    auto tls = std::make_unique<VKMXPTlsOpenSsl>(&client, "localhost", "");
    tls->init();
    client.setEncryptionImpl(tls.release());
    auto socket = std::make_unique<VKMXPTcpSocket>(&client, "127.0.0.1", port, traffic,
                                                   VKMXPTcpSocket::Clock::now() + std::chrono::seconds(10));
    VKMXPTcpSocket* const made = socket.get();
    client.setConnectionImpl(socket.release());
    return made;
}

/// A client on the other side of the server, with a thread of its own: keeps the bodies it receives and sends what a
/// test gives it.
class XmppPeer : public gloox::ConnectionListener, public gloox::MessageHandler
{
public:
    /// What to do with each body; runs on the peer's thread. Keeping it is done already.
    using OnBody = std::function<void(XmppPeer&, const std::string& from, const std::string& body)>;

    XmppPeer(const std::string& jid, const std::string& password, int port, OnBody onBody = nullptr)
        : m_onBody(std::move(onBody)), m_client(gloox::JID(jid), password, port)
    {
        ConnectOnLoopback(m_client, port);
        m_client.registerConnectionListener(this);
        m_client.registerMessageHandler(this);
        m_thread = std::thread([this] { Run(); });
    }

    ~XmppPeer() override
    {
        m_stop = true;
        m_thread.join();
    }

    bool WaitUntilOnline(std::chrono::seconds limit = std::chrono::seconds(10))
    {
        std::unique_lock<std::mutex> lock(m_guard);
        return m_changed.wait_for(lock, limit, [this] { return m_online; });
    }

    /// Waits until at least this many bodies have come; what has come by then.
    std::vector<std::string> WaitForBodies(std::size_t count, std::chrono::seconds limit = std::chrono::seconds(10))
    {
        std::unique_lock<std::mutex> lock(m_guard);
        m_changed.wait_for(lock, limit, [&] { return m_bodies.size() >= count; });
        return m_bodies;
    }

    /// Sends a message with this body; from any thread.
    void Send(const std::string& to, const std::string& body, const std::string& thread = "")
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_outgoing.push_back({to, body, thread});
    }

    /// Sends bytes into the stream as they are; from any thread.
    void SendRaw(const std::string& bytes)
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_outgoing.push_back({"", bytes, ""});
    }

    void onConnect() override { SetOnline(true); }
    void onDisconnect(gloox::ConnectionError) override { SetOnline(false); }
    bool onTLSConnect(const gloox::CertInfo&) override { return true; }

    void handleMessage(const gloox::Message& message, gloox::MessageSession*) override
    {
        const std::string body = message.body();
        if (body.empty())
            return;
        {
            const std::lock_guard<std::mutex> lock(m_guard);
            m_bodies.push_back(body);
        }
        m_changed.notify_all();
        if (m_onBody)
            m_onBody(*this, message.from().full(), body);
    }

private:
    struct Outgoing
    {
        std::string to;
        std::string text;
        std::string thread;
    };

    class Client : public gloox::Client
    {
    public:
        using gloox::Client::Client;
        void SendBytes(const std::string& bytes) { handleBytes(bytes); }

    private:
        void handleBytes(const std::string& bytes) { gloox::ClientBase::send(bytes); }
    };

    void SetOnline(bool online)
    {
        {
            const std::lock_guard<std::mutex> lock(m_guard);
            m_online = online;
        }
        m_changed.notify_all();
    }

    void Run()
    {
        m_client.connect(false);
        while (!m_stop && m_client.recv(2000) == gloox::ConnNoError)
            SendWaiting();
        m_client.disconnect();
    }

    void SendWaiting()
    {
        std::vector<Outgoing> outgoing;
        {
            const std::lock_guard<std::mutex> lock(m_guard);
            if (!m_online)
                return;
            outgoing.swap(m_outgoing);
        }
        for (const Outgoing& item : outgoing)
            if (item.to.empty())
                m_client.SendBytes(item.text);
            else
                m_client.send(
                    gloox::Message(gloox::Message::Chat, gloox::JID(item.to), item.text, std::string(), item.thread));
    }

    OnBody m_onBody;
    Client m_client;
    std::atomic<bool> m_stop{false};
    std::mutex m_guard; ///< guards what follows
    std::condition_variable m_changed;
    bool m_online = false;
    std::vector<std::string> m_bodies;
    std::vector<Outgoing> m_outgoing;
    std::thread m_thread;
};
