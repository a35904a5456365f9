#pragma once

#include "VKMXPConnGlooxImpl.h"
#include "VKLogInterface.h"
#include "VKMXPSecureFiles.h"
#include "VKMXPStreamListener.h"
#include "VKThreadModule.h"

#include <gloox/bytestreamdatahandler.h>
#include <gloox/siprofilefthandler.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace gloox {
class Error;
class IQ;
class SIProfileFT;
class SOCKS5BytestreamServer;
}

/// Sends the attachments of one connection: takes the pending records whose peer has told what it can do, encrypts their
/// files, offers them one after the other and reports one status for the whole packet. One transfer at a time.
///
/// Threads: its own, which sleeps while there is nothing to send. The client is pumped by the work thread alone; the
/// gloox callbacks run there, under the client lock, and note what happened. This thread enters the client for short
/// steps that do not wait (an offer, a block in-band, the end of a stream); a SOCKS5 stream it writes itself, without
/// the client lock, so messages are not held up by files.
class VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender : public VKThreadModule,
                                                     public gloox::SIProfileFTHandler,
                                                     public gloox::BytestreamDataHandler
{
public:
    /// One file of the current transfer.
    struct VKFileEntry
    {
        std::int32_t iSize = 0;
        std::string strPath;
        std::string strSecureKey; ///< never logged
    };

    explicit VKMXPConnGlooxFileSender(VKMXPConnGlooxImpl* connection);
    ~VKMXPConnGlooxFileSender() override;

    bool InitializeSpecial() override;
    bool FinalizeSpecial() override;
    void DoThreadWork() override;
    void DoWork(void* userData) override;
    std::string GetRunningModuleName() override { return "VKMXPConnGlooxFileSender"; }
    bool IsLoggerRequired() override { return false; }

    void SetSelfAsSocks5Server();

    /// Puts encrypted copies in the place of the files; the mechanism is not used. False: nothing has changed, and it is
    /// worth another try later.
    bool SecureFileAttachmentsForSocks5(const std::string& jid, FileList& files, FileTransferMechanism::eType mechanism);
    void SetFileAttachmentParams(FileAttachmentDetails& record);

    /// Runs the transfer that the parameters tell of, to its end.
    void SendFileAttachment();

    /// As VKMXPConnIface::GetFileTransferMethod. Any thread.
    int GetMethod() const;

    /// There may be something to send. Any thread, also under any lock of the core.
    void Poke();

    /// Ends the thread, and a transfer that is under way: it counts as failed. Waits for it; no lock may be held that a
    /// handler of attachment statuses takes.
    void Stop();

    /// For a connection that ends on the sender's own thread: lets go of the client, and then of the sender, which deletes
    /// itself when its thread ends.
    static void Abandon(std::unique_ptr<VKMXPConnGlooxFileSender> sender);

    /// The streams' share of pumping the client; under the client lock.
    void PumpStreams();

    /// The peer has answered a question of ours with an error; inside the client.
    void PeerRefused(const gloox::JID& peer, const gloox::Error& error);

    void handleFTRequest(const gloox::JID& from, const gloox::JID& to, const std::string& sid, const std::string& name,
                         long size, const std::string& hash, const std::string& date, const std::string& mimeType,
                         const std::string& description, int streamTypes) override;
    void handleFTRequestError(const gloox::IQ& iq, const std::string& sid) override;
    void handleFTBytestream(gloox::Bytestream* bytestream) override;
    const std::string handleOOBRequestResult(const gloox::JID& from, const gloox::JID& to,
                                             const std::string& sid) override;
    void handleBytestreamData(gloox::Bytestream* bytestream, const std::string& data) override;
    void handleBytestreamDataAck(gloox::Bytestream* bytestream) override;
    void handleBytestreamError(gloox::Bytestream* bytestream, const gloox::IQ& iq) override;
    void handleBytestreamOpen(gloox::Bytestream* bytestream) override;
    void handleBytestreamClose(gloox::Bytestream* bytestream) override;

private:
    using ClientLock = std::unique_lock<std::recursive_mutex>;

    VKMXPConnGlooxImpl* m_pobjConnection;
    std::unique_ptr<gloox::SIProfileFT> m_pobjProfile;                    ///< client lock
    std::unique_ptr<gloox::SOCKS5BytestreamServer> m_pobjSocks5Server;    ///< client lock
    std::atomic<bool> m_bSocks5Running{false};
    std::int32_t m_iSleep = 100; ///< milliseconds; the shortest wait before files are tried again
    gloox::JID m_objTargetJID;
    std::string m_strPacketId; ///< also sent as the description of its files
    std::atomic<FileTransferMechanism::eType> m_eMechanism{FileTransferMechanism::Unknown};
    std::vector<VKFileEntry> m_vecFiles;
    gloox::Bytestream* m_pobjBytestream = nullptr; ///< the profile's; client lock, as all that callbacks touch
    std::int32_t m_iFileIndex = 0;
    std::int32_t m_iPosition = 0; ///< bytes of the current file that were sent
    Clock::time_point m_tLastDataSent{};
    std::atomic<bool> m_bQuit{true};

    // The pending records.
    bool TakeRecord(FileAttachmentDetails& record);
    bool ChooseRecord(FileAttachmentDetails& record);
    bool SecureAhead();
    bool IsPending(unsigned long id);
    bool EraseRecord(unsigned long id);
    void PutOff(unsigned long id);
    void WaitForRecords();

    // One transfer.
    bool DecideMechanism();
    bool SendFile(VKFileEntry& file);
    bool Offer(const VKFileEntry& file);
    bool AwaitStream();
    bool SendOverSocks5(const VKFileEntry& file);
    bool DrainSocks5();
    bool SendInBand(const VKFileEntry& file);
    void EndStream(bool more);
    void RenewSocks5Server();
    void Report();
    bool MayGoOn();
    void WaitForPeer(ClientLock& lock);
    void Fail(const char* lastError, const std::string& line, const gloox::Error* error = nullptr);
    void Note(VKLogInterface::LogLevel level, const std::string& line) const;

    std::unique_ptr<vk::StreamListener> m_pobjListener; ///< client lock
    vk::SecureFiles m_objCopies;
    std::string m_strTransferError; ///< why the current transfer failed; client lock
    std::size_t m_uBlock = 0;       ///< bytes
    std::string m_strStreamID;      ///< of the offer that is open; client lock
    int m_iStream = -1;             ///< descriptor of the SOCKS5 stream in use, which is the bytestream's; client lock
    int m_iInFlight = 0;            ///< blocks that the peer has not acknowledged; client lock
    bool m_bStreamReady = false;    ///< client lock
    bool m_bStreamClosed = false;   ///< by the peer; client lock
    std::vector<gloox::Bytestream*> m_vecStale; ///< streams that nobody waits for any more; client lock
    std::condition_variable_any m_cvPeer;       ///< something was noted; with the client lock

    bool* m_pAbandoned = nullptr; ///< whether the connection is gone; stands on the own thread's stack

    std::mutex m_mtxPoke; ///< leaf
    std::condition_variable m_cvPoke;
    bool m_bPoked = false;                  ///< m_mtxPoke
    Clock::time_point m_tNextTry = Clock::time_point::max();   ///< own thread
    Clock::time_point m_tDropAhead = Clock::time_point::max(); ///< when copies made ahead are given up; own thread
    unsigned long m_uAhead = 0;                                ///< the record that they are of; own thread
};
