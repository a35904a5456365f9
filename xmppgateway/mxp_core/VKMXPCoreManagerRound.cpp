// The work round: what the core manager's thread does, one round after the other.

#include "VKException.h"
#include "VKLog.h"
#include "VKMXPCoreManager.h"
#include "VKMXPCoreManagerLocks.h"
#include "VKMXPmBase.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"
#include "VKthread.h"

#include <openssl/crypto.h>

#include <algorithm>

namespace {

constexpr int kResponse = 2;
constexpr int kQuietLimit = 1000; // milliseconds; how long a wait lasts at most when nothing happens

} // namespace

void VKMXPCoreManager::DoThreadWork()
{
    VK_LOG_SCOPE(scope, m_pLogger, "VKMXPCoreManager::DoThreadWork()");
    m_idWorkThread = std::this_thread::get_id();
    // The stop event is looked at, not waited for: the pause between two rounds lies in the wait for traffic, which is
    // over as soon as there is something to do.
    while (!IsStopRequested()) {
        RunGuardedRound();
        WaitForWork();
    }
    EndBehindTheRound(); // there is no round any more that would
    // What TLS keeps for this thread goes before anybody learns of its end: the process may be over before the thread's
    // own clean-up has run.
    OPENSSL_thread_stop();
    m_idWorkThread = std::thread::id();
    m_bRunning = false;
}

/// Nothing that a peer sends and no handler's failure may end the thread that moves all traffic.
void VKMXPCoreManager::RunGuardedRound()
{
    try {
        RunRound();
        return;
    }
    catch (const VKException& error) {
        VK_LOG_CRITICAL(m_pLogger, "A work round was broken off: %s", error.ToString().c_str());
    }
    catch (const std::exception& error) {
        VK_LOG_CRITICAL(m_pLogger, "A work round was broken off: %s", error.what());
    }
    VKsleep(m_iCycleSleep); // what broke it may still be there
}

void VKMXPCoreManager::WaitForWork()
{
    {
        const std::lock_guard<std::mutex> lock(m_mtxReady);
        if (!m_vecReady.empty() || m_bMoreStrays)
            return;
    }
    m_objTraffic.Wait(kQuietLimit);
}

/// While it lives, the sessions that handlers end are kept; then they are deleted.
class VKMXPCoreManager::RoundMark
{
public:
    explicit RoundMark(VKMXPCoreManager& manager) : m_manager(manager) { m_manager.m_bInRound = true; }
    ~RoundMark()
    {
        m_manager.m_bInRound = false;
        m_manager.m_vecEnded.clear();
    }
    RoundMark(const RoundMark&) = delete;
    RoundMark& operator=(const RoundMark&) = delete;

private:
    VKMXPCoreManager& m_manager;
};

void VKMXPCoreManager::RunRound()
{
    {
        // The cycle lock is not fair: without this turn a thread that wants to terminate something could wait long.
        std::unique_lock<std::mutex> lock(m_mtxTurn);
        m_cvTurn.wait(lock, [this] { return m_iCycleWaiters == 0; });
    }
    {
        const vk::ScopedSection cycle(*m_pobjCycleLock);
        const RoundMark mark(*this);
        for (VKMXPSession* session : TakeReadySessions())
            VisitSession(*session);
        VisitResponses();
        VisitConnections();
        ++m_uRounds;
    }
    EndBehindTheRound();
}

/// Outside the locks: the end of a connection waits for its file sender, whose handler may want one of them.
void VKMXPCoreManager::EndBehindTheRound()
{
    std::vector<Ended> ended;
    {
        const vk::ScopedSection cycle(*m_pobjCycleLock);
        ended.swap(m_vecEndedConnections);
    }
    for (const Ended& each : ended)
        each.pobjConnection->TerminateConnection();
}

/// The sessions that have something to do, in key order; an idle session is not even looked at.
std::vector<VKMXPSession*> VKMXPCoreManager::TakeReadySessions()
{
    std::vector<VKMXPSession*> ready;
    {
        const std::lock_guard<std::mutex> lock(m_mtxReady);
        ready.swap(m_vecReady);
    }
    std::sort(ready.begin(), ready.end(), [](const VKMXPSession* a, const VKMXPSession* b) {
        const int order = a->GetConnectionID().compare(b->GetConnectionID());
        return order != 0 ? order < 0 : a->GetJID() < b->GetJID();
    });
    return ready;
}

void VKMXPCoreManager::VisitSession(VKMXPSession& session)
{
    session.ClearReady(); // before the visit: what comes in during it asks for another one
    session.RunDispatchCycle();
    session.RunReceptionCycle();

    const vk::ScopedSection requests(*m_pobjRequestLock);
    int handled = 0;
    for (; handled < m_iMaxRequests; ++handled) {
        VKMXPmBase* const packet = session.GetRequest(0);
        if (!packet)
            break;
        ProcessIncomingRequest(session.GetConnectionID(), session.GetJID(), packet);
    }
    int told = 0;
    if (VKMXPMessageHandlerIface* const handler = m_pobjGeneralMessageHandler)
        for (; told < m_iMaxMessages; ++told) {
            const std::string text = session.FetchMessage(0);
            if (text.empty())
                break;
            handler->HandleMessage(session.GetJID(), session.GetConnectionID(), text);
        }
    if (handled == m_iMaxRequests || told == m_iMaxMessages)
        SessionReady(session); // a talkative client takes its turn again, behind the others
}

/// Responses that have come are taken out first and handled then, so that a handler may register and terminate.
void VKMXPCoreManager::VisitResponses()
{
    struct Due
    {
        VKMXPSession* session;
        VKMXPmBase* packet;
        VKMXPResponseHandlerIface* handler;
    };
    const vk::ScopedSection responses(*m_pobjResponseLock);
    std::vector<Due> due;
    for (auto entry = m_mapResponseHandlers.begin(); entry != m_mapResponseHandlers.end();) {
        const auto [session, handler] = entry->second;
        VKMXPmBase* const packet =
            entry->first > 0 && session && handler ? session->RecvResponse(entry->first, 0) : nullptr;
        if (!packet) {
            ++entry;
            continue;
        }
        due.push_back({session, packet, handler});
        entry = m_mapResponseHandlers.erase(entry);
    }
    for (const Due& response : due)
        ProcessAllIncomingResponses(response.session->GetConnectionID(), response.session->GetJID(), response.packet,
                                    response.handler);
}

void VKMXPCoreManager::VisitConnections()
{
    // Connections are deleted under the cycle lock only, so the pointers hold for this round.
    std::vector<VKMXPConnIface*> connections;
    {
        const vk::ScopedSection section(*m_pobjConnectionsLock);
        connections.reserve(m_mapConnections.size());
        for (const auto& entry : m_mapConnections)
            connections.push_back(entry.second);
    }
    m_bMoreStrays = false;
    std::vector<std::string> dead;
    for (VKMXPConnIface* connection : connections) {
        if (std::any_of(m_vecEndedConnections.begin(), m_vecEndedConnections.end(),
                        [connection](const Ended& ended) { return ended.pobjConnection.get() == connection; }))
            continue; // a handler has ended it in this very round
        // The wait of the poll lies behind the round, for all connections together: here it only takes what is there.
        if (connection->SendPing(0))
            ProcessAllIncoming(*connection);
        else
            dead.push_back(connection->m_strConnectionID);
    }
    EndDeadConnections(dead);
}

bool VKMXPCoreManager::ProcessAllIncoming(VKMXPConnIface& connection)
{
    constexpr std::size_t kFull = 10;
    VKMXPSession::PacketList packets;
    VKMXPSession::MessageList messages;
    if (VKMXPSession::RunReceptionCycle(nullptr, &connection, m_pLogger, packets, messages)) {
        const vk::ScopedSection requests(*m_pobjRequestLock);
        if (packets.size() + messages.size() >= kFull)
            m_bMoreStrays = true;
        for (const auto& [jid, packet] : packets) {
            if (packet->m_iPacketType == kResponse)
                delete packet;
            else
                ProcessIncomingRequest(connection.m_strConnectionID, jid, packet);
        }
        if (VKMXPMessageHandlerIface* const handler = m_pobjGeneralMessageHandler)
            for (const auto& [jid, text] : messages)
                handler->HandleMessage(jid, connection.m_strConnectionID, text);
    }
    VK_LOG_TRACE(m_pLogger, "Leaving VKMXPCoreManager::ProcessIncoming() with %s.", "FALSE");
    return false;
}

VKMXPRequestHandlerIface* VKMXPCoreManager::FindRequestHandler(const std::string& connectionId, const std::string& jid,
                                                               const VKMXPmBase& packet)
{
    const std::string type = packet.GetName();
    if (!m_mapRequestHandlers.empty())
        for (const std::string& key : {type + ";" + jid + ";" + connectionId, type + ";" + jid, type}) {
            const auto found = m_mapRequestHandlers.find(key);
            if (found == m_mapRequestHandlers.end())
                continue;
            if (!found->second)
                break; // a key with no handler ends the search
            VK_LOG_DEBUG(m_pLogger,
                         "Found request handler defined with key:'%s' for incoming request from JID:%s over connection "
                         "ID:%s with req type:%s and sequence nr:%d.",
                         key.c_str(), jid.c_str(), connectionId.c_str(), type.c_str(), packet.m_iSequence);
            return found->second;
        }
    VKMXPRequestHandlerIface* const general = m_pobjGeneralRequestHandler;
    if (general)
        VK_LOG_DEBUG(m_pLogger,
                     "Using general request handler for incoming request from JID:%s over connection ID:%s with req "
                     "type:%s and sequence nr:%d.",
                     jid.c_str(), connectionId.c_str(), type.c_str(), packet.m_iSequence);
    return general;
}

bool VKMXPCoreManager::ProcessIncomingRequest(const std::string& connectionId, const std::string& jid,
                                              VKMXPmBase* packet)
{
    VKMXPRequestHandlerIface* const handler = FindRequestHandler(connectionId, jid, *packet);
    if (!handler) {
        VK_LOG_WARN(m_pLogger,
                    "No request handler is defined for incoming request from JID:%s over connection ID:%s with req "
                    "type:%s.",
                    jid.c_str(), connectionId.c_str(), packet->GetName());
        delete packet; // nobody else knows of it
        return false;
    }
    handler->HandleRequest(jid, connectionId, packet->GetName(), packet);
    return true;
}

bool VKMXPCoreManager::ProcessAllIncomingResponses(const std::string& connectionId, const std::string& jid,
                                                   VKMXPmBase* packet, VKMXPResponseHandlerIface* handler)
{
    VK_LOG_DEBUG(m_pLogger,
                 "Using response handler for incoming response from JID:%s over connection ID:%s with req type:%s and "
                 "sequence nr:%d.",
                 jid.c_str(), connectionId.c_str(), packet->GetName(), packet->m_iSequence);
    handler->HandleResponse(jid, connectionId, packet->GetName(), packet);
    return true;
}
