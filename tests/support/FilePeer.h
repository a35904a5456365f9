#pragma once

#include "FreePort.h"
#include "TempDir.h"
#include "VKMXPFileReceiver.h"
#include "VKMXPStreamListener.h"
#include "VKMXPTrafficWait.h"
#include "XmppPeer.h"

#include <gtest/gtest.h>
#include <gloox/bytestream.h>
#include <gloox/disco.h>
#include <gloox/siprofileft.h>
#include <gloox/socks5bytestream.h>
#include <gloox/socks5bytestreamserver.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <utility>
#include <vector>

/// A mobile client that takes files and can send some, on a thread of its own.
class FilePeer : private gloox::ConnectionListener
{
public:
    /// What it does with an offered file.
    enum class Manner { Accept, Refuse, Withdraw, Vanish, ReadNothing, EndItsHalf, Silent };

    struct Got
    {
        std::string name, packetId, key, content;
        std::chrono::steady_clock::time_point when;
    };

    static constexpr int kSocks5 = gloox::SIProfileFT::FTTypeS5B;
    static constexpr int kInBand = gloox::SIProfileFT::FTTypeIBB;

    FilePeer(const std::string& jid, int port, int streamTypes, Manner manner = Manner::Accept)
        : m_manner(manner), m_types(streamTypes), m_client(gloox::JID(jid), "pw", port),
          m_socket(ConnectOnLoopback(m_client, port, &m_traffic))
    {
        m_client.registerConnectionListener(this);
        if (streamTypes != 0)
            m_receiver = std::make_unique<Receiver>(*this);
        m_sender = std::make_unique<Sender>(*this);
        if ((streamTypes & kInBand) == 0) // each profile announces itself
            m_client.disco()->removeFeature(gloox::XMLNS_SI_FT);
        m_thread = std::thread([this] { Run(); });
    }

    ~FilePeer() override
    {
        m_stop = true;
        Pause(false);
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

    /// Offers a file, of at most 100 kB over SOCKS5; from any thread.
    void Offer(const std::string& to, const std::string& name, const std::string& content, const std::string& packetId,
               int type = kInBand)
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_offers.push_back({to, name, content, packetId, type});
        m_traffic.Wake();
    }

    /// Sends a message with this body; from any thread.
    void Say(const std::string& to, const std::string& body) { Offer(to, "", body, ""); }

    /// How many of its offers were sent to the end.
    int WaitUntilSent(int count)
    {
        std::unique_lock<std::mutex> lock(m_guard);
        m_changed.wait_for(lock, std::chrono::seconds(20), [&] { return m_sent >= count; });
        return m_sent;
    }

    /// From the next offer on.
    void Become(Manner manner) { m_manner = manner; }

    /// Stops to look at what comes, its connections stay open; and goes on.
    void Pause(bool paused)
    {
        std::unique_lock<std::mutex> lock(m_guard);
        m_paused = paused;
        m_changed.notify_all();
        m_traffic.Wake();
        m_changed.wait(lock, [this] { return m_parked || !m_paused; });
    }

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
        void handleFTBytestream(gloox::Bytestream* stream) override
        {
            vk::FileReceiver::handleFTBytestream(stream);
            if (m_peer.m_manner == Manner::Withdraw) // what opens the stream is answered with an error then
                handleBytestreamClose(stream);
        }
        void handleBytestreamData(gloox::Bytestream* stream, const std::string& data) override
        {
            vk::FileReceiver::handleBytestreamData(stream, data);
            if (m_peer.m_manner == Manner::Vanish)
                m_peer.m_stop = true;
            if (m_peer.m_manner == Manner::EndItsHalf && !m_peer.m_opened.exchange(true)) {
                auto* const socket = dynamic_cast<VKMXPTcpSocket*>(
                    dynamic_cast<gloox::SOCKS5Bytestream&>(*stream).connectionImpl());
                ASSERT_TRUE(socket && ::shutdown(socket->Descriptor(), SHUT_WR) == 0);
            }
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

    struct Outgoing
    {
        std::string to, name, content, packetId;
        int type;
    };

    /// Sends the one file that is on offer in a single stream.
    class Sender : public gloox::SIProfileFTHandler, public gloox::BytestreamDataHandler
    {
    public:
        explicit Sender(FilePeer& peer)
            : m_peer(peer), m_profile(&peer.m_client, this),
              m_server(peer.m_client.logInstance(), m_port, "127.0.0.1"), m_listener(m_server, &peer.m_traffic)
        {
            if ((peer.m_types & kSocks5) == 0)
                return;
            m_listener.Listen("127.0.0.1", m_port);
            m_profile.registerSOCKS5BytestreamServer(&m_server);
            m_profile.addStreamHost(peer.m_client.jid(), "127.0.0.1", m_port);
        }
        void Offer(const Outgoing& file)
        {
            m_contents[m_profile.requestFT(gloox::JID(file.to), file.name, static_cast<long>(file.content.size()), "",
                                           file.packetId, "", "", file.type)] = file.content;
        }
        void handleFTBytestream(gloox::Bytestream* stream) override
        {
            stream->registerBytestreamDataHandler(this);
            if (stream->type() == gloox::Bytestream::S5B)
                m_listener.Release(dynamic_cast<gloox::SOCKS5Bytestream&>(*stream).connectionImpl());
            if (stream->connect() && stream->type() == gloox::Bytestream::S5B)
                Opened(stream);
        }
        /// An in-band stream takes data only when this has returned.
        void handleBytestreamOpen(gloox::Bytestream* stream) override
        {
            if (stream->type() == gloox::Bytestream::IBB)
                Opened(stream);
        }
        void Opened(gloox::Bytestream* stream)
        {
            if (m_peer.m_manner != Manner::Silent)
                m_opened.push_back(stream);
            else
                m_ended.insert(stream); // it stays open, and nothing comes
        }
        void SendOpened()
        {
            if (m_peer.m_types & kSocks5)
                m_listener.Pump(!m_contents.empty());
            for (gloox::Bytestream* stream : std::exchange(m_opened, {})) {
                stream->send(m_contents[stream->sid()]);
                stream->close();
                m_contents.erase(stream->sid());
                m_ended.insert(stream);
                const std::lock_guard<std::mutex> lock(m_peer.m_guard);
                ++m_peer.m_sent;
                m_peer.m_changed.notify_all();
            }
        }
        void handleFTRequest(const gloox::JID&, const gloox::JID&, const std::string&, const std::string&, long,
                             const std::string&, const std::string&, const std::string&, const std::string&,
                             int) override
        {
        }
        void handleFTRequestError(const gloox::IQ&, const std::string&) override {}
        const std::string handleOOBRequestResult(const gloox::JID&, const gloox::JID&, const std::string&) override
        {
            return {};
        }
        void handleBytestreamData(gloox::Bytestream*, const std::string&) override {}
        void handleBytestreamError(gloox::Bytestream*, const gloox::IQ&) override {}
        void handleBytestreamClose(gloox::Bytestream* stream) override { m_ended.insert(stream); }
        ~Sender() override
        {
            m_profile.removeSOCKS5BytestreamServer();
            for (gloox::Bytestream* stream : m_ended)
                m_profile.dispose(stream);
        }

    private:
        FilePeer& m_peer;
        const int m_port = FreePort();
        gloox::SIProfileFT m_profile;
        gloox::SOCKS5BytestreamServer m_server;
        vk::StreamListener m_listener;
        std::map<std::string, std::string> m_contents;
        std::vector<gloox::Bytestream*> m_opened;
        std::set<gloox::Bytestream*> m_ended;
    };

    void SendWaiting()
    {
        std::vector<Outgoing> offers;
        {
            const std::lock_guard<std::mutex> lock(m_guard);
            if (m_online)
                offers.swap(m_offers);
        }
        for (const Outgoing& each : offers)
            if (each.name.empty())
                m_client.send(gloox::Message(gloox::Message::Chat, gloox::JID(each.to), each.content));
            else
                m_sender->Offer(each);
        m_sender->SendOpened();
    }

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
            if (m_receiver && m_manner == Manner::ReadNothing && !m_opened)
                PumpUntilOpen();
            else if (m_receiver && !ReadsNothing())
                m_receiver->Pump();
            SendWaiting();
            {
                std::unique_lock<std::mutex> lock(m_guard);
                m_parked = m_paused;
                m_changed.notify_all();
                m_changed.wait(lock, [this] { return !m_paused; });
                m_parked = false;
            }
            m_traffic.Wait(ReadsNothing() ? 20 : 1000);
        }
        m_receiver.reset();
        m_sender.reset();
        m_client.disconnect();
    }

    bool ReadsNothing() const
    {
        return m_manner == Manner::ReadNothing || (m_manner == Manner::EndItsHalf && m_opened);
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
    VKMXPTcpSocket* const m_socket;
    std::unique_ptr<Receiver> m_receiver;
    std::unique_ptr<Sender> m_sender; ///< made behind the receiver, which is asked first then
    std::atomic<bool> m_opened{false};
    std::atomic<bool> m_stop{false};
    std::mutex m_guard; ///< guards what follows
    std::condition_variable m_changed;
    bool m_online = false;
    bool m_paused = false;
    bool m_parked = false;
    std::vector<Got> m_got;
    std::vector<Outgoing> m_offers;
    int m_sent = 0;
    std::thread m_thread;
};
