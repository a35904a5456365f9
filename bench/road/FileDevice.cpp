#include "FileDevice.h"

#include "Accounts.h"
#include "VKMXPTcpSocket.h"
#include "VKMXPTlsOpenSsl.h"

#include <gloox/bytestream.h>
#include <gloox/disco.h>

#include <stdexcept>

FileDevice::FileDevice(const std::string& user, int port, int type)
    : m_type(type), m_client(gloox::JID(accounts::Jid(user) + "/mxp"), user, port)
{
    m_client.setServer("127.0.0.1");
    m_client.disableRoster();
    auto socket = std::make_unique<VKMXPTcpSocket>(&m_client, "127.0.0.1", port, &m_traffic,
                                                   Clock::now() + std::chrono::seconds(10));
    auto tls = std::make_unique<VKMXPTlsOpenSsl>(&m_client, accounts::kDomain, "");
    tls->init();
    m_socket = socket.get();
    m_client.setConnectionImpl(socket.release()); // the client owns both
    m_client.setEncryptionImpl(tls.release());
    m_client.registerConnectionListener(this);
    m_client.logInstance().registerLogHandler(gloox::LogLevelDebug, gloox::LogAreaXmlOutgoing, this);
    gloox::SIProfileFTHandler* const offers = this;
    m_profile = std::make_unique<gloox::SIProfileFT>(&m_client, offers);
    m_client.disco()->addFeature(type == gloox::SIProfileFT::FTTypeS5B ? gloox::XMLNS_BYTESTREAMS : gloox::XMLNS_IBB);
    m_thread = std::thread([this] { Run(); });
    std::unique_lock<std::mutex> lock(m_guard);
    if (m_changed.wait_for(lock, std::chrono::seconds(10), [this] { return m_online; }))
        return;
    lock.unlock();
    m_stop = true;
    m_thread.join();
    throw std::runtime_error("a device for files cannot log in");
}

FileDevice::~FileDevice()
{
    m_stop = true;
    m_traffic.Wake();
    m_thread.join();
}

std::vector<FileDevice::File> FileDevice::Await(std::size_t count)
{
    std::unique_lock<std::mutex> lock(m_guard);
    for (std::size_t before = m_whole.size(); m_whole.size() < count; before = m_whole.size())
        if (!m_changed.wait_for(lock, std::chrono::minutes(1), [&] { return m_whole.size() > before; }))
            throw std::runtime_error("no file has come for a minute");
    return m_whole;
}

void FileDevice::Run()
{
    constexpr int kReadsAtAStretch = 64;
    m_client.connect(false);
    m_socket->Watch();
    while (!m_stop && m_client.recv(0) == gloox::ConnNoError) {
        for (gloox::Bytestream* stream : m_streams)
            for (int reads = 0; reads < kReadsAtAStretch && m_ended.count(stream) == 0; ++reads)
                if (stream->recv(0) != gloox::ConnNoError)
                    m_ended.insert(stream);
        for (gloox::Bytestream* stream : m_ended) {
            Note(*stream);
            m_streams.erase(stream);
            m_profile->dispose(stream);
        }
        m_ended.clear();
        m_traffic.Wait(1000);
    }
    for (gloox::Bytestream* stream : m_streams)
        m_profile->dispose(stream);
    m_profile.reset();
    m_client.disconnect();
}

void FileDevice::Note(gloox::Bytestream& stream)
{
    const File file = m_files[stream.sid()];
    m_files.erase(stream.sid());
    const std::lock_guard<std::mutex> lock(m_guard);
    if (file.got == file.size)
        m_whole.push_back(file);
    m_changed.notify_all();
}

void FileDevice::onConnect()
{
    const std::lock_guard<std::mutex> lock(m_guard);
    m_online = true;
    m_changed.notify_all();
}

void FileDevice::handleLog(gloox::LogLevel, gloox::LogArea, const std::string& text)
{
    if (text.find(gloox::XMLNS_DISCO_INFO) != std::string::npos && text.find("result") != std::string::npos)
        m_discoAnswered = Clock::now();
}

void FileDevice::handleFTRequest(const gloox::JID& from, const gloox::JID& to, const std::string& sid,
                                 const std::string&, long size, const std::string&, const std::string&,
                                 const std::string&, const std::string&, int)
{
    File& file = m_files[sid];
    file.size = size;
    file.discoAnswered = m_discoAnswered;
    file.offered = Clock::now();
    m_profile->acceptFT(from, sid, static_cast<gloox::SIProfileFT::StreamType>(m_type), to);
}

void FileDevice::handleFTBytestream(gloox::Bytestream* stream)
{
    stream->registerBytestreamDataHandler(this);
    if (stream->type() == gloox::Bytestream::S5B)
        m_streams.insert(stream);
    stream->connect();
}

void FileDevice::handleBytestreamData(gloox::Bytestream* stream, const std::string& data)
{
    File& file = m_files[stream->sid()];
    file.last = Clock::now();
    if (file.got == 0)
        file.first = file.last;
    file.got += static_cast<long>(data.size());
}
