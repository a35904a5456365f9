#include "VKMXPFileReceiver.h"

#include <gloox/bytestream.h>
#include <gloox/clientbase.h>
#include <gloox/disco.h>
#include <gloox/siprofileft.h>

#include <cstdio>

namespace vk {

namespace {

constexpr std::size_t kLongestName = 200; // bytes; file systems take 255, and room is left for a number in front
constexpr std::size_t kMostFiles = 64;    // offers at a time; a peer that offers more is declined
constexpr int kReadsAtAStretch = 8;

using Clock = std::chrono::steady_clock;

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

} // namespace

std::string SafeFileName(std::string_view offered)
{
    const std::size_t slash = offered.find_last_of("/\\");
    if (slash != std::string_view::npos)
        offered.remove_prefix(slash + 1);
    std::string name;
    for (const char byte : offered)
        if (static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F)
            name += byte;
    if (name.size() > kLongestName) {
        const std::size_t dot = name.rfind('.');
        const std::string extension = dot != std::string::npos && name.size() - dot <= 16 ? name.substr(dot) : "";
        std::size_t cut = kLongestName - extension.size();
        while (cut > 0 && IsContinuation(name[cut])) // not within a character
            --cut;
        name = name.substr(0, cut) + extension;
    }
    return name.empty() || name == "." || name == ".." ? "file" : name;
}

FileReceiver::FileReceiver(gloox::ClientBase& client, int streamTypes, std::chrono::seconds limit)
    : m_streamTypes(streamTypes), m_limit(limit), m_profile(std::make_unique<gloox::SIProfileFT>(&client, this))
{
    if (streamTypes & gloox::SIProfileFT::FTTypeS5B)
        client.disco()->addFeature(gloox::XMLNS_BYTESTREAMS);
    if (streamTypes & gloox::SIProfileFT::FTTypeIBB)
        client.disco()->addFeature(gloox::XMLNS_IBB);
}

FileReceiver::~FileReceiver()
{
    for (auto& [key, file] : m_files) {
        if (file.bytestream) {
            file.bytestream->removeBytestreamDataHandler();
            m_ended.insert(file.bytestream);
        }
        if (!file.path.empty()) {
            file.stream.close();
            std::remove(file.path.c_str()); // half a file is none
        }
    }
    m_files.clear();
    for (gloox::Bytestream* bytestream : m_ended)
        m_profile->dispose(bytestream);
}

FileReceiver::File* FileReceiver::Find(const gloox::Bytestream& bytestream)
{
    const auto found = m_files.find(KeyOf(bytestream.sid(), bytestream.initiator()));
    return found == m_files.end() ? nullptr : &found->second;
}

bool FileReceiver::IsBeingWritten(const std::string& path) const
{
    for (const auto& [key, file] : m_files)
        if (file.path == path)
            return true;
    return false;
}

void FileReceiver::Pump()
{
    std::vector<gloox::Bytestream*> streams;
    for (const auto& [key, file] : m_files)
        if (file.bytestream && file.bytestream->type() == gloox::Bytestream::S5B)
            streams.push_back(file.bytestream);
    for (gloox::Bytestream* stream : streams)
        for (int reads = 0; reads < kReadsAtAStretch && m_ended.count(stream) == 0; ++reads)
            if (stream->recv(0) != gloox::ConnNoError && m_ended.count(stream) == 0)
                handleBytestreamClose(stream); // it ended without a word
    GiveUpStalled();
    const std::set<gloox::Bytestream*> ended = std::move(m_ended);
    m_ended.clear();
    for (gloox::Bytestream* stream : ended)
        m_profile->dispose(stream);
}

void FileReceiver::GiveUpStalled()
{
    const Clock::time_point oldest = Clock::now() - m_limit;
    for (auto it = m_files.begin(); it != m_files.end();) {
        const Key key = it->first;
        const bool stalled = it->second.last < oldest;
        gloox::Bytestream* const stream = it->second.bytestream;
        ++it; // what is given up leaves the map
        if (!stalled)
            continue;
        if (stream)
            Break(*stream, "Timeout has occurred.");
        else {
            Failed("Timeout has occurred.", nullptr);
            m_files.erase(key);
        }
    }
}

void FileReceiver::handleFTRequest(const gloox::JID& from, const gloox::JID& to, const std::string& sid,
                                   const std::string& name, long size, const std::string& hash, const std::string&,
                                   const std::string&, const std::string& description, int streamTypes)
{
    const int common = streamTypes & m_streamTypes;
    const Key key = KeyOf(sid, from);
    // The library tells streams apart by their id alone, whoever sends on them: an id belongs to one peer at a time.
    const auto sameId = m_files.lower_bound(sid + '\n');
    const bool taken = sameId != m_files.end() && sameId->first.compare(0, sid.size() + 1, sid + '\n') == 0;
    if (common == 0 || size < 0 || m_files.size() >= kMostFiles || taken) {
        m_profile->declineFT(from, sid,
                             common == 0 ? gloox::SIManager::NoValidStreams : gloox::SIManager::RequestRejected);
        return;
    }
    File& file = m_files[key];
    file.name = SafeFileName(name);
    file.description = description;
    file.hash = hash;
    file.from = from;
    file.size = size;
    file.last = Clock::now();
    Offered(file);
    const bool socks5 = (common & gloox::SIProfileFT::FTTypeS5B) != 0;
    m_profile->acceptFT(from, sid, socks5 ? gloox::SIProfileFT::FTTypeS5B : gloox::SIProfileFT::FTTypeIBB, to);
}

void FileReceiver::handleFTBytestream(gloox::Bytestream* bytestream)
{
    File* const file = Find(*bytestream);
    if (!file || file->bytestream) { // nothing of the kind was offered
        m_ended.insert(bytestream);
        return;
    }
    file->bytestream = bytestream;
    bytestream->registerBytestreamDataHandler(this);
    if (!bytestream->connect() && m_ended.count(bytestream) == 0)
        Break(*bytestream, "Bytestream could not connect.");
}

void FileReceiver::handleBytestreamOpen(gloox::Bytestream* bytestream)
{
    File* const file = Find(*bytestream);
    if (!file || !file->path.empty())
        return;
    file->path = PathFor(*file);
    if (!file->path.empty())
        file->stream.open(file->path, std::ios::binary | std::ios::trunc);
    if (file->path.empty() || !file->stream) {
        file->path.clear();
        Break(*bytestream, "File Stream is not open.");
    }
}

void FileReceiver::handleBytestreamData(gloox::Bytestream* bytestream, const std::string& data)
{
    File* const file = Find(*bytestream);
    if (!file)
        return;
    if (file->path.empty())
        handleBytestreamOpen(bytestream); // data may come with the word that the stream is open
    if (m_ended.count(bytestream) != 0)
        return;
    file->last = Clock::now();
    file->got += static_cast<long long>(data.size());
    if (file->got > file->size)
        Break(*bytestream, "More data than was offered.");
    else if (!file->stream.write(data.data(), static_cast<std::streamsize>(data.size())))
        Break(*bytestream, "Error occurred while writing data.");
}

void FileReceiver::handleBytestreamClose(gloox::Bytestream* bytestream)
{
    File* const file = Find(*bytestream);
    if (!file || file->bytestream != bytestream)
        return;
    file->stream.close();
    if (file->path.empty() || file->got < file->size || !file->stream) {
        Break(*bytestream, "Bytestream closed without complete data transfer.");
        return;
    }
    Received(*file);
    End(*bytestream);
}

void FileReceiver::handleFTRequestError(const gloox::IQ& iq, const std::string&)
{
    Failed("Bytestream could not connect.", &iq);
}

void FileReceiver::handleBytestreamError(gloox::Bytestream* bytestream, const gloox::IQ& iq)
{
    Break(*bytestream, "An error has occurred in Bytestream.", &iq);
}

const std::string FileReceiver::handleOOBRequestResult(const gloox::JID&, const gloox::JID&, const std::string&)
{
    return {};
}

void FileReceiver::Break(gloox::Bytestream& bytestream, const std::string& what, const gloox::IQ* iq)
{
    if (File* const file = Find(bytestream)) {
        file->stream.close();
        if (!file->path.empty())
            std::remove(file->path.c_str());
    }
    Failed(what, iq);
    End(bytestream);
}

void FileReceiver::End(gloox::Bytestream& bytestream)
{
    bytestream.removeBytestreamDataHandler();
    m_files.erase(KeyOf(bytestream.sid(), bytestream.initiator()));
    m_ended.insert(&bytestream);
}

} // namespace vk
