#pragma once

#include "TempDir.h"
#include "VKMXPFileReceiver.h"
#include "VKMXPTcpSocket.h"
#include "VKMXPTlsOpenSsl.h"
#include "VKMXPTrafficWait.h"

#include <gloox/client.h>
#include <gloox/connectionlistener.h>
#include <gloox/disco.h>
#include <gloox/error.h>
#include <gloox/siprofileft.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

/// A mobile client that takes files and can send some, on a thread of its own.
class FilePeer : private gloox::ConnectionListener
{
public:
    /// What it does with an offered file.
    enum class Manner { Accept, Refuse, Vanish, ReadNothing, Silent };

    struct Got
    {
        std::string name, packetId, key, content;
        std::chrono::steady_clock::time_point when;
    };

    static constexpr int kSocks5 = gloox::SIProfileFT::FTTypeS5B;
    static constexpr int kInBand = gloox::SIProfileFT::FTTypeIBB;

    FilePeer(const std::string& jid, int port, int streamTypes, Manner manner = Manner::Accept)
        : m_manner(manner), m_types(streamTypes), m_client(gloox::JID(jid), "pw", port)
    {
        m_client.setServer("127.0.0.1");
        m_client.disableRoster();
        auto socket = std::make_unique<VKMXPTcpSocket>(&m_client, "127.0.0.1", port, &m_traffic,
                                                       VKMXPTcpSocket::Clock::now() + std::chrono::seconds(10));
        auto tls = std::make_unique<VKMXPTlsOpenSsl>(&m_client, "localhost", "");
        tls->init();
        m_socket = socket.get();
        m_client.setConnectionImpl(socket.release());
        m_client.setEncryptionImpl(tls.release());
        m_client.registerConnectionListener(this);
        if (streamTypes != 0)
            m_receiver = std::make_unique<Receiver>(*this);
        if (streamTypes == kSocks5)
            m_client.disco()->removeFeature(gloox::XMLNS_SI_FT);
        m_thread = std::thread([this] { Run(); });
    }

    ~FilePeer() override
    {
        m_stop = true;
        m_traffic.Wake();
        m_thread.join();
    }

    bool WaitUntilOnline()
    {
        std::unique_lock<std::mutex> lock(m_guard);
        return m_changed.wait_for(lock, std::chrono::seconds(10), [this] { return m_online; });
    }

    /// Waits for at least this many files; those that have come by then.
    std::vector<Got> WaitForFiles(std::size_t count, std::chrono::seconds limit = std::chrono::seconds(20))
    {
        std::unique_lock<std::mutex> lock(m_guard);
        m_changed.wait_for(lock, limit, [&] { return m_got.size() >= count; });
        return m_got;
    }

    /// From the next offer on.
    void Become(Manner manner) { m_manner = manner; }

private:
    class Receiver : public vk::FileReceiver
    {
    public:
        explicit Receiver(FilePeer& peer)
            : vk::FileReceiver(peer.m_client, peer.m_types), m_peer(peer)
        {
        }
        void handleFTRequest(const gloox::JID& from, const gloox::JID& to, const std::string& sid,
                             const std::string& name, long size, const std::string& hash, const std::string& date,
                             const std::string& mime, const std::string& description, int types) override
        {
            if (m_peer.m_manner != Manner::Silent)
                vk::FileReceiver::handleFTRequest(from, to, sid, name, size, hash, date, mime, description,
                                                  m_peer.m_manner == Manner::Refuse ? 0 : types);
        }
        void handleBytestreamData(gloox::Bytestream* stream, const std::string& data) override
        {
            vk::FileReceiver::handleBytestreamData(stream, data);
            if (m_peer.m_manner == Manner::Vanish)
                m_peer.m_stop = true;
        }

    protected:
        void Offered(const File&) override {}
        std::string PathFor(const File&) override { return m_peer.m_dir / ("file" + std::to_string(++m_count)); }
        void Received(const File& file) override
        {
            const std::string name = std::filesystem::path(file.path).filename();
            const std::lock_guard<std::mutex> lock(m_peer.m_guard);
            m_peer.m_got.push_back(
                {file.name, file.description, file.hash, m_peer.m_dir.Read(name), std::chrono::steady_clock::now()});
            m_peer.m_changed.notify_all();
        }
        void Failed(const std::string&, const gloox::IQ*) override {}

    private:
        FilePeer& m_peer;
        int m_count = 0;
    };

    void onConnect() override
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_online = true;
        m_changed.notify_all();
    }
    void onDisconnect(gloox::ConnectionError) override {}
    bool onTLSConnect(const gloox::CertInfo&) override { return true; }

    void Run()
    {
        m_client.connect(false);
        m_socket->Watch();
        while (!m_stop && m_client.recv(0) == gloox::ConnNoError) {
            if (m_receiver && m_manner != Manner::ReadNothing)
                m_receiver->Pump();
            else if (m_receiver && !m_opened)
                PumpUntilOpen();
            m_traffic.Wait(m_manner == Manner::ReadNothing ? 20 : 1000);
        }
        m_receiver.reset();
        m_client.disconnect();
    }

    /// The handshake of a stream and nothing more.
    void PumpUntilOpen()
    {
        m_receiver->Pump();
        m_opened = !std::filesystem::is_empty(m_dir.Path());
    }

    std::atomic<Manner> m_manner;
    const int m_types;
    TempDir m_dir;
    vk::TrafficWait m_traffic;
    gloox::Client m_client;
    VKMXPTcpSocket* m_socket = nullptr;
    std::unique_ptr<Receiver> m_receiver;
    bool m_opened = false;
    std::atomic<bool> m_stop{false};
    std::mutex m_guard; ///< guards what follows
    std::condition_variable m_changed;
    bool m_online = false;
    std::vector<Got> m_got;
    std::thread m_thread;
};
