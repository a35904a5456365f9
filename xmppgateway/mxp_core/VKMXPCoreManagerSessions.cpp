// Starting and ending connections and sessions.

#include "VKLog.h"
#include "VKMXPConnGlooxImpl.h"
#include "VKMXPCoreManager.h"
#include "VKMXPCoreManagerLocks.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"

#include <algorithm>

std::unique_ptr<VKMXPConnIface> VKMXPCoreManager::MakeConnection(
    const std::string& connectionId, const std::string& server, int port, const std::string& userId,
    const std::string& password, const std::string& resource, bool startFileSender, const std::string& streamHost,
    int streamPort, int chunkKB, int transferTimeout)
{
    auto made = std::make_unique<VKMXPConnGlooxImpl>(
        connectionId, server, port, userId, password, resource, VKMXPConnIface::TlsRequired, m_strReceiveDirectory,
        streamHost, streamPort, chunkKB, transferTimeout > 0 ? transferTimeout : m_iDefaultTransferTimeout, nullptr,
        startFileSender, m_pLogger);
    made->SetHub(this);
    return made;
}

bool VKMXPCoreManager::StartC2SConnection(const std::string& connectionId, const std::string& server, int port,
                                          const std::string& userId, const std::string& password,
                                          const std::string& resource, const bool& startFileSender,
                                          const std::string& streamHost, int streamPort, int chunkKB,
                                          int transferTimeout, std::string* error)
{
    const auto known = [&] {
        const vk::ScopedSection connections(*m_pobjConnectionsLock);
        return m_mapConnections.count(connectionId) != 0;
    };
    if (known())
        return true;
    EndWhatNobodyElseDoes();
    const Claim claim(*this, connectionId);
    if (!claim.Held()) {
        if (error)
            *error = "The connection is being ended or logged in.";
        return false;
    }
    if (known()) // another thread was faster
        return true;

    std::unique_ptr<VKMXPConnIface> made = MakeConnection(connectionId, server, port, userId, password, resource,
                                                          startFileSender, streamHost, streamPort, chunkKB,
                                                          transferTimeout);
    if (!made->StartConnection()) {
        VK_LOG_ERROR(m_pLogger,
                     "Failed to established XMPP connection id:%s with server %s:%d using user ID:%s with resource:%s.",
                     connectionId.c_str(), server.c_str(), port, userId.c_str(), resource.c_str());
        if (error)
            *error = made->GetLastError();
        return false;
    }
    VK_LOG_INFO(m_pLogger,
                "Successfully created and established XMPP connection id:%s with server %s:%d using user ID:%s with "
                "resource:%s.",
                connectionId.c_str(), server.c_str(), port, userId.c_str(), resource.c_str());
    {
        const vk::ScopedSection connections(*m_pobjConnectionsLock);
        m_mapConnections[connectionId] = made.release();
    }
    m_objTraffic.Wake(); // what came in behind the login is for the work thread
    return true;
}

VKMXPSession* VKMXPCoreManager::KeepSession(VKMXPSession* session, const std::string& resource)
{
    if (!session)
        return nullptr;
    session->SetTargetResource(resource);
    session->SetHub(this);
    m_mapSessions[session->GetConnectionID() + ":" + session->GetJID()] = session;
    SessionReady(*session); // messages of this sender may wait already
    VK_LOG_INFO(m_pLogger, "Successfully created XMPP session over connection id:%s to user JID:%s.",
                session->GetConnectionID().c_str(), session->GetJID().c_str());
    return session;
}

VKMXPSession* VKMXPCoreManager::StartC2CSession(const std::string& jid, const std::string& connectionId,
                                                const std::string& resource, bool)
{
    bool broken = false;
    {
        const vk::ScopedSection connections(*m_pobjConnectionsLock);
        VKMXPSession* const session = FindSession(jid, connectionId);
        if (session && session->IsConnected()) {
            VK_LOG_DEBUG(m_pLogger, "XMPP session over connection id:%s to user JID:%s is already being established.",
                         connectionId.c_str(), jid.c_str());
            return session;
        }
        broken = session != nullptr;
    }
    if (broken) {
        VK_LOG_WARN(m_pLogger, "XMPP session over connection id:%s to user JID:%s is found to be broken.",
                    connectionId.c_str(), jid.c_str());
        TerminateC2CSession(jid, connectionId);
    }
    {
        const vk::ScopedSection connections(*m_pobjConnectionsLock);
        const auto found = m_mapConnections.find(connectionId);
        if (found == m_mapConnections.end()) {
            VK_LOG_ERROR(m_pLogger, "Unable to get the XMPP connection for the id:%s.", connectionId.c_str());
            return nullptr;
        }
        if (VKMXPSession* const session = FindSession(jid, connectionId)) // another thread was faster
            return session;
        if (found->second->IsConnected())
            return KeepSession(found->second->StartSession(jid), resource);
    }
    return StartSessionAnew(jid, connectionId, resource);
}

/// A session on a connection that has lost its server: the connection logs in again, which takes its time, so only the
/// claim is held, under which nobody ends it. A handler cannot do that: it runs under locks of the round, or on a thread
/// for which a login waits. The work thread then removes the connection, and the next caller starts it anew.
VKMXPSession* VKMXPCoreManager::StartSessionAnew(const std::string& jid, const std::string& connectionId,
                                                 const std::string& resource)
{
    if (InRoundHandler() || VKMXPConnIface::InStatusHandler()) {
        VK_LOG_ERROR(m_pLogger, "The XMPP connection id:%s is lost. No handler can log it in again.",
                     connectionId.c_str());
        return nullptr;
    }
    const Claim claim(*this, connectionId);
    VKMXPConnIface* connection = nullptr;
    if (claim.Held()) {
        const vk::ScopedSection connections(*m_pobjConnectionsLock);
        const auto found = m_mapConnections.find(connectionId);
        connection = found == m_mapConnections.end() ? nullptr : found->second;
    }
    if (!connection) {
        VK_LOG_ERROR(m_pLogger, "Unable to get the XMPP connection for the id:%s.", connectionId.c_str());
        return nullptr;
    }
    VKMXPSession* const session = connection->StartSession(jid);
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    return KeepSession(session, resource);
}

bool VKMXPCoreManager::TerminateC2CSession(VKMXPSession* session)
{
    if (!session)
        return false;
    const std::string jid = session->GetJID();
    const std::string connectionId = session->GetConnectionID();
    const bool ended = TerminateC2CSession(jid, connectionId);
    VK_LOG_INFO(m_pLogger,
                ended ? "Successfully terminated XMPP session to user JID:%s over connection id:%s."
                      : "Failed to terminated XMPP session to user JID:%s over connection id:%s.",
                jid.c_str(), connectionId.c_str());
    return ended;
}

bool VKMXPCoreManager::TerminateC2CSession(const std::string& jid, const std::string& connectionId)
{
    const CycleHold cycle(*this);
    const vk::ScopedSection responses(*m_pobjResponseLock);
    const vk::ScopedSection connections(*m_pobjConnectionsLock);
    const auto found = m_mapSessions.find(connectionId + ":" + jid);
    if (found == m_mapSessions.end()) {
        SessionOrLog(jid, connectionId);
        return false;
    }
    // The pending responses of all sessions on the connection, on purpose.
    ForgetResponses(connectionId);
    VKMXPSession* const session = found->second;
    const auto connection = m_mapConnections.find(connectionId);
    const bool ended = connection != m_mapConnections.end() && connection->second->TerminateSession(session);
    m_mapSessions.erase(found);
    Discard(session);
    VK_LOG_INFO(m_pLogger, "Successfully terminated XMPP session to user JID:%s over connection id:%s.", jid.c_str(),
                connectionId.c_str());
    return ended;
}

void VKMXPCoreManager::LogTerminated(const VKMXPConnIface& connection) const
{
    VK_LOG_INFO(m_pLogger,
                "Successfully terminate and delete XMPP connection id:%s with server %s:%d using user ID:%s with "
                "resource:%s.",
                connection.m_strConnectionID.c_str(), connection.m_strServer.c_str(), connection.m_iPort,
                connection.m_strUserID.c_str(), connection.m_strResource.c_str());
}

/// What a handler has ended while there was no work thread keeps its claim, which somebody must give back.
void VKMXPCoreManager::EndWhatNobodyElseDoes()
{
    if (!m_bRunning && !VKMXPConnIface::InStatusHandler())
        EndBehindTheRound();
}

/// What a handler ends is taken down by the work thread behind the round, outside the locks and not on a file sender's own
/// thread.
bool VKMXPCoreManager::TerminateC2SConnection(const std::string& connectionId)
{
    EndWhatNobodyElseDoes();
    Ended ended{std::make_unique<Claim>(*this, connectionId), nullptr};
    if (!ended.pobjClaim->Held())
        return false;
    {
        const CycleHold cycle(*this);
        {
            const vk::ScopedSection responses(*m_pobjResponseLock);
            const vk::ScopedSection connections(*m_pobjConnectionsLock);
            ended.pobjConnection = TerminateC2SConnectionIntern(connectionId);
        }
        if (!ended.pobjConnection)
            return false;
        if (InRoundHandler())
            ended.pobjClaim.reset();
        if (InRoundHandler() || VKMXPConnIface::InStatusHandler()) {
            LogTerminated(*ended.pobjConnection);
            m_vecEndedConnections.push_back(std::move(ended));
            m_objTraffic.Wake();
            return true;
        }
    }
    ended.pobjConnection->TerminateConnection();
    LogTerminated(*ended.pobjConnection);
    return true;
}

void VKMXPCoreManager::EndDeadConnections(const std::vector<std::string>& connectionIds)
{
    for (const std::string& connectionId : connectionIds) {
        auto claim = std::make_unique<Claim>(*this, connectionId);
        if (!claim->Held())
            continue; // somebody is logging it in again
        const vk::ScopedSection responses(*m_pobjResponseLock);
        const vk::ScopedSection connections(*m_pobjConnectionsLock);
        const auto found = m_mapConnections.find(connectionId);
        if (found != m_mapConnections.end() && !found->second->IsConnected())
            m_vecEndedConnections.push_back({std::move(claim), TerminateC2SConnectionIntern(connectionId)});
    }
}

/// Takes a connection out, with its sessions and the responses that are waited for on it; null when there is none. Cycle,
/// response and connections lock are held. The caller ends the connection without them.
std::unique_ptr<VKMXPConnIface> VKMXPCoreManager::TerminateC2SConnectionIntern(const std::string& connectionId)
{
    const auto found = m_mapConnections.find(connectionId);
    if (found == m_mapConnections.end())
        return nullptr;
    std::unique_ptr<VKMXPConnIface> connection(found->second);
    m_mapConnections.erase(found);
    ForgetResponses(connectionId);
    for (auto entry = m_mapSessions.begin(); entry != m_mapSessions.end();) {
        VKMXPSession* const session = entry->second;
        if (session->GetConnectionID() != connectionId) {
            ++entry;
            continue;
        }
        connection->TerminateSession(session);
        entry = m_mapSessions.erase(entry);
        Discard(session);
    }
    return connection;
}

void VKMXPCoreManager::ForgetResponses(const std::string& connectionId)
{
    for (auto entry = m_mapResponseHandlers.begin(); entry != m_mapResponseHandlers.end();) {
        const VKMXPSession* const session = entry->second.first;
        entry = session && session->GetConnectionID() == connectionId ? m_mapResponseHandlers.erase(entry)
                                                                      : std::next(entry);
    }
}

/// Deletes an ended session; one that a handler ended lives on to the end of the round that visits it.
void VKMXPCoreManager::Discard(VKMXPSession* session)
{
    std::unique_ptr<VKMXPSession> ended(session);
    session->SetHub(nullptr);
    {
        const std::lock_guard<std::mutex> lock(m_mtxReady);
        m_vecReady.erase(std::remove(m_vecReady.begin(), m_vecReady.end(), session), m_vecReady.end());
    }
    if (m_bInRound)
        m_vecEnded.push_back(std::move(ended));
}

