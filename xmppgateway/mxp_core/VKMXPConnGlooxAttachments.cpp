// Files that travel beside messages: what waits for the file sender, whom it is for, and what has come.

#include "VKMXPConnGlooxImpl.h"

#include "VKLog.h"
#include "VKMXPConnGlooxFileSender.h"
#include "VKMXPSession.h"
#include "VKMXPStanzaClient.h"
#include "VKXMPPGlooxdTypes.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"

#include <gloox/disco.h>
#include <gloox/error.h>

/// Notes the files for the file sender, which acts when the peer's disco information (XEP-0030) has come.
void VKMXPConnGlooxImpl::QueueAttachments(VKMXPSession& session, const AttachmentMap& attachments)
{
    const std::string resource = session.GetTargetResource();
    std::string target = session.GetJID();
    if (target.find("/" + resource) == std::string::npos && !resource.empty())
        target += "/" + resource;
    {
        const vk::ScopedSection section(*m_pobjAttachmentsLock);
        for (const auto& entry : attachments)
            m_vecPendingAttachments.push_back({target, entry.first, entry.second, FileTransferMechanism::Unknown,
                                               ++m_uNextRecord, 0, {}, false, Clock::now()});
    }
    AskWhatItTakes(target);
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    if (m_pobjFileSender)
        m_pobjFileSender->Poke(); // files are secured while the peer thinks about its answer
}

void VKMXPConnGlooxImpl::AskWhatItTakes(const std::string& jid)
{
    VK_LOG_DEBUG(m_pobjLogger, "Connection ID: [%s] >> Sending 'getDiscoInfo' call for JID: [%s]",
                 m_strConnectionID.c_str(), jid.c_str());
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    if (m_pobjClient)
        m_pobjClient->disco()->getDiscoInfo(gloox::JID(jid), std::string(), this, 0);
}

/// A device that was away when files came for it is there now: it is asked again, unless its answer may be on its way.
void VKMXPConnGlooxImpl::AskWhoHasSpoken(const std::string& fullJid)
{
    const std::chrono::seconds limit(m_iTransferTimeout);
    bool again = false;
    {
        const vk::ScopedSection section(*m_pobjAttachmentsLock);
        for (FileAttachmentDetails& pending : m_vecPendingAttachments) {
            if (pending.eMechanism != FileTransferMechanism::Unknown || pending.strTargetJID != fullJid)
                continue;
            const auto now = Clock::now();
            if (pending.tAsked && (limit.count() <= 0 || now - *pending.tAsked < limit))
                continue;
            pending.tAsked = now;
            again = true;
        }
    }
    if (again)
        AskWhatItTakes(fullJid);
}

/// The answers to what was asked on an earlier stream will not come on this one.
void VKMXPConnGlooxImpl::AskAllAnew()
{
    std::set<std::string> targets;
    {
        const vk::ScopedSection section(*m_pobjAttachmentsLock);
        for (FileAttachmentDetails& pending : m_vecPendingAttachments)
            if (pending.eMechanism == FileTransferMechanism::Unknown) {
                pending.tAsked = Clock::now();
                targets.insert(pending.strTargetJID);
            }
    }
    for (const std::string& target : targets)
        AskWhatItTakes(target);
}

void VKMXPConnGlooxImpl::TellRefused()
{
    AttachmentMap refused;
    {
        const vk::ScopedSection section(*m_pobjAttachmentsLock);
        refused.swap(m_mapRefused);
    }
    RefuseAttachments(refused, "File Transfer Error.", "this connection sends no files");
}

/// Files that cannot follow are told of, so that their jobs do not stay pending for ever.
void VKMXPConnGlooxImpl::RefuseAttachments(const AttachmentMap& attachments, const char* error, const char* reason)
{
    constexpr int kFailed = 2;
    for (const auto& entry : attachments) {
        VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> File Transfer Error: %s; packet [%s]",
                     m_strConnectionID.c_str(), reason, entry.first.c_str());
        TellAttachmentStatus(entry.first, kFailed, error);
    }
}

void VKMXPConnGlooxImpl::handleDiscoInfo(const gloox::JID& from, const gloox::Disco::Info& info, int)
{
    const bool inBand = info.hasFeature(gloox::XMLNS_IBB) || info.hasFeature(gloox::XMLNS_SI_FT);
    FileTransferMechanism::eType mechanism = FileTransferMechanism::Unknown;
    if (info.hasFeature(gloox::XMLNS_BYTESTREAMS))
        mechanism = inBand ? FileTransferMechanism::Either : FileTransferMechanism::Socks5;
    else if (inBand)
        mechanism = FileTransferMechanism::InBand;

    const vk::ScopedSection section(*m_pobjAttachmentsLock);
    auto pending = m_vecPendingAttachments.begin();
    while (pending != m_vecPendingAttachments.end()) {
        if (pending->strTargetJID != from.full()) {
            ++pending;
            continue;
        }
        pending->eMechanism = mechanism;
        if (mechanism != FileTransferMechanism::Unknown) {
            ++pending;
            continue;
        }
        // No status is reported for it, on purpose: the message stays as it was.
        SetLastError("File Transfer Error.");
        VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> File Transfer Error: File transfer not supported.",
                     m_strConnectionID.c_str());
        pending = m_vecPendingAttachments.erase(pending);
    }
    if (m_pobjFileSender) // this runs inside the client
        m_pobjFileSender->Poke();
}

void VKMXPConnGlooxImpl::handleDiscoItems(const gloox::JID& from, const gloox::Disco::Items&, int)
{
    VK_LOG_DEBUG(m_pobjLogger, "Connection ID: [%s] >> Disco items from [%s]", m_strConnectionID.c_str(),
                 from.full().c_str());
}

/// No answer to the question: as a rule the server's word that no such device is there. Its files wait for it.
void VKMXPConnGlooxImpl::handleDiscoError(const gloox::JID& from, const gloox::Error* error, int)
{
    {
        const vk::ScopedSection section(*m_pobjAttachmentsLock);
        for (FileAttachmentDetails& pending : m_vecPendingAttachments)
            if (pending.strTargetJID == from.full())
                pending.tAsked.reset();
    }
    VK_LOG_WARN(m_pobjLogger, "Connection ID: [%s] >> Disco error from [%s]: %s", m_strConnectionID.c_str(),
                from.full().c_str(),
                error ? VKXMPPGlooxdTypes::GetGlooxStanzaErrString(static_cast<int>(error->error())) : "");
}

bool VKMXPConnGlooxImpl::GetAttachedFiles(const std::string& packetId, FileList& files)
{
    const vk::ScopedSection section(*m_pobjIncomingLock);
    const auto found = m_mapReceivedFiles.find(packetId);
    if (found == m_mapReceivedFiles.end() || found->second.size() != 1)
        return false;
    files = found->second.begin()->second;
    return true;
}

bool VKMXPConnGlooxImpl::GetAttachedFilesOf(const std::string& jid, const std::string& packetId, FileList& files)
{
    const vk::ScopedSection section(*m_pobjIncomingLock);
    const auto found = m_mapReceivedFiles.find(packetId);
    if (found == m_mapReceivedFiles.end())
        return false;
    const auto own = found->second.find(gloox::JID(jid).bare());
    if (own == found->second.end())
        return false;
    files = own->second;
    return true;
}
