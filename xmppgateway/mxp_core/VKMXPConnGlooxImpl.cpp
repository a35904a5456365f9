#include "VKMXPConnGlooxImpl.h"

#include "VKConfiguration.h"
#include "VKLog.h"
#include "VKMXPConnGlooxFileAcceptor.h"
#include "VKMXPConnGlooxFileSender.h"
#include "VKMXPHub.h"
#include "VKMXPSessionGlooxImpl.h"
#include "VKMXPStanzaClient.h"
#include "VKMXPTcpSocket.h"
#include "VKMXPTlsOpenSsl.h"
#include "VKXMPPGlooxdTypes.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"
#include "VKioFile.h"
#include "VKstring.h"
#include "VKstringXmlText.h"
#include "VKthread.h"

#include <gloox/error.h>
#include <gloox/message.h>
#include <gloox/messagesession.h>

#include <algorithm>
#include <chrono>
#include <strings.h>

namespace {

constexpr const char* kEmergencyUser = "_vk_emerg_user_";
constexpr const char* kVerifyMarker = "mxp_verify_tls";
constexpr int kLookEvery = 100; // milliseconds

/// The bundle that the server's certificate is verified with, when the administrator asked for that with a file of the
/// marker's name; empty when any certificate is accepted.
std::string CaBundleForVerification()
{
    VKConfiguration* configuration = VKConfiguration::getVKConfiguration();
    if (!configuration || !VKioFile::Check(configuration->getConfDirectory(false), kVerifyMarker))
        return {};
    return configuration->GetCABundlePath();
}

/// Looks once for a timeout below 100 ms, else every 100 ms, without limit when it is negative.
template <class Look>
std::string LookRepeatedly(const VKMXPConnIface& connection, int timeout, Look look)
{
    VKLogInterface* const logger = connection.m_pobjLogger;
    const char* const id = connection.m_strConnectionID.c_str();
    const bool endless = timeout < 0;
    const int step = timeout >= 0 && timeout < kLookEvery ? timeout : kLookEvery;
    int rounds = timeout >= kLookEvery ? (timeout + kLookEvery - 1) / kLookEvery : 1;
    for (;;) {
        std::string found = look();
        if (!found.empty()) {
            VK_LOG_TRACE(logger, "Connection ID: [%s] >> Popping out message [%s] from the queue.", id, found.c_str());
            return found;
        }
        if (step > 0) {
            VK_LOG_TRACE(logger, "Connection ID: [%s] >> Going for sleep [%d].", id, step);
            VKsleep(step);
        }
        if (!endless && --rounds <= 0)
            return found;
    }
}

} // namespace

VKMXPConnGlooxImpl::VKMXPConnGlooxImpl(const std::string& connectionId, const std::string& server, int port,
                                       const std::string& userId, const std::string& password,
                                       const std::string& resource, VKTLSPolicy tlsPolicy,
                                       const std::string& receiveDirectory, const std::string& streamHost,
                                       int streamPort, int chunkKB, int transferTimeout, VKconThreadPool* threadPool,
                                       bool startFileSender, VKLogInterface* logger)
    : m_bFileSenderWanted(startFileSender), m_pobjIncomingLock(std::make_unique<VKconLock>()),
      m_pobjAttachmentsLock(std::make_unique<VKconLock>())
{
    m_strServer = server;
    m_iPort = port;
    m_strUserID = userId;
    m_strPassword = password;
    m_strResource = resource;
    m_eTLSPolicy = tlsPolicy;
    m_strReceiveDirectory = receiveDirectory;
    m_iTransferTimeout = transferTimeout;
    m_pobjThreadPool = threadPool;
    m_pobjLogger = logger;
    m_strStreamHost = streamHost;
    m_iStreamPort = streamPort;
    m_iChunkSizeKB = chunkKB;
    m_strConnectionID = connectionId;
}

VKMXPConnGlooxImpl::~VKMXPConnGlooxImpl()
{
    if (OnSenderThread() && m_pobjFileSender)
        VKMXPConnGlooxFileSender::Abandon(std::move(m_pobjFileSender));
    StopFileTransfer();
    DropClient();
    TellRefused();
    AttachmentMap lost; // what waited to be sent can no more
    for (const FileAttachmentDetails& pending : m_vecPendingAttachments)
        lost[pending.strPacketId] = pending.vecFiles;
    RefuseAttachments(lost, "Disconnection Error.", "the connection has ended");
}

void VKMXPConnGlooxImpl::PrepareClient(VKMXPTcpSocket& socket)
{
    m_pobjSocket = &socket;
    m_pobjClient->setTls(static_cast<gloox::TLSPolicy>(m_eTLSPolicy));
    m_pobjClient->setServer(m_strServer);
    m_pobjClient->setCompression(false);
    m_pobjClient->disableRoster(); // this account has no contacts; asking would only delay the login
    m_pobjClient->registerConnectionListener(this);
    m_pobjClient->registerMessageHandler(this);
}

bool VKMXPConnGlooxImpl::StartConnection()
{
    if (OnSenderThread()) {
        SetLastError("Error in establishing connection.");
        VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> The handler of an attachment status cannot log in again.",
                     m_strConnectionID.c_str());
        return false;
    }
    VK_LOG_DEBUG(m_pobjLogger, "Connection ID: [%s] >> Making Client", m_strConnectionID.c_str());
    m_bConnected = false;
    VKMXPTcpSocket* socket = nullptr;
    {
        const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
        const gloox::JID jid(m_strUserID + "/" + m_strResource);
        m_pobjClient = std::make_unique<VKMXPStanzaClient>(jid, m_strPassword, m_iPort);
        const auto deadline = VKMXPTcpSocket::Clock::now() + std::chrono::seconds(s_iLoginLimitSeconds);
        auto made = std::make_unique<VKMXPTcpSocket>(m_pobjClient.get(), m_strServer, m_iPort,
                                                     m_pobjHub ? &m_pobjHub->Traffic() : nullptr, deadline);
        auto tls = std::make_unique<VKMXPTlsOpenSsl>(m_pobjClient.get(), jid.server(), CaBundleForVerification());
        socket = made.get();
        PrepareClient(*socket);
        m_pobjClient->setConnectionImpl(made.release());
        if (!tls->init())
            VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> TLS cannot be set up: %s", m_strConnectionID.c_str(),
                         tls->ErrorText().c_str());
        m_pobjClient->setEncryptionImpl(tls.release());
    }
    if (!LogIn(*socket))
        m_bConnected = false;
    else if (!StartFileTransfer())
        m_bConnected = false;
    if (!m_bConnected) {
        StopFileTransfer(); // what there is of it holds on to the client
        DropClient();
        return false;
    }
    AskAllAnew();
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    socket->Watch();
    return true;
}

/// Connects and pumps until the stream stands. Waits outside the client.
bool VKMXPConnGlooxImpl::LogIn(VKMXPTcpSocket& socket)
{
    const auto deadline = VKMXPTcpSocket::Clock::now() + std::chrono::seconds(s_iLoginLimitSeconds);
    const gloox::ConnectionError opened = socket.Open();
    bool connecting = opened == gloox::ConnNoError;
    if (connecting) {
        const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
        connecting = m_pobjClient->connect(false);
    }
    else
        NoteDisconnection(opened);
    if (!connecting) {
        SetLastError("Error in establishing connection.");
        return false;
    }
    gloox::ConnectionError result = gloox::ConnNoError;
    while (result == gloox::ConnNoError && !m_bConnected) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - VKMXPTcpSocket::Clock::now()).count();
        if (left <= 0) {
            SetLastError("Error in establishing connection.");
            VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> No answer to the login within %d seconds.",
                         m_strConnectionID.c_str(), s_iLoginLimitSeconds.load());
            return false;
        }
        socket.AwaitTraffic(static_cast<int>(std::min<long long>(left, 1000)));
        Pump(result);
    }
    SortInArrived();
    return m_bConnected;
}

/// One non-blocking look at the socket; what arrives is noted. False when there is no client.
bool VKMXPConnGlooxImpl::Pump(gloox::ConnectionError& result)
{
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    if (!m_pobjClient)
        return false;
    m_bPumping = true;
    result = m_pobjClient->recv(0);
    m_bPumping = false;
    if (m_pobjFileAcceptor)
        m_pobjFileAcceptor->Pump();
    if (m_pobjFileSender)
        m_pobjFileSender->PumpStreams();
    return true;
}

void VKMXPConnGlooxImpl::DropClient()
{
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    m_bConnected = false;
    if (!m_pobjClient)
        return;
    m_pobjClient->removeConnectionListener(this);
    m_pobjClient->removeMessageHandler(this);
    m_pobjClient->disconnect();
    for (VKMXPSessionGlooxImpl* session : m_setSessions) // the message sessions end with their client
        session->SetMessageSession(nullptr);
    m_setSessions.clear();
    m_pobjSocket = nullptr;
    m_pobjClient.reset();
}

/// A status handler on the sender's own thread cannot wait for that: it leaves the connection dead, and whoever looks after
/// it takes it down; for a connection of the core manager that is the work thread.
bool VKMXPConnGlooxImpl::TerminateConnection()
{
    if (OnSenderThread()) {
        const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
        m_bConnected = false;
        if (m_pobjFileSender)
            m_pobjFileSender->StopThread();
        if (m_pobjHub)
            m_pobjHub->Traffic().Wake();
        return true;
    }
    StopFileTransfer();
    DropClient();
    return true;
}

/// The acceptor first: of several handlers of file offers at one client the first is asked.
bool VKMXPConnGlooxImpl::StartFileTransfer()
{
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    try {
        m_pobjFileAcceptor = std::make_unique<VKMXPConnGlooxFileAcceptor>(*this);
    }
    catch (const std::exception& error) {
        VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> Failed to initilize file acceptor object: %s",
                     m_strConnectionID.c_str(), error.what());
        return false;
    }
    if (!m_bFileSenderWanted)
        return true;
    try {
        m_pobjFileSender = std::make_unique<VKMXPConnGlooxFileSender>(this);
        if (m_pobjFileSender->Initialize(m_pobjLogger, std::string()) && m_pobjFileSender->StartAsThread()) {
            m_pobjFileSender->Poke(); // records from before the connection was lost may wait
            return true;
        }
    }
    catch (const std::exception&) { // told below
    }
    VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> Failed to initilize/start file sender object",
                 m_strConnectionID.c_str());
    return false;
}

/// Waits for the sender outside the client, which the sender may want to enter.
void VKMXPConnGlooxImpl::StopFileTransfer()
{
    std::unique_ptr<VKMXPConnGlooxFileSender> sender;
    {
        const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
        sender = std::move(m_pobjFileSender);
    }
    if (sender)
        sender->Stop();
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    sender.reset();
    m_idSenderThread = std::thread::id(); // the system may give the number to another thread
    m_pobjFileAcceptor.reset();
}

int VKMXPConnGlooxImpl::GetFileTransferMethod()
{
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    return m_pobjFileSender ? m_pobjFileSender->GetMethod() : 0;
}

void VKMXPConnGlooxImpl::LogTransferError(const std::string& jid, const std::string& what, const gloox::Error* error)
{
    std::string text = what;
    if (error)
        text += std::string(" Type: [") +
                VKXMPPGlooxdTypes::GetGlooxStanzaErrTypeString(static_cast<int>(error->type())) + "], Error: [" +
                VKXMPPGlooxdTypes::GetGlooxStanzaErrString(static_cast<int>(error->error())) + "]";
    VK_LOG_ERROR(m_pobjLogger, jid.empty() ? "Connection ID: [%s]%s >> %s" : "Connection ID: [%s], JID: [%s] >> %s",
                 m_strConnectionID.c_str(), jid.c_str(), text.c_str());
}

void VKMXPConnGlooxImpl::onConnect() { m_bConnected = true; }

/// The certificate is not looked at here: the TLS layer verified it when the administrator asked for that, and any is
/// accepted otherwise.
bool VKMXPConnGlooxImpl::onTLSConnect(const gloox::CertInfo&) { return true; }

void VKMXPConnGlooxImpl::onDisconnect(gloox::ConnectionError error)
{
    m_bConnected = false;
    if (error != gloox::ConnNoError && error != gloox::ConnUserDisconnected && error != gloox::ConnNotConnected)
        NoteDisconnection(error);
}

void VKMXPConnGlooxImpl::NoteDisconnection(int error)
{
    SetLastError("Disconnection Error.");
    VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> Disconnection Error: [%s]", m_strConnectionID.c_str(),
                 VKXMPPGlooxdTypes::GetGlooxConnErrString(error));
}

bool VKMXPConnGlooxImpl::SendPing(int timeout)
{
    if (!m_bConnected)
        return false;
    VK_LOG_TRACE(m_pobjLogger, "Connection ID: [%s] >> Sending recv from client [%s] with timeout: [%d]",
                 m_strConnectionID.c_str(), m_strUserID.c_str(), timeout);
    if (timeout > 0 && m_pobjHub)
        m_pobjHub->Traffic().Watch(timeout / 1000);
    gloox::ConnectionError result = gloox::ConnNoError;
    if (!Pump(result))
        return false;
    SortInArrived();
    TellRefused();
    if (result != gloox::ConnNoError)
        NoteDisconnection(result);
    else if (m_bConnected)
        return true;
    m_bConnected = false;
    return false;
}

void VKMXPConnGlooxImpl::EnsureMessageSession(VKMXPSessionGlooxImpl& session)
{
    if (session.GetMessageSession())
        return;
    auto* made = new gloox::MessageSession(m_pobjClient.get(), gloox::JID(session.GetJID()), true, 0, true);
    made->registerMessageHandler(this); // the client owns the message session
    session.SetMessageSession(made);
    m_setSessions.insert(&session);
}

VKMXPSession* VKMXPConnGlooxImpl::StartSession(const std::string& jid)
{
    if (!IsConnected()) {
        TerminateConnection();
        if (!StartConnection()) {
            SetLastError("Unable to create session.");
            VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> Unable to create session.", m_strConnectionID.c_str());
            return nullptr;
        }
    }
    auto session = std::make_unique<VKMXPSessionGlooxImpl>(jid, this, nullptr);
    session->Initialize();
    session->SetClientLock(&m_mtxClient);
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    if (!m_pobjClient || !gloox::JID(jid)) {
        SetLastError("Unable to create session.");
        VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> Unable to create session. JID: [%s]",
                     m_strConnectionID.c_str(), jid.c_str());
        return nullptr;
    }
    EnsureMessageSession(*session);
    return session.release();
}

bool VKMXPConnGlooxImpl::TerminateSession(VKMXPSession* session)
{
    const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
    auto* const ours = dynamic_cast<VKMXPSessionGlooxImpl*>(session);
    if (!ours || m_setSessions.erase(ours) == 0)
        return true;
    gloox::MessageSession* const messageSession = ours->GetMessageSession();
    ours->SetMessageSession(nullptr);
    if (m_pobjClient && messageSession) {
        messageSession->removeMessageHandler();
        m_pobjClient->disposeMessageSession(messageSession);
    }
    return true;
}

bool VKMXPConnGlooxImpl::SendAMessage(VKMXPSession* session, const std::string& text, AttachmentMap& attachments)
{
    auto* const ours = dynamic_cast<VKMXPSessionGlooxImpl*>(session);
    if (!ours)
        return false;
    std::string clean = text;
    // One character that XML cannot carry would end the stream of the whole carrier.
    if (const std::size_t replaced = VKstringCleanXmlText(clean))
        VK_LOG_WARN(m_pobjLogger, "Connection ID: [%s] >> %zu character(s) that XML cannot carry replaced for JID: [%s]",
                    m_strConnectionID.c_str(), replaced, session->GetJID().c_str());
    {
        const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
        if (!m_pobjClient || !m_bConnected) {
            VK_LOG_ERROR(m_pobjLogger, "Connection ID: [%s] >> Not connected: message for JID: [%s] is lost.",
                         m_strConnectionID.c_str(), session->GetJID().c_str());
            return false;
        }
        EnsureMessageSession(*ours);
        m_pobjClient->SendBody(*ours->GetMessageSession(), clean);
    }
    if (attachments.empty()) {
        VK_LOG_DEBUG(m_pobjLogger, "Connection ID: [%s] >> No file attachment found in the message for JID: [%s]",
                     m_strConnectionID.c_str(), session->GetJID().c_str());
        return true;
    }
    if (strcasecmp(gloox::JID(session->GetJID()).username().c_str(), kEmergencyUser) == 0)
        return true;
    if (m_bFileSenderWanted)
        QueueAttachments(*session, attachments);
    else {
        // Told with the next ping: the session's lock is held here, and a handler may want those above it.
        const vk::ScopedSection section(*m_pobjAttachmentsLock);
        m_mapRefused.insert(attachments.begin(), attachments.end());
    }
    return true;
}

/// Runs inside the client when a message arrives: notes it, no more. A reply with a thread id of its own comes without
/// its message session, so whether there is one says nothing about whether the sender has a session with us.
void VKMXPConnGlooxImpl::handleMessage(const gloox::Message& message, gloox::MessageSession*)
{
    std::string body = message.body();
    if (body.empty())
        return;
    bool pumping = false;
    {
        const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
        pumping = m_bPumping;
        m_vecArrived.push_back({message.from().full(), message.from().bare(), std::move(body)});
    }
    if (!pumping)
        SortInArrived();
}

void VKMXPConnGlooxImpl::SortInArrived()
{
    std::vector<Arrived> arrived;
    {
        const std::lock_guard<std::recursive_mutex> inside(m_mtxClient);
        arrived.swap(m_vecArrived);
    }
    for (Arrived& message : arrived) {
        VK_LOG_DEBUG(m_pobjLogger, "Connection ID: [%s] >> Pushing message [%s] to the queue from user %s.",
                     m_strConnectionID.c_str(), message.strBody.c_str(), message.strFullJID.c_str());
        const bool hasSession = m_pobjHub && m_pobjHub->HasSession(m_strConnectionID, message.strBareJID);
        {
            const vk::ScopedSection section(*m_pobjIncomingLock);
            m_objIncoming.Put(message.strFullJID, message.strBareJID, hasSession, std::move(message.strBody));
        }
        AskWhoHasSpoken(message.strFullJID);
        if (m_pobjHub)
            m_pobjHub->MessageArrived(m_strConnectionID, message.strBareJID, message.strFullJID);
    }
}

std::string VKMXPConnGlooxImpl::RecvAMessage(VKMXPSession* session, int timeout)
{
    return LookRepeatedly(*this, timeout, [this, session]() -> std::string {
        const vk::ScopedSection section(*m_pobjIncomingLock);
        return m_objIncoming.TakeFor(session->GetJID()).value_or(std::string());
    });
}

std::string VKMXPConnGlooxImpl::RecvAMessage(std::string& jid, int timeout)
{
    return LookRepeatedly(*this, timeout, [this, &jid]() -> std::string {
        const vk::ScopedSection section(*m_pobjIncomingLock);
        auto stray = m_objIncoming.TakeStray();
        if (!stray)
            return {};
        jid = std::move(stray->first);
        return std::move(stray->second);
    });
}
