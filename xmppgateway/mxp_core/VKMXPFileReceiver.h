#pragma once

#include <gloox/bytestreamdatahandler.h>
#include <gloox/jid.h>
#include <gloox/siprofilefthandler.h>

#include <chrono>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace gloox {
class ClientBase;
class SIProfileFT;
}

namespace vk {

/// A name that a peer has given a file, made safe for our disk: the part behind the last slash or backslash, without
/// control characters, at most 200 bytes, never empty, "." or "..".
std::string SafeFileName(std::string_view offered);

/// Takes the files that peers offer to one client (XEP-0096) over SOCKS5 (XEP-0065) and in-band (XEP-0047) streams, any
/// number at a time. Nothing here waits.
///
/// Threads: all of it, the destructor too, runs on whatever thread pumps the client, under the lock that guards it. The
/// client must outlive it, and of several handlers of file offers at one client only the first that was made is asked.
class FileReceiver : public gloox::SIProfileFTHandler, public gloox::BytestreamDataHandler
{
public:
    /// What is known of a file.
    struct File
    {
        gloox::Bytestream* bytestream = nullptr; ///< the profile's
        std::ofstream stream;
        std::string path;        ///< empty while the stream is not open
        std::string name;        ///< safe
        std::string description; ///< the packet id
        std::string hash;        ///< from our server its secure key: never logged
        gloox::JID from;
        long long size = 0; ///< as offered
        long long got = 0;
        std::chrono::steady_clock::time_point last{}; ///< when it was offered, or something of it came
    };

    /// Streams that are accepted, as gloox::SIProfileFT::StreamType; with both SOCKS5 goes first. A file of which nothing
    /// came for the time of the limit is given up: its sender may have gone without a word.
    FileReceiver(gloox::ClientBase& client, int streamTypes, std::chrono::seconds limit = std::chrono::minutes(2));
    ~FileReceiver() override;
    FileReceiver(const FileReceiver&) = delete;
    FileReceiver& operator=(const FileReceiver&) = delete;

    /// Takes what has come on SOCKS5 streams, at most half a megabyte from each, and clears what has ended or stands still.
    void Pump();

    void handleFTRequest(const gloox::JID& from, const gloox::JID& to, const std::string& sid, const std::string& name,
                         long size, const std::string& hash, const std::string& date, const std::string& mimeType,
                         const std::string& description, int streamTypes) override;
    void handleFTRequestError(const gloox::IQ& iq, const std::string& sid) override;
    void handleFTBytestream(gloox::Bytestream* bytestream) override;
    const std::string handleOOBRequestResult(const gloox::JID& from, const gloox::JID& to,
                                             const std::string& sid) override;
    void handleBytestreamData(gloox::Bytestream* bytestream, const std::string& data) override;
    void handleBytestreamError(gloox::Bytestream* bytestream, const gloox::IQ& iq) override;
    void handleBytestreamOpen(gloox::Bytestream* bytestream) override;
    void handleBytestreamClose(gloox::Bytestream* bytestream) override;

protected:
    /// An offer is about to be accepted.
    virtual void Offered(const File& file) = 0;
    /// Where to write the file; an old file there is overwritten. Empty: nowhere, the transfer fails.
    virtual std::string PathFor(const File& file) = 0;
    /// The file is whole and closed.
    virtual void Received(const File& file) = 0;
    /// A transfer has failed, and what came of its file is deleted. The IQ may be null.
    virtual void Failed(const std::string& what, const gloox::IQ* iq) = 0;

    /// Whether a file is being written there.
    bool IsBeingWritten(const std::string& path) const;

private:
    using Key = std::string;

    static Key KeyOf(const std::string& sid, const gloox::JID& from) { return sid + '\n' + from.full(); }
    File* Find(const gloox::Bytestream& bytestream);
    void End(gloox::Bytestream& bytestream);
    void GiveUpStalled();
    void Break(gloox::Bytestream& bytestream, const std::string& what, const gloox::IQ* iq = nullptr);

    int m_streamTypes;
    std::chrono::seconds m_limit;
    std::unique_ptr<gloox::SIProfileFT> m_profile;
    std::map<Key, File> m_files;
    std::set<gloox::Bytestream*> m_ended; ///< to be disposed of outside their own callbacks
};

} // namespace vk
