#pragma once

#include "VKMXPAttachmentStatusHandlerIface.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

class VKconThreadPool;
class VKLogInterface;
class VKMXPSession;

namespace vk {
class Hub;
}

/// One logged-in XMPP account of this server, as the core manager and the sessions see it; keeps the XMPP library out
/// of the rest of the system. The connection ID is the carrier name of the messages that use it.
///
/// Who may call what from which thread is told at the core manager, which holds the locks.
class VKMXPConnIface
{
public:
    struct FileTransferMechanism
    {
        enum eType { Unknown = 0, Socks5 = 1, InBand = 3, Either = 4 };
    };

    /// As gloox::TLSPolicy; Required is the only one in use.
    enum VKTLSPolicy { TlsDisabled = 0, TlsOptional = 1, TlsRequired = 2 };

    /// Path of a file, and its description or secure key.
    using FileList = std::vector<std::pair<std::string, std::string>>;
    /// Packet id to the files that travel with the packet.
    using AttachmentMap = std::map<std::string, FileList>;

    virtual ~VKMXPConnIface();

    /// Logs in; gives up after 30 seconds. False with the reason in the last error.
    virtual bool StartConnection() = 0;
    virtual bool TerminateConnection() = 0;

    /// A new session, owned by the caller, who ends it with TerminateSession before deleting it; null with the reason
    /// in the last error. A connection that has lost its server logs in again first.
    virtual VKMXPSession* StartSession(const std::string& jid) = 0;
    virtual bool TerminateSession(VKMXPSession* session) = 0;

    virtual bool IsConnected() = 0;

    /// Receives what has come in; with a timeout (microseconds) waits that long at most for anything to happen on any
    /// connection. Sends nothing. False when the connection is dead.
    virtual bool SendPing(int timeout) = 0;

    /// Sends text as one XMPP message. False when it was not handed to the server's stream.
    virtual bool SendAMessage(VKMXPSession* session, const std::string& text, AttachmentMap& attachments) = 0;

    /// The oldest message for the session, or the oldest one of a sender without a session (whose bare JID is then in
    /// jid); empty when there is none. Waits up to timeout milliseconds in steps of 100; without limit when negative.
    virtual std::string RecvAMessage(VKMXPSession* session, int timeout) = 0;
    virtual std::string RecvAMessage(std::string& jid, int timeout) = 0;

    /// The files received for a packet; the entry stays. None when several peers have sent files under this id.
    virtual bool GetAttachedFiles(const std::string& packetId, FileList& files) = 0;

    /// 1 SOCKS5, 3 in-band, 0 none.
    virtual int GetFileTransferMethod() = 0;

    /// Those files received for a packet that its own sender has sent; a packet id may be the same for several.
    virtual bool GetAttachedFilesOf(const std::string& jid, const std::string& packetId, FileList& files) = 0;

    /// The text of the last failure. Any thread.
    std::string GetLastError() const;

    std::string m_strServer;
    int m_iPort = 0;
    std::string m_strUserID;
    std::string m_strPassword; ///< never logged
    std::string m_strResource;
    VKTLSPolicy m_eTLSPolicy = TlsRequired;
    std::string m_strReceiveDirectory;
    int m_iTransferTimeout = 0; ///< seconds without progress
protected:
    std::string m_strLastError; ///< guarded by m_mtxLastError
public:
    VKconThreadPool* m_pobjThreadPool = nullptr;
    VKLogInterface* m_pobjLogger = nullptr; ///< not owned, may be null
    std::atomic<VKMXPAttachmentStatusHandlerIface*> m_pobjAttachmentStatusHandler{nullptr}; ///< not owned
    int m_iFileTransferMechanism = FileTransferMechanism::Unknown; ///< written only; the peers negotiate their own
    std::string m_strStreamHost;
    int m_iStreamPort = 0;
    std::atomic<int> m_iChunkSizeKB{0}; ///< read anew for each transfer
    std::string m_strConnectionID;

    /// Whether this thread is telling a handler of attachment statuses something: it may be a file sender's, for which
    /// others wait, so it must not wait for them.
    static bool InStatusHandler();

    /// Set by the core manager before StartConnection; null for a connection of its own.
    void SetHub(vk::Hub* hub) { m_pobjHub = hub; }

protected:
    void SetLastError(const std::string& text);

    /// Tells the handler, when there is one, how the transfer of a packet's files ended. The handler may delete the
    /// connection, unless the caller needs it any more.
    void TellAttachmentStatus(const std::string& packetId, int status, const std::string& errorText);

    vk::Hub* m_pobjHub = nullptr;

private:
    mutable std::mutex m_mtxLastError;
};
