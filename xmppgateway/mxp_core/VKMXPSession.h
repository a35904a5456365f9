#pragma once

#include "VKMXPConnIface.h"

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class VKconLock;
class VKLogInterface;
class VKMXPmBase;
class VKMXPmEnvelope;

/// The conversation between this server and one client JID over one connection. Packets and texts that callers queue
/// leave in the next round, all waiting packets as one envelope; what came in waits here until it is fetched. Nothing
/// is retransmitted: assurance comes from the packets that the client sends back.
///
/// Send, GetRequest, RecvResponse, FetchMessage and EmptyQueues may be called from any thread; the two cycles belong to
/// the work thread. A session does no I/O but through its connection.
class VKMXPSession
{
public:
    using PacketList = std::vector<std::pair<std::string, VKMXPmBase*>>;
    using MessageList = std::vector<std::pair<std::string, std::string>>;

    VKMXPSession(const std::string& jid, VKMXPConnIface* connection, VKLogInterface* logger);
    virtual ~VKMXPSession();
    VKMXPSession(const VKMXPSession&) = delete;
    VKMXPSession& operator=(const VKMXPSession&) = delete;

    /// The next message goes to the bare JID again, whatever resource answered last.
    virtual void ResetResource();

    /// Makes the lock; a session takes and gives nothing before.
    bool Initialize();
    bool Finalize();

    bool IsConnected() const;
    bool Ping();

    /// Queues a packet, which then belongs to the session; false (and the packet stays the caller's) for null.
    bool Send(VKMXPmBase* packet);

    /// Queues chat text; false for an empty one.
    bool Send(const std::string& text);

    /// The oldest request, owned by the caller, or null. The three fetching operations share one rule for their timeout
    /// in milliseconds: 100 and more looks every 100 ms that often (rounded up), -1 without end, anything else once.
    VKMXPmBase* GetRequest(int timeout);
    VKMXPmBase* RecvResponse(int sequence, int timeout);
    std::string FetchMessage(int timeout);

    /// Sends all that waits. False when there was no packet to send, which is no error, or when sending failed.
    bool RunDispatchCycle();

    /// Takes in at most ten XMPP messages.
    bool RunReceptionCycle();

    /// The same for any session or, with a null one, for senders without a session. The packets become the caller's.
    static bool RunReceptionCycle(VKMXPSession* session, VKMXPConnIface* connection, VKLogInterface* logger,
                                  PacketList& packets, MessageList& messages);

    /// The key under which a packet's attachments travel: for a message its job id, else the sequence number.
    static std::string GetPacketIdForAttachedFile(VKMXPmBase* packet);

    static void ClearAttachementSecurityKeys(VKMXPmBase* packet);

    /// Drops all that waits. False without a lock.
    bool EmptyQueues();

    const std::string& GetJID() const { return m_strJID; }
    const std::string& GetConnectionID() const { return m_strConnectionID; }
    std::string GetTargetResource() const;
    void SetTargetResource(const std::string& resource);

    /// Who is told that the session has something to do; null for a session of its own.
    void SetHub(vk::Hub* hub) { m_pobjHub = hub; }

    /// Marks the session as waiting for a visit; true when it was not marked before.
    bool MarkReady() { return !m_bReady.exchange(true); }
    void ClearReady() { m_bReady.store(false); }

private:
    VKLogInterface* m_pobjLogger;
    std::deque<VKMXPmBase*> m_deqOutgoingPackets;   ///< owned; this and the next four guarded by m_pobjLock
    std::deque<std::string> m_deqOutgoingMessages;
    std::map<int, VKMXPmBase*> m_mapResponses;      ///< owned
    std::deque<VKMXPmBase*> m_deqIncomingRequests;  ///< owned
    std::deque<std::string> m_deqIncomingMessages;
    std::unique_ptr<VKconLock> m_pobjLock;
    VKMXPConnIface* m_pobjConnection;               ///< not owned
    std::string m_strConnectionID;
    std::string m_strJID;
    std::string m_strTargetResource;                ///< empty means any; guarded by m_pobjLock

    void NotifyReady();
    void SortIn(PacketList& packets, MessageList& messages);
    bool SendPackets();
    bool SendEnvelope(VKMXPmEnvelope& envelope, VKMXPConnIface::AttachmentMap& attachments);

    vk::Hub* m_pobjHub = nullptr;
    std::atomic<bool> m_bReady{false};
};
