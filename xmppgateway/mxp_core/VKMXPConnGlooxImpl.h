#pragma once

#include "VKMXPConnIface.h"
#include "VKMXPIncomingQueues.h"

#include <gloox/connectionlistener.h>
#include <gloox/discohandler.h>
#include <gloox/messagehandler.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

class VKconLock;
class VKMXPSessionGlooxImpl;
class VKMXPStanzaClient;
class VKMXPTcpSocket;

/// A connection on the gloox library (RFC 6120, 6121, TLS required).
///
/// Threads: gloox is not made for two threads inside one client. Every entry to the client, its message sessions and its
/// socket is under the client lock; nothing waits while it is held, and no callback that runs inside takes another lock
/// of the core: what arrives is noted, and sorted into the queues after the client was left.
class VKMXPConnGlooxImpl : public VKMXPConnIface,
                           public gloox::ConnectionListener,
                           public gloox::MessageHandler,
                           public gloox::DiscoHandler
{
public:
    class VKMXPConnGlooxFileAcceptor;
    class VKMXPConnGlooxFileSender;

    /// Seconds after which a login without an answer is given up.
    static inline std::atomic<int> s_iLoginLimitSeconds{30};

    /// Seconds after which a file that a device has begun to send, and of which no more comes, is given up.
    static inline std::atomic<int> s_iUploadLimitSeconds{120};

    VKMXPConnGlooxImpl(const std::string& connectionId, const std::string& server, int port, const std::string& userId,
                       const std::string& password, const std::string& resource, VKTLSPolicy tlsPolicy,
                       const std::string& receiveDirectory, const std::string& streamHost, int streamPort, int chunkKB,
                       int transferTimeout, VKconThreadPool* threadPool, bool startFileSender, VKLogInterface* logger);
    ~VKMXPConnGlooxImpl() override;

    bool StartConnection() override;
    bool TerminateConnection() override;
    VKMXPSession* StartSession(const std::string& jid) override;
    bool TerminateSession(VKMXPSession* session) override;
    bool IsConnected() override { return m_bConnected; }
    bool SendPing(int timeout) override;
    bool SendAMessage(VKMXPSession* session, const std::string& text, AttachmentMap& attachments) override;
    std::string RecvAMessage(VKMXPSession* session, int timeout) override;
    std::string RecvAMessage(std::string& jid, int timeout) override;
    bool GetAttachedFiles(const std::string& packetId, FileList& files) override;
    bool GetAttachedFilesOf(const std::string& jid, const std::string& packetId, FileList& files) override;
    int GetFileTransferMethod() override;

    void onConnect() override;
    bool onTLSConnect(const gloox::CertInfo& info) override;
    void onDisconnect(gloox::ConnectionError error) override;
    void handleMessage(const gloox::Message& message, gloox::MessageSession* messageSession) override;
    void handleDiscoInfo(const gloox::JID& from, const gloox::Disco::Info& info, int context) override;
    void handleDiscoItems(const gloox::JID& from, const gloox::Disco::Items& items, int context) override;
    void handleDiscoError(const gloox::JID& from, const gloox::Error* error, int context) override;

    /// Files of one packet that wait for the file sender.
    struct FileAttachmentDetails
    {
        std::string strTargetJID;
        std::string strPacketId;
        FileList vecFiles; ///< path and secure key
        FileTransferMechanism::eType eMechanism = FileTransferMechanism::Unknown;
        unsigned long uID = 0;                              ///< tells records apart
        int iTries = 0;                                     ///< how often its files could not be secured
        std::chrono::steady_clock::time_point tNotBefore{}; ///< the next try
        bool bTriedAhead = false; ///< its files were to be secured before its peer had answered
        std::optional<std::chrono::steady_clock::time_point> tAsked; ///< the question that its peer has not answered
    };

private:
    using Clock = std::chrono::steady_clock;

    struct Arrived
    {
        std::string strFullJID;
        std::string strBareJID;
        std::string strBody;
    };

    void PrepareClient(VKMXPTcpSocket& socket);
    bool LogIn(VKMXPTcpSocket& socket);
    void DropClient();
    bool StartFileTransfer();
    void StopFileTransfer();
    bool OnSenderThread() const { return m_idSenderThread.load() == std::this_thread::get_id(); }
    void SortInArrived();
    bool Pump(gloox::ConnectionError& result);
    void EnsureMessageSession(VKMXPSessionGlooxImpl& session);
    void QueueAttachments(VKMXPSession& session, const AttachmentMap& attachments);
    void AskWhatItTakes(const std::string& jid);
    void AskWhoHasSpoken(const std::string& fullJid);
    void AskAllAnew();
    void TellRefused();
    void RefuseAttachments(const AttachmentMap& attachments, const char* error, const char* reason);
    void NoteDisconnection(int error);
    void LogTransferError(const std::string& jid, const std::string& what, const gloox::Error* error);

    std::unique_ptr<VKMXPStanzaClient> m_pobjClient; ///< null while not connected; guarded by m_mtxClient
    std::atomic<bool> m_bConnected{false};
    bool m_bFileSenderWanted;
    vk::IncomingQueues m_objIncoming;                 ///< the queues and the senders by bare JID; incoming lock
    std::map<std::string, std::map<std::string, FileList>> m_mapReceivedFiles; ///< by packet id, then by the bare JID
                                                                               ///< of who sent them; incoming lock
    std::vector<FileAttachmentDetails> m_vecPendingAttachments; ///< the oldest first; attachments lock
    std::unique_ptr<VKconLock> m_pobjIncomingLock;
    std::unique_ptr<VKconLock> m_pobjAttachmentsLock;
    std::unique_ptr<VKMXPConnGlooxFileAcceptor> m_pobjFileAcceptor; ///< while connected; client lock
    std::unique_ptr<VKMXPConnGlooxFileSender> m_pobjFileSender;     ///< null when no files are to be sent; client lock

    std::recursive_mutex m_mtxClient; ///< the client lock; m_pobjSocket belongs to the client
    VKMXPTcpSocket* m_pobjSocket = nullptr;
    std::set<VKMXPSessionGlooxImpl*> m_setSessions; ///< those that hold a message session; client lock
    std::vector<Arrived> m_vecArrived;              ///< noted inside the client; client lock
    bool m_bPumping = false;                        ///< client lock
    unsigned long m_uNextRecord = 0;                ///< attachments lock
    std::atomic<std::thread::id> m_idSenderThread{};
    AttachmentMap m_mapRefused; ///< files that cannot go, which the handler is still to be told; attachments lock
};
