#include "VKMXPCoreManager.h"

#include "VKLog.h"
#include "VKMXPConnGlooxImpl.h"
#include "VKMXPCoreManagerLocks.h"
#include "VKMXPmBase.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"

#include <algorithm>

namespace {

constexpr int kCycleSleep = 100; // milliseconds
constexpr int kPerRound = 10;    // requests, and messages, of one session
constexpr int kFirstSequence = 100;
constexpr int kLastSequence = 65535;
constexpr int kStopLimit = 5000; // milliseconds

std::string SessionKey(const std::string& jid, const std::string& connectionId) { return connectionId + ":" + jid; }

} // namespace

VKMXPCoreManager* VKMXPCoreManager::m_pobjMe = nullptr;

VKMXPCoreManager* VKMXPCoreManager::GetInstance(VKLogInterface* logger, int socketTimeout, int transferTimeout)
{
    static std::mutex guard;
    const std::lock_guard<std::mutex> lock(guard);
    if (!m_pobjMe) {
        std::unique_ptr<VKMXPCoreManager> made(new VKMXPCoreManager());
        made->m_iSocketTimeout = socketTimeout;
        made->m_iDefaultTransferTimeout = transferTimeout;
        if (made->Initialize(logger, std::string()))
            m_pobjMe = made.release();
    }
    return m_pobjMe;
}

VKMXPCoreManager::VKMXPCoreManager() = default;

VKMXPCoreManager::~VKMXPCoreManager() = default;

bool VKMXPCoreManager::InitializeSpecial()
{
    m_iCycleSleep = kCycleSleep;
    m_iMaxRequests = kPerRound;
    m_iMaxMessages = kPerRound;
    for (auto* lock : {&m_pobjConnectionsLock, &m_pobjCycleLock, &m_pobjRequestLock, &m_pobjResponseLock,
                       &m_pobjSequenceLock})
        if (!*lock)
            *lock = std::make_unique<VKconLock>();
    return true;
}

/// The locks stay: other threads may still be on their way through an operation when the work thread ends, and the
/// singleton can be started again.
bool VKMXPCoreManager::FinalizeSpecial() { return true; }

std::string VKMXPCoreManager::GetRunningModuleName() { return "VKMXPCoreManager"; }

bool VKMXPCoreManager::IsLoggerRequired() { return true; }

void VKMXPCoreManager::StopWork() { VK_LOG_SCOPE(scope, m_pLogger, "VKMXPCoreManager::StopWork()"); }

void VKMXPCoreManager::PauseWork() { VK_LOG_SCOPE(scope, m_pLogger, "VKMXPCoreManager::PauseWork()"); }

void VKMXPCoreManager::ResumeWork() { VK_LOG_SCOPE(scope, m_pLogger, "VKMXPCoreManager::ResumeWork()"); }

bool VKMXPCoreManager::StartAsThread()
{
    if (m_pThread) {
        if (m_bRunning && !IsStopRequested())
            return true;
        if (!WaitForThreadStop(kStopLimit))
            return false; // the old thread is still at work: a second one beside it must not be
    }
    m_bRunning = true;
    return VKThreadModule::StartAsThread();
}

bool VKMXPCoreManager::StopThread()
{
    if (!m_pThread)
        return true;
    const bool asked = VKThreadModule::StopThread();
    m_objTraffic.Wake();
    return asked;
}

bool VKMXPCoreManager::HasSession(const std::string& connectionId, const std::string& jid)
{
    return GetSession(jid, connectionId) != nullptr;
}

void VKMXPCoreManager::MessageArrived(const std::string& connectionId, const std::string& bareJid,
                                      const std::string& fullJid)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    for (const std::string* jid : {&bareJid, &fullJid})
        if (VKMXPSession* session = FindSession(*jid, connectionId))
            SessionReady(*session);
}

void VKMXPCoreManager::SessionReady(VKMXPSession& session)
{
    if (session.MarkReady()) {
        const std::lock_guard<std::mutex> lock(m_mtxReady);
        m_vecReady.push_back(&session);
    }
    m_objTraffic.Wake();
}

VKMXPSession* VKMXPCoreManager::FindSession(const std::string& jid, const std::string& connectionId)
{
    const auto found = m_mapSessions.find(SessionKey(jid, connectionId));
    return found == m_mapSessions.end() ? nullptr : found->second;
}

VKMXPSession* VKMXPCoreManager::GetSession(const std::string& jid, const std::string& connectionId)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    return FindSession(jid, connectionId);
}

std::string VKMXPCoreManager::GetLastError(const std::string& connectionId)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    const auto found = m_mapConnections.find(connectionId);
    return found == m_mapConnections.end() ? std::string() : found->second->GetLastError();
}

void VKMXPCoreManager::SetFileTransferMechanism(const std::string& connectionId, int mechanism,
                                                const std::string& streamHost, int port, int chunkKB)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    const auto found = m_mapConnections.find(connectionId);
    if (found == m_mapConnections.end())
        return;
    found->second->m_iFileTransferMechanism = mechanism;
    found->second->m_strStreamHost = streamHost;
    found->second->m_iStreamPort = port;
    found->second->m_iChunkSizeKB = chunkKB;
}

bool VKMXPCoreManager::GetAttachedFiles(const std::string& connectionId, const std::string& packetId, FileList& files)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    const auto found = m_mapConnections.find(connectionId);
    return found != m_mapConnections.end() && found->second->GetAttachedFiles(packetId, files);
}

int VKMXPCoreManager::NextSequence()
{
    const vk::ScopedSection section(*m_pobjSequenceLock);
    const int sequence = m_iNextSequence;
    m_iNextSequence = sequence == kLastSequence ? kFirstSequence : sequence + 1;
    return sequence;
}

bool VKMXPCoreManager::Send(VKMXPmBase* packet, const std::string& jid, const std::string& connectionId, int& sequence)
{
    if (!packet)
        return false;
    // Held to the end, so that the session cannot be deleted under us.
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    VKMXPSession* const session = FindSession(jid, connectionId);
    if (!session) {
        VK_LOG_ERROR(m_pLogger, "Failed to find XMPP session to user JID:%s over connection id:%s.", jid.c_str(),
                     connectionId.c_str());
        return false;
    }
    constexpr int kRequest = 1;
    const bool request = packet->m_iPacketType == kRequest;
    if (request)
        packet->m_iSequence = NextSequence();
    const int used = packet->m_iSequence;
    VK_LOG_INFO(m_pLogger, ">> Sending packet type:%s(%s) seq:%d to user JID:%s over connection ID:%s.",
                packet->GetName(), request ? "REQ" : "RESP", used, jid.c_str(), connectionId.c_str());
    if (!session->Send(packet))
        return false;
    sequence = used;
    return true;
}

/// One wording serves all operations that miss their session, on purpose.
VKMXPSession* VKMXPCoreManager::SessionOrLog(const std::string& jid, const std::string& connectionId)
{
    VKMXPSession* const session = FindSession(jid, connectionId);
    if (!session)
        VK_LOG_ERROR(m_pLogger, "Failed to find XMPP session for termination to user JID:%s over connection id:%s.",
                     jid.c_str(), connectionId.c_str());
    return session;
}

VKMXPSession* VKMXPCoreManager::GetSessionOrLog(const std::string& jid, const std::string& connectionId)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    return SessionOrLog(jid, connectionId);
}

bool VKMXPCoreManager::Send(const std::string& message, const std::string& jid, const std::string& connectionId)
{
    VK_LOG_INFO(m_pLogger, ">> Sending message '%s' to user JID:%s over connection ID:%s.", message.c_str(),
                jid.c_str(), connectionId.c_str());
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    VKMXPSession* const session = SessionOrLog(jid, connectionId);
    return session && session->Send(message);
}

// The three fetching operations wait in the session, like any caller that holds its pointer: ending a session while
// somebody fetches from it is the callers' to exclude.

std::string VKMXPCoreManager::FetchMessage(const std::string& jid, const std::string& connectionId, int timeout)
{
    VKMXPSession* const session = GetSessionOrLog(jid, connectionId);
    return session ? session->FetchMessage(timeout) : std::string();
}

VKMXPmBase* VKMXPCoreManager::GetRequest(const std::string& jid, const std::string& connectionId, int timeout)
{
    VKMXPSession* const session = GetSessionOrLog(jid, connectionId);
    return session ? session->GetRequest(timeout) : nullptr;
}

VKMXPmBase* VKMXPCoreManager::RecvResponse(int sequence, const std::string& jid, const std::string& connectionId,
                                           int timeout)
{
    VKMXPSession* const session = GetSessionOrLog(jid, connectionId);
    return session ? session->RecvResponse(sequence, timeout) : nullptr;
}

bool VKMXPCoreManager::ResetC2CSessionTargetResource(const std::string& jid, const std::string& connectionId)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    if (VKMXPSession* const session = SessionOrLog(jid, connectionId))
        session->ResetResource();
    return false; // also when it worked, on purpose
}

bool VKMXPCoreManager::RegisterForRequest(const std::string& packetType, const std::string& jid,
                                          const std::string& connectionId, VKMXPRequestHandlerIface* handler)
{
    std::string key = packetType;
    if (!jid.empty())
        key += ";" + jid;
    if (!connectionId.empty())
        key += ";" + connectionId;
    const vk::ScopedSection requests(*m_pobjRequestLock);
    m_mapRequestHandlers[key] = handler;
    return true;
}

bool VKMXPCoreManager::RegisterForResponse(int sequence, const std::string& jid, const std::string& connectionId,
                                           VKMXPResponseHandlerIface* handler)
{
    const vk::ScopedSection responses(*m_pobjResponseLock);
    VKMXPSession* const session = GetSession(jid, connectionId);
    if (!session)
        return false;
    m_mapResponseHandlers[sequence] = {session, handler};
    // The response may be here already.
    SessionReady(*session);
    return true;
}

bool VKMXPCoreManager::RegisterForAttachmentStatus(const std::string& connectionId,
                                                   VKMXPAttachmentStatusHandlerIface* handler)
{
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    const auto found = m_mapConnections.find(connectionId);
    if (found == m_mapConnections.end())
        return false;
    found->second->m_pobjAttachmentStatusHandler = handler;
    return true;
}

void VKMXPCoreManager::SetGeneralRequestHandler(VKMXPRequestHandlerIface* handler)
{
    const vk::ScopedSection requests(*m_pobjRequestLock);
    m_pobjGeneralRequestHandler = handler;
}

void VKMXPCoreManager::SetGeneralMessageHandler(VKMXPMessageHandlerIface* handler)
{
    const vk::ScopedSection requests(*m_pobjRequestLock);
    m_pobjGeneralMessageHandler = handler;
}
