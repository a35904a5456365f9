#pragma once

#include "Statistics.h"
#include "VKMXPTrafficWait.h"

#include <gloox/bytestreamdatahandler.h>
#include <gloox/client.h>
#include <gloox/connectionlistener.h>
#include <gloox/loghandler.h>
#include <gloox/siprofileft.h>
#include <gloox/siprofilefthandler.h>

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

class VKMXPTcpSocket;

/// A device that takes files over one kind of stream, counts their bytes, keeps none, and notes when what came. It has
/// a thread of its own.
class FileDevice : private gloox::ConnectionListener,
                   private gloox::LogHandler,
                   private gloox::SIProfileFTHandler,
                   private gloox::BytestreamDataHandler
{
public:
    struct File
    {
        long size = 0;
        long got = 0;
        Clock::time_point discoAnswered, offered, first, last;
    };

    /// Logs in. Throws std::runtime_error when that has not worked within ten seconds.
    /// \param type gloox::SIProfileFT::FTTypeS5B or FTTypeIBB
    FileDevice(const std::string& user, int port, int type);
    ~FileDevice() override;

    /// Waits until that many files have come whole. Throws std::runtime_error after a minute without.
    std::vector<File> Await(std::size_t count);

private:
    void Run();
    void Note(gloox::Bytestream& stream);

    void onConnect() override;
    void onDisconnect(gloox::ConnectionError) override {}
    bool onTLSConnect(const gloox::CertInfo&) override { return true; }
    void handleLog(gloox::LogLevel, gloox::LogArea, const std::string& text) override;
    void handleFTRequest(const gloox::JID& from, const gloox::JID& to, const std::string& sid, const std::string&,
                         long size, const std::string&, const std::string&, const std::string&, const std::string&,
                         int) override;
    void handleFTRequestError(const gloox::IQ&, const std::string&) override {}
    void handleFTBytestream(gloox::Bytestream* stream) override;
    const std::string handleOOBRequestResult(const gloox::JID&, const gloox::JID&, const std::string&) override
    {
        return {};
    }
    void handleBytestreamData(gloox::Bytestream* stream, const std::string& data) override;
    void handleBytestreamError(gloox::Bytestream*, const gloox::IQ&) override {}
    void handleBytestreamOpen(gloox::Bytestream*) override {}
    void handleBytestreamClose(gloox::Bytestream* stream) override { m_ended.insert(stream); }

    const int m_type;
    vk::TrafficWait m_traffic;
    gloox::Client m_client;
    VKMXPTcpSocket* m_socket = nullptr; ///< the client's
    std::unique_ptr<gloox::SIProfileFT> m_profile;
    std::map<std::string, File> m_files; ///< by stream id; own thread, as what follows
    std::set<gloox::Bytestream*> m_streams;
    std::set<gloox::Bytestream*> m_ended;
    Clock::time_point m_discoAnswered;
    std::atomic<bool> m_stop{false};
    std::mutex m_guard;
    std::condition_variable m_changed;
    bool m_online = false;     ///< m_guard
    std::vector<File> m_whole; ///< m_guard
    std::thread m_thread;
};
