// Sending a message: from the host's file to a packet in the core manager's hands.

#include "VKMxpDriver.h"

#include "VKConfiguration.h"
#include "VKDBexception.h"
#include "VKDBiReceiver.h"
#include "VKDatabase.h"
#include "VKException.h"
#include "VKLog.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmMessage.h"
#include "VKXmppGWUserSessionDB.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"
#include "VKioFile.h"
#include "VKstringReplace.h"
#include "VKstringXmlText.h"
#include "XmlReaderWriter.h"

#include <gloox/jid.h>

#include <algorithm>
#include <stdexcept>
#include <strings.h>

namespace {

using ReportsManager = VKMessengerReportsMngrInterface;

constexpr const char* kEmergencyUser = "_vk_emerg_user_"; // an account without a user session row
constexpr const char* kNoAttachmentsMarker = "mxp_no_attach";
constexpr const char* kClientResource = "mxp";
constexpr const char* kMimeType = "application/octet-stream";
constexpr const char* kSomeError = "Some error occurred.";
constexpr int kTwoWayReceiver = 2;

/// The form under which the server knows a JID (RFC 7622), so that what it delivers finds its session; a text that is
/// no JID is left as it is, for the connection to refuse.
std::string NormalJid(const std::string& text)
{
    const gloox::JID jid(text);
    return jid ? jid.full() : text;
}

/// The account that this server logs in with: a bare JID.
std::string AccountOf(const VKMessageFile& file)
{
    return file.strUserID.find('@') == std::string::npos ? file.strUserID + "@" + file.strDomain : file.strUserID;
}

/// The name behind the last slash or backslash. Without either the first character is dropped, on purpose.
std::string AnnouncedName(const std::string& path)
{
    const std::size_t slash = path.find_last_of("/\\");
    const std::size_t start = slash == std::string::npos ? 1 : slash + 1;
    return path.size() > start ? path.substr(start) : std::string();
}

bool IsWellFormed(const std::string& fragment)
{
    XmlReaderWriter document;
    return document.readFrom("<custom>" + fragment + "</custom>");
}

} // namespace

/// Who a message goes to, and how.
struct VKMxpDriver::Delivery
{
    explicit Delivery(const VKMessageFile& file)
        : bEmergency(strcasecmp(file.strReceiverPin.c_str(), kEmergencyUser) == 0),
          strJID(NormalJid(bEmergency ? file.strReceiverPin + "@" + file.strDomain : file.strReceiverPin)),
          strResource(bEmergency ? "" : kClientResource)
    {
        // A marker file in the configuration directory switches attachments off.
        bAllowAttachments =
            !bEmergency && !VKioFile::Check(VKConfiguration::getVKConfiguration()->getConfDirectory(false),
                                            kNoAttachmentsMarker);
    }

    bool HasAttachments(const VKMessageFile& file) const { return bAllowAttachments && !file.vecAttachments.empty(); }

    bool bEmergency;
    std::string strJID;
    std::string strResource;
    bool bAllowAttachments = false;
};

bool VKMxpDriver::SendAMessage(VKMessageFile* file, ReportsStatus& status)
{
    vk::LogScope scope(m_pobjLogger, VK_LOG_PLACE, "VKMxpDriver::SendAMessage()", {},
                       "Entering VKMxpDriver::SendAMessage().");
    if (!file)
        return scope.Result(false);
    if (!m_pobjCoreManager) {
        file->SetFailureReason(kSomeError);
        VK_LOG_ERROR(m_pobjLogger, "MXP Core Manager is not initialized.");
        return scope.Result(false);
    }
    std::string reason;
    try {
        return scope.Result(Deliver(*file, status));
    }
    catch (const VKException& error) {
        reason = error.ToString();
    }
    catch (const std::exception& error) {
        reason = error.what();
    }
    file->SetFailureReason(kSomeError);
    VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> Sending failed: %s", file->strJobID.c_str(), reason.c_str());
    return scope.Result(false);
}

bool VKMxpDriver::Deliver(VKMessageFile& file, ReportsStatus& status)
{
    const Delivery delivery(file);
    if (delivery.bEmergency)
        VK_LOG_INFO(m_pobjLogger, "Job ID: [%s] >> Receiver is Emergency User.", file.strJobID.c_str());
    else if (!IsLoggedIn(file))
        return LetWait(file, status);

    if (!file.strCustomParameters.empty() && !IsWellFormed(file.strCustomParameters)) {
        // They go out as they are: broken ones would break the envelope, and with it other messages to the device.
        file.SetFailureReason("The custom parameters are not well-formed XML.");
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> The custom parameters are not well-formed XML.",
                     file.strJobID.c_str());
        return false;
    }
    if (!Connect(file, delivery) || !OpenSession(file, delivery))
        return false;
    return HandOver(file, delivery, BuildPacket(file, delivery), status);
}

bool VKMxpDriver::IsLoggedIn(const VKMessageFile& file)
{
    VK_LOG_DEBUG(m_pobjLogger, "Job ID: [%s] >> Checking for receiver to be in MXP User Session.",
                 file.strJobID.c_str());
    VKXmppGWUserSessionDB sessions(VKConfiguration::getVKConfiguration()->getRootDirectory(false));
    // A store that cannot be read says nothing about the receiver.
    if (!sessions.GetOpenError().empty())
        throw std::runtime_error(sessions.GetOpenError());
    return sessions.DoesUserExist(file.ulReceiverID);
}

bool VKMxpDriver::LetWait(VKMessageFile& file, ReportsStatus& status)
{
    if (!file.bQueueWhenOffline) {
        file.SetFailureReason("Receiver is offline.");
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> Receiver does not exist in MXP User Session.",
                     file.strJobID.c_str());
        return false;
    }
    VK_LOG_INFO(m_pobjLogger, "Job ID: [%s] >> Queuing message for Receiver [%s], Carrier [%s] to waiting queue.",
                file.strJobID.c_str(), file.strReceiverPin.c_str(), file.strCarrierName.c_str());
    file.SetStatusText(Wake(file) ? "DEV OFFLINE; NOTIFIED" : "DEV OFFLINE");
    // The host moves the file to the waiting queue, whatever came of the notification.
    status = ReportsManager::RS_DEVICE_OFFLINE;
    return true;
}

bool VKMxpDriver::Connect(VKMessageFile& file, const Delivery& delivery)
{
    const std::string account = AccountOf(file);
    VK_LOG_INFO(m_pobjLogger,
                "Job ID: [%s] >> Establishing connection to server; Carrier Name: [%s], Server: [%s], Port: [%d], User "
                "Name: [%s], Resource: [%s]",
                file.strJobID.c_str(), file.strCarrierName.c_str(), file.strServer.c_str(), file.iPort,
                account.c_str(), file.strResource.c_str());
    std::string failure = kSomeError;
    if (!m_pobjCoreManager->StartC2SConnection(file.strCarrierName, file.strServer, file.iPort, account,
                                               file.strPassword, file.strResource, delivery.bAllowAttachments,
                                               m_strFileTransferServer, m_iFileTransferPort, m_iPacketSize,
                                               m_iFileTransferTimeout, &failure)) {
        file.SetFailureReason(failure.empty() ? kSomeError : failure);
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> Connection to Server could not be established.",
                     file.strJobID.c_str());
        return false;
    }
    VK_LOG_DEBUG(m_pobjLogger, "Job ID: [%s] >> Adding connection to Connection cache", file.strJobID.c_str());
    const std::lock_guard<std::mutex> lock(s_mtxCaches);
    if (std::find(s_vecConnIDs.begin(), s_vecConnIDs.end(), file.strCarrierName) == s_vecConnIDs.end())
        s_vecConnIDs.push_back(file.strCarrierName);
    return true;
}

bool VKMxpDriver::OpenSession(VKMessageFile& file, const Delivery& delivery)
{
    VK_LOG_INFO(m_pobjLogger,
                "Job ID: [%s] >> Establishing connection to client; Pin: [%s], Resource: [%s], Carrier Name: [%s]",
                file.strJobID.c_str(), delivery.strJID.c_str(), delivery.strResource.c_str(),
                file.strCarrierName.c_str());
    if (!m_pobjCoreManager->StartC2CSession(delivery.strJID, file.strCarrierName, delivery.strResource, false)) {
        const std::string reason = m_pobjCoreManager->GetLastError(file.strCarrierName);
        file.SetFailureReason(reason.empty() ? kSomeError : reason);
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> Connection to Client could not be established.",
                     file.strJobID.c_str());
        return false;
    }
    VK_LOG_DEBUG(m_pobjLogger, "Job ID: [%s] >> Adding session to Session cache", file.strJobID.c_str());
    {
        const std::lock_guard<std::mutex> lock(s_mtxCaches);
        std::string entry = delivery.strJID + " " + file.strCarrierName;
        if (s_setSessionIDs.insert(entry).second)
            s_vecSessionIDs.push_back(std::move(entry));
    }
    if (delivery.bEmergency) // whatever resource the emergency account uses
        m_pobjCoreManager->ResetC2CSessionTargetResource(delivery.strJID, file.strCarrierName);
    return true;
}

bool VKMxpDriver::WantsTwoWay(const VKMessageFile& file, const Delivery& delivery)
{
    if (delivery.bEmergency || !file.bTwoWay)
        return false;
    VKDatabase* const database = VKDatabase::getVKMultiThreadedDatabase(nullptr, true);
    VKDBiReceiver* const receivers = database ? database->getVKDBiReceiverObject() : nullptr;
    if (!receivers) {
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> The receivers cannot be read: %s", file.strJobID.c_str(),
                     database ? database->getLastErrorString().c_str() : "no database");
        return false;
    }
    VK_RECEIVER receiver{};
    const bool found = receivers->GetByID(&receiver, file.ulReceiverID);
    const bool twoWay = found && receiver.type == kTwoWayReceiver;
    EmptyReceiver(&receiver);
    return twoWay;
}

/// What XML cannot carry is replaced, for it would end the stream of the whole carrier.
std::string VKMxpDriver::CleanText(const VKMessageFile& file, const char* field, const std::string& text) const
{
    std::string clean = text;
    if (const std::size_t replaced = VKstringCleanXmlText(clean))
        VK_LOG_WARN(m_pobjLogger, "Job ID: [%s] >> %zu character(s) that XML cannot carry replaced in the %s.",
                    file.strJobID.c_str(), replaced, field);
    return clean;
}

std::unique_ptr<VKMXPmMessage> VKMxpDriver::BuildPacket(const VKMessageFile& file, const Delivery& delivery)
{
    VK_LOG_DEBUG(m_pobjLogger, "Job ID: [%s] >> Building MXP Message", file.strJobID.c_str());
    auto packet = std::make_unique<VKMXPmMessage>();
    packet->m_bTwoWay = WantsTwoWay(file, delivery);
    packet->m_strJobID = CleanText(file, "job id", file.strJobID);
    packet->m_strSender = CleanText(file, "sender", file.strSender.empty() ? file.strFallbackSender : file.strSender);
    packet->m_tDispatchTime = file.tDispatchAt;
    packet->m_iSeverity = file.iSeverity;
    packet->m_iExpiration = file.iExpiration;
    packet->m_bConfidential = file.bConfidential;
    packet->m_strSubject = CleanText(file, "subject", file.strSubject);
    packet->m_strBody = CleanText(file, "body", file.strBody);
    packet->m_strCustomParameters = CleanText(file, "custom parameters", file.strCustomParameters);
    for (const auto& choice : file.vecResponseChoices)
        packet->m_vecResponseChoices.push_back(
            CleanText(file, "response choices", VKstringReplaceColon(choice.strText)));
    if (delivery.HasAttachments(file))
        AddAttachments(file, delivery, *packet);
    packet->m_bValid = true; // envelopes refuse a packet without it
    return packet;
}

void VKMxpDriver::AddAttachments(const VKMessageFile& file, const Delivery& delivery, VKMXPmMessage& packet)
{
    VKMXPCoreManager::FileList files;
    for (const std::string& path : file.vecAttachments) {
        const std::string name = CleanText(file, "attachment names", AnnouncedName(path));
        // The attachment's key for its whole life: the client gets it in the packet, the file is encrypted with it.
        const std::string key = printfToString("%s-%s-%d", delivery.strJID.c_str(), name.c_str(), file.tDispatchAt);
        files.emplace_back(path, key);
        VKMXPmMessage::FileAttachment attachment;
        attachment.m_strID = name;
        attachment.m_strMimeType = kMimeType;
        attachment.m_strFileName = CleanText(file, "attachment names", path);
        attachment.m_strSecureKey = key;
        packet.m_vecAttachments.push_back(attachment);
    }
    VK_LOG_INFO(m_pobjLogger, "Job ID: [%s] >> Attaching files. Count: [%d]", file.strJobID.c_str(),
                static_cast<int>(files.size()));
    packet.AttachFiles(files);
    VK_LOG_DEBUG(m_pobjLogger, "Job ID: [%s] >> Registering to get update of file attachment sent status",
                 file.strJobID.c_str());
    m_pobjCoreManager->RegisterForAttachmentStatus(file.strCarrierName, this);
}

bool VKMxpDriver::HandOver(VKMessageFile& file, const Delivery& delivery, std::unique_ptr<VKMXPmMessage> packet,
                           ReportsStatus& status)
{
    const char* const job = file.strJobID.c_str();
    if (vk::LogWanted(m_pobjLogger, VKLogInterface::DEBUG)) {
        VKMXPmMessage shown(*packet); // keys do not belong in a log
        VKMXPSession::ClearAttachementSecurityKeys(&shown);
        VK_LOG_DEBUG(m_pobjLogger, "Job ID: [%s] >> MXP Message File Packet: [%s]", job, shown.GenerateXML().c_str());
    }
    VK_LOG_DEBUG(m_pobjLogger, "Job ID: [%s] >> Setting Message File Status to 'PENDING'", job);
    status = ReportsManager::RS_PENDING;
    const bool attached = delivery.HasAttachments(file);
    if (attached) {
        // Before the packet is handed over: its files may have failed by the time that Send returns.
        const vk::ScopedSection section(*m_pobjStatusMapLock);
        VK_LOG_DEBUG(m_pobjLogger, "Pushing JobId: [%s] to message file status map with status: [Pending]", job);
        s_tMsgFileStatusMap[file.strJobID] = {&file, ReportsManager::RS_PENDING, std::string()};
    }
    VK_LOG_INFO(m_pobjLogger, "Job ID: [%s] >> Sending MXP Message Packet to '%s', Carrier Name '%s'", job,
                delivery.strJID.c_str(), file.strCarrierName.c_str());
    int sequence = 0; // not kept: the job id ties the client's answers to the file
    if (!m_pobjCoreManager->Send(packet.get(), delivery.strJID, file.strCarrierName, sequence)) {
        if (attached) {
            const vk::ScopedSection section(*m_pobjStatusMapLock);
            s_tMsgFileStatusMap.erase(file.strJobID);
        }
        status = ReportsManager::RS_FAILED;
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> Sending message to Receiver [%s], Carrier [%s] failed.", job,
                     delivery.strJID.c_str(), file.strCarrierName.c_str());
        return false;
    }
    static_cast<void>(packet.release()); // the session's now
    if (!attached) {
        status = ReportsManager::RS_SENT;
        VK_LOG_INFO(m_pobjLogger,
                    "Job ID: [%s] >> Sending message to Receiver [%s], Carrier [%s] successfully completed.", job,
                    delivery.strJID.c_str(), file.strCarrierName.c_str());
    }
    file.SetCarrierReference(file.strJobID);
    return true;
}
