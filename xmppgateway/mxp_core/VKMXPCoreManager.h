#pragma once

#include "VKMXPAttachmentStatusHandlerIface.h"
#include "VKMXPConnIface.h"
#include "VKMXPHub.h"
#include "VKMXPMessageHandlerIface.h"
#include "VKMXPRequestHandlerIface.h"
#include "VKMXPResponseHandlerIface.h"
#include "VKMXPSession.h"
#include "VKThreadModule.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

class VKconLock;

/// The hub of the MXP core and the one thread that moves all its traffic. It owns every connection to an XMPP server and
/// every session to a client; drivers talk to it by connection ID and JID and never touch either themselves.
///
/// Threads: all public operations may be called from any thread, handlers included. Handlers run on the work thread and
/// must not block for long.
///
/// Lock order, for all threads: claim of a connection ID, cycle lock, request lock, response lock, connections lock, a
/// session's lock, a connection's client lock; below those the leaves, under which nothing else is taken: incoming,
/// attachments, sequence, ready list. Nobody waits for traffic, for a login or for another thread's claim while holding
/// any of them: the work thread waits between rounds, holding none, so a terminate never waits for a quiet network. A
/// connection that has ended is taken out under the locks and ended outside them, for its file sender may be telling a
/// handler of attachment statuses how a transfer ended. Such a handler waits for no claim, since the thread that has it may
/// be waiting for the handler; what it ends is taken down by the work thread.
class VKMXPCoreManager : public VKThreadModule, private vk::Hub
{
public:
    using FileList = VKMXPConnIface::FileList;

    /// The singleton, made on first use with these values; later calls ignore them. Null when it cannot be made.
    /// \param transferTimeout seconds; for connections that are started with none
    static VKMXPCoreManager* GetInstance(VKLogInterface* logger, int socketTimeout, int transferTimeout);

    ~VKMXPCoreManager() override;

    bool InitializeSpecial() override;
    bool FinalizeSpecial() override;
    std::string GetRunningModuleName() override;
    bool IsLoggerRequired() override;
    void DoThreadWork() override;
    void StopWork() override;
    void PauseWork() override;
    void ResumeWork() override;

    /// Starts the work thread; true also when it runs already. After StopThread it can be started again.
    bool StartAsThread();

    /// Asks the work thread to stop and wakes it.
    bool StopThread();

    /// Logs in to the server under this ID; true at once when the ID is known already. Waits for the login, up to 30
    /// seconds, without holding up any other connection. On failure nothing is left and *error holds the reason.
    bool StartC2SConnection(const std::string& connectionId, const std::string& server, int port,
                            const std::string& userId, const std::string& password, const std::string& resource,
                            const bool& startFileSender, const std::string& streamHost, int streamPort, int chunkKB,
                            int transferTimeout, std::string* error);
    bool TerminateC2SConnection(const std::string& connectionId);

    /// The session to a client, made when there is none. It stays the manager's: it lives until it is terminated or its
    /// connection dies. The bool is not used.
    VKMXPSession* StartC2CSession(const std::string& jid, const std::string& connectionId, const std::string& resource,
                                  bool);
    bool TerminateC2CSession(const std::string& jid, const std::string& connectionId);
    bool TerminateC2CSession(VKMXPSession* session);

    /// Always false, also when it worked.
    bool ResetC2CSessionTargetResource(const std::string& jid, const std::string& connectionId);
    VKMXPSession* GetSession(const std::string& jid, const std::string& connectionId);
    std::string GetLastError(const std::string& connectionId);
    void SetFileTransferMechanism(const std::string& connectionId, int mechanism, const std::string& streamHost,
                                  int port, int chunkKB);
    bool GetAttachedFiles(const std::string& connectionId, const std::string& packetId, FileList& files);

    /// Queues a packet; on success it belongs to the session and sequence holds the number it goes out with.
    bool Send(VKMXPmBase* packet, const std::string& jid, const std::string& connectionId, int& sequence);
    bool Send(const std::string& message, const std::string& jid, const std::string& connectionId);
    std::string FetchMessage(const std::string& jid, const std::string& connectionId, int timeout);
    VKMXPmBase* GetRequest(const std::string& jid, const std::string& connectionId, int timeout);
    VKMXPmBase* RecvResponse(int sequence, const std::string& jid, const std::string& connectionId, int timeout);

    /// Handlers are not owned. An empty JID or connection ID leaves that part of the key out; a type with a connection
    /// ID alone is a key that no request is ever looked up under.
    bool RegisterForRequest(const std::string& packetType, const std::string& jid, const std::string& connectionId,
                            VKMXPRequestHandlerIface* handler);
    bool RegisterForResponse(int sequence, const std::string& jid, const std::string& connectionId,
                             VKMXPResponseHandlerIface* handler);
    bool RegisterForAttachmentStatus(const std::string& connectionId, VKMXPAttachmentStatusHandlerIface* handler);

    /// Takes requests for which no other handler is registered; null for none.
    void SetGeneralRequestHandler(VKMXPRequestHandlerIface* handler);
    /// Takes chat text; null for none.
    void SetGeneralMessageHandler(VKMXPMessageHandlerIface* handler);

    /// How many rounds the work thread has made; for tests and measurements.
    unsigned long GetRoundCount() const { return m_uRounds; }

    /// One work round, as the work thread makes it. Public for measurements; with a running work thread they take turns.
    void RunRound();

private:
    static VKMXPCoreManager* m_pobjMe;

    std::map<std::string, VKMXPConnIface*> m_mapConnections; ///< owned; by connection ID; connections lock
    std::map<std::string, VKMXPSession*> m_mapSessions;      ///< owned; by connection ID, ":", JID; connections lock
    std::unique_ptr<VKconLock> m_pobjConnectionsLock;
    std::unique_ptr<VKconLock> m_pobjCycleLock; ///< held for a whole work round
    std::atomic<VKMXPMessageHandlerIface*> m_pobjGeneralMessageHandler{nullptr};
    std::atomic<VKMXPRequestHandlerIface*> m_pobjGeneralRequestHandler{nullptr};
    std::map<std::string, VKMXPRequestHandlerIface*> m_mapRequestHandlers; ///< request lock
    std::unique_ptr<VKconLock> m_pobjRequestLock;
    std::map<int, std::pair<VKMXPSession*, VKMXPResponseHandlerIface*>> m_mapResponseHandlers; ///< response lock
    std::unique_ptr<VKconLock> m_pobjResponseLock;
    std::string m_strReceiveDirectory;    ///< nothing sets it
    int m_iDefaultTransferTimeout = 60;   ///< seconds
    int m_iSocketTimeout = 0;             ///< stored, read by nothing
    int m_iNextSequence = 100;            ///< sequence lock
    std::unique_ptr<VKconLock> m_pobjSequenceLock;
    int m_iCycleSleep = 0; ///< milliseconds; the upper limit of the pause between two rounds
    int m_iMaxRequests = 0;
    int m_iMaxMessages = 0;

    class Claim;
    class CycleHold;
    class RoundMark;
    struct Ended;

    VKMXPCoreManager();

    // What the connections and sessions see.
    vk::TrafficWait& Traffic() override { return m_objTraffic; }
    bool HasSession(const std::string& connectionId, const std::string& jid) override;
    void MessageArrived(const std::string& connectionId, const std::string& bareJid,
                        const std::string& fullJid) override;
    void SessionReady(VKMXPSession& session) override;

    // The round.
    std::vector<VKMXPSession*> TakeReadySessions();
    void VisitSession(VKMXPSession& session);
    void VisitResponses();
    void VisitConnections();
    void EndDeadConnections(const std::vector<std::string>& connectionIds);
    void RunGuardedRound();
    void WaitForWork();
    bool ProcessIncomingRequest(const std::string& connectionId, const std::string& jid, VKMXPmBase* packet);
    bool ProcessAllIncoming(VKMXPConnIface& connection);
    bool ProcessAllIncomingResponses(const std::string& connectionId, const std::string& jid, VKMXPmBase* packet,
                                     VKMXPResponseHandlerIface* handler);
    VKMXPRequestHandlerIface* FindRequestHandler(const std::string& connectionId, const std::string& jid,
                                                 const VKMXPmBase& packet);

    // Connections and sessions.
    std::unique_ptr<VKMXPConnIface> MakeConnection(const std::string& connectionId, const std::string& server, int port,
                                                   const std::string& userId, const std::string& password,
                                                   const std::string& resource, bool startFileSender,
                                                   const std::string& streamHost, int streamPort, int chunkKB,
                                                   int transferTimeout);
    VKMXPSession* FindSession(const std::string& jid, const std::string& connectionId);
    VKMXPSession* KeepSession(VKMXPSession* session, const std::string& resource);
    VKMXPSession* StartSessionAnew(const std::string& jid, const std::string& connectionId, const std::string& resource);
    std::unique_ptr<VKMXPConnIface> TerminateC2SConnectionIntern(const std::string& connectionId);
    void ForgetResponses(const std::string& connectionId);
    void Discard(VKMXPSession* session);
    VKMXPSession* GetSessionOrLog(const std::string& jid, const std::string& connectionId);
    VKMXPSession* SessionOrLog(const std::string& jid, const std::string& connectionId);
    int NextSequence();
    bool InRoundHandler() const { return OnWorkThread() && m_bInRound; }
    void EndBehindTheRound();
    void EndWhatNobodyElseDoes();
    void LogTerminated(const VKMXPConnIface& connection) const;
    bool OnWorkThread() const { return m_idWorkThread.load() == std::this_thread::get_id(); }

    vk::TrafficWait m_objTraffic;
    std::mutex m_mtxReady;                      ///< leaf
    std::vector<VKMXPSession*> m_vecReady;      ///< sessions worth a visit; m_mtxReady
    std::vector<std::unique_ptr<VKMXPSession>> m_vecEnded; ///< ended by a handler, deleted behind the round; cycle lock
    std::vector<Ended> m_vecEndedConnections; ///< to be taken down behind the round; cycle lock
    bool m_bMoreStrays = false;               ///< work thread only
    std::atomic<std::thread::id> m_idWorkThread{};
    bool m_bInRound = false; ///< cycle lock
    std::atomic<unsigned long> m_uRounds{0};
    std::atomic<bool> m_bRunning{false}; ///< the work thread is between its start and its end

    std::mutex m_mtxClaims; ///< guards m_setClaimed; nothing else is taken under it
    std::condition_variable m_cvClaims;
    std::set<std::string> m_setClaimed; ///< connection IDs that a thread is logging in or terminating

    std::mutex m_mtxTurn; ///< guards m_iCycleWaiters; nothing else is taken under it
    std::condition_variable m_cvTurn;
    int m_iCycleWaiters = 0; ///< terminators that want the cycle lock; the work thread lets them go first
};
