// The file sender between transfers: its life, the pending records, and what gloox tells it.

#include "VKMXPConnGlooxFileSender.h"

#include "VKLog.h"
#include "VKMXPHub.h"
#include "VKMXPStanzaClient.h"
#include "VKMXPTcpSocket.h"
#include "VKXMPPGlooxdTypes.h"
#include "VKconCriticalSection.h"

#include <gloox/bytestream.h>
#include <gloox/inbandbytestream.h>
#include <gloox/error.h>
#include <gloox/iq.h>
#include <gloox/siprofileft.h>
#include <gloox/socks5bytestream.h>
#include <gloox/socks5bytestreamserver.h>

#include <algorithm>
#include <set>

namespace {

constexpr const char* kTransferError = "File Transfer Error.";
constexpr auto kAheadLimit = std::chrono::seconds(10); // a device that is online has answered by then
constexpr int kMostDoublings = 7; // a record that cannot be secured is tried again after 100 ms to 12.8 s

} // namespace

VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::VKMXPConnGlooxFileSender(VKMXPConnGlooxImpl* connection)
    : m_pobjConnection(connection)
{
}

VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::~VKMXPConnGlooxFileSender() { Stop(); }

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::InitializeSpecial()
{
    const ClientLock inside(m_pobjConnection->m_mtxClient);
    VKMXPStanzaClient& client = *m_pobjConnection->m_pobjClient;
    m_pobjProfile = std::make_unique<gloox::SIProfileFT>(&client, this);
    client.WatchErrors([this](const gloox::JID& from, const gloox::Error& error) { PeerRefused(from, error); });
    SetSelfAsSocks5Server();
    m_iSleep = 100;
    return true;
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::FinalizeSpecial()
{
    if (m_pAbandoned && *m_pAbandoned)
        return true;
    try {
        const ClientLock inside(m_pobjConnection->m_mtxClient);
        m_bSocks5Running = false;
        if (m_pobjConnection->m_pobjClient)
            m_pobjConnection->m_pobjClient->WatchErrors(nullptr);
        if (m_pobjProfile) {
            m_pobjProfile->removeSOCKS5BytestreamServer();
            for (gloox::Bytestream* stream : m_vecStale)
                m_pobjProfile->dispose(stream);
        }
        m_vecStale.clear();
        m_pobjProfile.reset();
        m_pobjListener.reset();
        m_pobjSocks5Server.reset();
    }
    catch (const std::exception& error) {
        VK_LOG_ERROR(m_pLogger, "Exception is raised while finalizing FileSender object. Details: %s.", error.what());
    }
    catch (...) {
        VK_LOG_ERROR(m_pLogger, "Unknown exception is raised while finalizing FileSender object.");
    }
    return true;
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SetSelfAsSocks5Server()
{
    const int port = m_pobjConnection->m_iStreamPort;
    const std::string& host = m_pobjConnection->m_strStreamHost;
    const char* const id = m_pobjConnection->m_strConnectionID.c_str();
    m_bSocks5Running = false;
    if (port == 0) {
        VK_LOG_INFO(m_pLogger, "Connection ID: [%s] >> Not a valid port for Socks5 Bytestream Server [%d].", id, port);
        return;
    }
    VKMXPStanzaClient& client = *m_pobjConnection->m_pobjClient;
    m_pobjSocks5Server = std::make_unique<gloox::SOCKS5BytestreamServer>(client.logInstance(), port, host);
    vk::Hub* const hub = m_pobjConnection->m_pobjHub;
    m_pobjListener = std::make_unique<vk::StreamListener>(*m_pobjSocks5Server, hub ? &hub->Traffic() : nullptr);
    const gloox::ConnectionError error = m_pobjListener->Listen(host, port);
    if (error != gloox::ConnNoError) {
        VK_LOG_ERROR(m_pLogger,
                     "Connection ID: [%s] >> Socks5 Bytestream Server listening on port [%d] failed. Error: [%s]", id,
                     port, VKXMPPGlooxdTypes::GetGlooxConnErrString(error));
        return;
    }
    m_pobjProfile->registerSOCKS5BytestreamServer(m_pobjSocks5Server.get());
    m_pobjProfile->addStreamHost(client.jid(), host, port);
    m_bSocks5Running = true;
}

/// Between two streams: lets go of those who came to the old one and were no peers.
void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::RenewSocks5Server()
{
    auto fresh = std::make_unique<gloox::SOCKS5BytestreamServer>(m_pobjConnection->m_pobjClient->logInstance(),
                                                                 m_pobjConnection->m_iStreamPort,
                                                                 m_pobjConnection->m_strStreamHost);
    m_pobjProfile->registerSOCKS5BytestreamServer(fresh.get());
    m_pobjListener->UseServer(*fresh);
    m_pobjSocks5Server = std::move(fresh);
}

int VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::GetMethod() const
{
    const FileTransferMechanism::eType mechanism = m_eMechanism;
    if (mechanism == FileTransferMechanism::Socks5)
        return m_bSocks5Running ? 1 : 0;
    if (mechanism == FileTransferMechanism::Either)
        return m_bSocks5Running ? FileTransferMechanism::Socks5 : FileTransferMechanism::InBand;
    return mechanism;
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::Poke()
{
    {
        const std::lock_guard<std::mutex> lock(m_mtxPoke);
        m_bPoked = true;
    }
    m_cvPoke.notify_all();
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::Stop()
{
    if (!m_pThread)
        return;
    StopThread();
    Poke();
    {
        const ClientLock inside(m_pobjConnection->m_mtxClient);
        m_cvPeer.notify_all();
    }
    WaitForThreadStop(-1);
    m_pThread = nullptr;
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::Abandon(std::unique_ptr<VKMXPConnGlooxFileSender> sender)
{
    sender->FinalizeSpecial();
    sender->StopThread();
    sender->m_pThread = nullptr; // nobody waits for it
    *sender->m_pAbandoned = true;
    static_cast<void>(sender.release()); // its thread deletes it
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::DoWork(void* userData)
{
    bool abandoned = false;
    m_pAbandoned = &abandoned;
    m_pobjConnection->m_idSenderThread = std::this_thread::get_id();
    VKThreadModule::DoWork(userData);
    // Whoever waited for the end may have deleted this; for an abandoned sender nobody does.
    const std::unique_ptr<VKMXPConnGlooxFileSender> own(abandoned ? this : nullptr);
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::DoThreadWork()
{
    while (!IsStopRequested()) {
        FileAttachmentDetails record;
        if (!TakeRecord(record)) {
            if (!SecureAhead())
                WaitForRecords();
            continue;
        }
        SetFileAttachmentParams(record);
        SendFileAttachment();
    }
}

/// Sleeps until a record may have become ready; without a limit when nothing is to be tried again.
void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::WaitForRecords()
{
    const auto due = [this] { return m_bPoked || IsStopRequested(); };
    if (m_tDropAhead <= Clock::now() || !IsPending(m_uAhead)) {
        m_objCopies.DropAhead();
        m_tDropAhead = Clock::time_point::max();
    }
    const Clock::time_point next = std::min(m_tNextTry, m_tDropAhead);
    std::unique_lock<std::mutex> lock(m_mtxPoke);
    if (next == Clock::time_point::max())
        m_cvPoke.wait(lock, due);
    else
        m_cvPoke.wait_until(lock, next, due);
    m_bPoked = false;
}

/// Uses the time until the peer answers: the files of the first record that waits for that are secured, once. Whatever
/// can go meanwhile goes first. False when there is nothing of the kind to do.
bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SecureAhead()
{
    FileAttachmentDetails record;
    {
        const vk::ScopedSection section(*m_pobjConnection->m_pobjAttachmentsLock);
        auto& pending = m_pobjConnection->m_vecPendingAttachments;
        const auto found = std::find_if(pending.begin(), pending.end(), [](const FileAttachmentDetails& each) {
            return each.eMechanism == FileTransferMechanism::Unknown && !each.bTriedAhead;
        });
        if (found == pending.end() || m_tDropAhead != Clock::time_point::max())
            return false;
        found->bTriedAhead = true;
        record = *found;
    }
    const auto interrupt = [this, &record] {
        FileAttachmentDetails ready;
        return IsStopRequested() || (ChooseRecord(ready) && ready.uID != record.uID);
    };
    m_uAhead = record.uID;
    if (m_objCopies.MakeAhead(record.vecFiles, interrupt))
        m_tDropAhead = Clock::now() + kAheadLimit;
    return true;
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::IsPending(unsigned long id)
{
    const vk::ScopedSection section(*m_pobjConnection->m_pobjAttachmentsLock);
    const auto& pending = m_pobjConnection->m_vecPendingAttachments;
    return std::any_of(pending.begin(), pending.end(), [id](const auto& each) { return each.uID == id; });
}

/// Secured outside the attachments lock, since whoever queues further files waits for that.
bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::TakeRecord(FileAttachmentDetails& record)
{
    while (!IsStopRequested() && ChooseRecord(record)) {
        if (!SecureFileAttachmentsForSocks5(record.strTargetJID, record.vecFiles, record.eMechanism))
            PutOff(record.uID);
        else if (EraseRecord(record.uID))
            return true;
        else
            m_objCopies.Delete(); // its peer has said meanwhile that it takes none
    }
    return false;
}

/// The first record whose peer has answered and that is not put off. What one peer gets keeps its order, but a peer that
/// never answers and a file that cannot be secured hold up nobody else.
bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::ChooseRecord(FileAttachmentDetails& record)
{
    const vk::ScopedSection section(*m_pobjConnection->m_pobjAttachmentsLock);
    const Clock::time_point now = Clock::now();
    m_tNextTry = Clock::time_point::max();
    std::set<std::string_view> held;
    for (const FileAttachmentDetails& pending : m_pobjConnection->m_vecPendingAttachments) {
        if (held.count(pending.strTargetJID) != 0)
            continue;
        const bool answered = pending.eMechanism != FileTransferMechanism::Unknown;
        if (answered && pending.tNotBefore <= now) {
            record = pending;
            return true;
        }
        if (answered)
            m_tNextTry = std::min(m_tNextTry, pending.tNotBefore);
        held.insert(pending.strTargetJID);
    }
    return false;
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::EraseRecord(unsigned long id)
{
    const vk::ScopedSection section(*m_pobjConnection->m_pobjAttachmentsLock);
    auto& pending = m_pobjConnection->m_vecPendingAttachments;
    const auto found = std::find_if(pending.begin(), pending.end(), [id](const auto& each) { return each.uID == id; });
    if (found == pending.end())
        return false;
    pending.erase(found);
    return true;
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::PutOff(unsigned long id)
{
    const vk::ScopedSection section(*m_pobjConnection->m_pobjAttachmentsLock);
    for (FileAttachmentDetails& pending : m_pobjConnection->m_vecPendingAttachments)
        if (pending.uID == id)
            pending.tNotBefore =
                Clock::now() + std::chrono::milliseconds(m_iSleep << std::min(pending.iTries++, kMostDoublings));
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SecureFileAttachmentsForSocks5(const std::string& jid,
                                                                                  FileList& files,
                                                                                  FileTransferMechanism::eType)
{
    std::string error;
    m_tDropAhead = Clock::time_point::max();
    const bool made = m_objCopies.Make(files, error, [this] { return IsStopRequested(); });
    m_objCopies.DropAhead();
    if (made)
        return true;
    if (!error.empty())
        VK_LOG_ERROR(m_pLogger, "Connection ID: [%s], JID: [%s]  >> File Transfer Error: Error occurred [%s].",
                     m_pobjConnection->m_strConnectionID.c_str(), jid.c_str(), error.c_str());
    return false;
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::PumpStreams()
{
    if (m_pobjProfile)
        for (gloox::Bytestream* stream : m_vecStale)
            m_pobjProfile->dispose(stream);
    m_vecStale.clear();
    if (m_pobjListener && m_bSocks5Running)
        m_pobjListener->Pump(!m_strStreamID.empty());
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleFTRequestError(const gloox::IQ& iq, const std::string& sid)
{
    if (sid == m_strStreamID)
        Fail(kTransferError, "File Transfer Error: Bytestream could not connect.", iq.error());
}

/// The library says nothing of an in-band stream whose opening was refused, as for a device that has gone meanwhile.
void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::PeerRefused(const gloox::JID& peer, const gloox::Error& error)
{
    if (m_pobjBytestream && !m_bStreamReady && peer == m_objTargetJID &&
        m_pobjBytestream->type() == gloox::Bytestream::IBB)
        Fail(kTransferError, "File Transfer Error: An error has occurred in Bytestream.", &error);
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleFTBytestream(gloox::Bytestream* bytestream)
{
    VKMXPTcpSocket* socket = nullptr;
    const bool socks5 = bytestream->type() == gloox::Bytestream::S5B;
    if (socks5 && m_pobjListener)
        socket = m_pobjListener->Release(dynamic_cast<gloox::SOCKS5Bytestream&>(*bytestream).connectionImpl());
    if (bytestream->sid() != m_strStreamID || m_pobjBytestream) {
        m_vecStale.push_back(bytestream); // an answer that nobody waits for any more
        return;
    }
    m_pobjBytestream = bytestream;
    bytestream->registerBytestreamDataHandler(this);
    if (!socks5 && m_uBlock > 0)
        static_cast<gloox::InBandBytestream*>(bytestream)->setBlockSize(static_cast<int>(m_uBlock));
    if ((socks5 && !socket) || !bytestream->connect()) {
        Fail(kTransferError, "File Transfer Error: Bytestream could not connect.");
        return;
    }
    if (socket) {
        m_iStream = socket->Descriptor();
        m_bStreamReady = true;
    }
    m_cvPeer.notify_all();
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleBytestreamOpen(gloox::Bytestream* bytestream)
{
    VK_LOG_DEBUG(m_pLogger, "Connection ID: [%s] >> Bytestream open", m_pobjConnection->m_strConnectionID.c_str());
    m_bStreamReady = m_bStreamReady || bytestream == m_pobjBytestream;
    m_cvPeer.notify_all();
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleBytestreamDataAck(gloox::Bytestream* bytestream)
{
    if (bytestream == m_pobjBytestream && m_iInFlight > 0)
        --m_iInFlight;
    m_cvPeer.notify_all();
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleBytestreamError(gloox::Bytestream* bytestream,
                                                                         const gloox::IQ& iq)
{
    if (bytestream == m_pobjBytestream)
        Fail(kTransferError, "File Transfer Error: An error has occurred in Bytestream.", iq.error());
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleBytestreamClose(gloox::Bytestream* bytestream)
{
    VK_LOG_DEBUG(m_pLogger, "Connection ID: [%s] >> Bytestream closed", m_pobjConnection->m_strConnectionID.c_str());
    m_bStreamClosed = m_bStreamClosed || bytestream == m_pobjBytestream;
    m_cvPeer.notify_all();
}

/// The sender takes no files; offers go to the acceptor.
void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleFTRequest(const gloox::JID& from, const gloox::JID&,
                                                                   const std::string& sid, const std::string&, long,
                                                                   const std::string&, const std::string&,
                                                                   const std::string&, const std::string&, int)
{
    VK_LOG_DEBUG(m_pLogger, "Connection ID: [%s] >> File transfer request from [%s], sid [%s]",
                 m_pobjConnection->m_strConnectionID.c_str(), from.full().c_str(), sid.c_str());
}

const std::string VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleOOBRequestResult(const gloox::JID& from,
                                                                                       const gloox::JID&,
                                                                                       const std::string&)
{
    VK_LOG_DEBUG(m_pLogger, "Connection ID: [%s] >> Out-of-band result from [%s]",
                 m_pobjConnection->m_strConnectionID.c_str(), from.full().c_str());
    return {};
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::handleBytestreamData(gloox::Bytestream*, const std::string& data)
{
    VK_LOG_DEBUG(m_pLogger, "Connection ID: [%s] >> %zu bytes on a stream that is for sending",
                 m_pobjConnection->m_strConnectionID.c_str(), data.size());
}
