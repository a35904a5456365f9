// What comes back: clients' packets into the request cache, and from there, when the host asks, into message files.

#include "VKMxpDriver.h"

#include "VKLog.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmConfirmMsg.h"
#include "VKMXPmRejectMsg.h"
#include "VKMXPmSendMsgResponse.h"
#include "VKMXPmSetMsgStatus.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"

#include <gloox/jid.h>

#include <strings.h>

namespace {

using ReportsManager = VKMessengerReportsMngrInterface;

constexpr const char* kEmergencyUser = "_vk_emerg_user_";
constexpr int kResponse = 2;

/// Turns a request into the answer to itself: its writer echoes the parameters as they were received.
void TurnIntoResponse(VKMXPmBase& packet, const std::string& text)
{
    packet.m_iPacketType = kResponse;
    packet.m_iResponseCode = 1;
    packet.m_iResponseErrorCode = 0;
    packet.m_strResponseMessage = text;
    packet.m_strResponseResultText.clear();
    packet.m_eResponseResultType = eRespResultNone;
}

std::string StatusUpdated(const std::string& jobId, const char* word)
{
    return "The status of Job ID '" + jobId + "' is successfully updated to '" + word + "'.";
}

} // namespace

void VKMxpDriver::HandleRequest(const std::string& jid, const std::string& connectionId, const std::string& packetType,
                                VKMXPmBase* packet)
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::HandleRequest()");
    std::unique_ptr<VKMXPmBase> owned(packet);
    if (!packet)
        return;
    if (strcasecmp(gloox::JID(jid).username().c_str(), kEmergencyUser) == 0) {
        VK_LOG_INFO(m_pobjLogger, "Response from emerency user. It will be ignored.");
        return;
    }
    struct Route
    {
        const char* type;
        void (VKMxpDriver::*process)(VKMXPmBase*);
    };
    static constexpr Route kRoutes[] = {
        {"confirm-msg", &VKMxpDriver::ProcessConfirmMessage},
        {"reject-msg", &VKMxpDriver::ProcessRejectMessage},
        {"send-msg-response", &VKMxpDriver::ProcessSendMessageResponse},
        {"set-msg-status", &VKMxpDriver::ProcessSetMessageStatus},
    };
    for (const Route& route : kRoutes)
        if (packetType == route.type)
            (this->*route.process)(packet);

    if (packet->m_iPacketType != kResponse || !m_pobjCoreManager)
        return;
    int sequence = packet->m_iSequence; // a response keeps the sequence of its request
    // Told before the packet is handed over, for then it is the session's.
    const std::string shown = packetType + "(RESP) seq:" + std::to_string(sequence) + " to user JID:" + jid + ".";
    if (m_pobjCoreManager->Send(packet, jid, connectionId, sequence)) {
        static_cast<void>(owned.release());
        VK_LOG_INFO(m_pobjLogger, "Successfully send process packet type:%s", shown.c_str());
    }
    else
        VK_LOG_ERROR(m_pobjLogger, "Failed to send processed packet type:%s", shown.c_str());
}

/// The driver registers for no responses.
void VKMxpDriver::HandleResponse(const std::string&, const std::string&, const std::string&, VKMXPmBase* packet)
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::HandleResponse()");
    delete packet;
}

void VKMxpDriver::HandleAttachmentStatus(const std::string&, const std::string& packetId, int status,
                                         const std::string& errorText)
{
    const vk::ScopedSection section(*m_pobjStatusMapLock);
    const auto found = s_tMsgFileStatusMap.find(packetId);
    if (found == s_tMsgFileStatusMap.end())
        return;
    VK_LOG_DEBUG(m_pobjLogger, "Found Job ID [%s] in Status map cache", packetId.c_str());
    VKMessageFile* const file = found->second.pobjMessageFile;
    if (!file)
        return;
    file->SetFailureReason(errorText); // an empty text too
    VK_LOG_INFO(m_pobjLogger, "Updating Failure Reason of Job [%s] to [%s]", packetId.c_str(), errorText.c_str());
    // Out of the map first: once pushed back the file is the host's to delete.
    s_tMsgFileStatusMap.erase(found);
    PushBackMsgFile(file, static_cast<ReportsStatus>(status), false, std::string());
    VK_LOG_INFO(m_pobjLogger, "Updating status of Job [%s] to %d.", packetId.c_str(), status);
}

void VKMxpDriver::CacheRequest(const std::string& jobId, VKMxpRequest request)
{
    VK_LOG_DEBUG(m_pobjLogger, "Pushing Job ID: [%s] to Request cache.", jobId.c_str());
    const std::lock_guard<std::mutex> lock(s_mtxCaches);
    s_mapRequests[jobId].push_back(std::move(request));
}

void VKMxpDriver::ProcessConfirmMessage(VKMXPmBase* packet)
{
    const auto* const confirm = dynamic_cast<VKMXPmConfirmMsg*>(packet);
    if (!confirm)
        return;
    CacheRequest(confirm->m_strJobID, {VKMxpRequest::Confirmed, {}, {}});
    const std::string text = StatusUpdated(confirm->m_strJobID, "CONFIRMED");
    VK_LOG_INFO(m_pobjLogger, "%s", text.c_str());
    VK_LOG_DEBUG(m_pobjLogger, "Changing Packet type to Response.");
    TurnIntoResponse(*packet, text);
}

void VKMxpDriver::ProcessRejectMessage(VKMXPmBase* packet)
{
    const auto* const reject = dynamic_cast<VKMXPmRejectMsg*>(packet);
    if (!reject)
        return;
    CacheRequest(reject->m_strJobID, {VKMxpRequest::Rejected, {}, {}});
    const std::string text = StatusUpdated(reject->m_strJobID, "REJECTED");
    VK_LOG_INFO(m_pobjLogger, "%s", text.c_str());
    VK_LOG_DEBUG(m_pobjLogger, "Changing Packet type to Response.");
    TurnIntoResponse(*packet, text);
}

void VKMxpDriver::ProcessSetMessageStatus(VKMXPmBase* packet)
{
    const auto* const set = dynamic_cast<VKMXPmSetMsgStatus*>(packet);
    if (!set)
        return;
    CacheRequest(set->m_strJobID, {VKMxpRequest::StatusSet, {}, set->m_strStatus});
    VK_LOG_INFO(m_pobjLogger, "For Job ID '%s', 'Set Message Status' executed successfully.",
                set->m_strJobID.c_str());
}

void VKMxpDriver::ProcessSendMessageResponse(VKMXPmBase* packet)
{
    const auto* const response = dynamic_cast<VKMXPmSendMsgResponse*>(packet);
    if (!response)
        return;
    CacheRequest(response->m_strJobID, {VKMxpRequest::Responded, response->m_strResponseText, {}});
    VK_LOG_INFO(m_pobjLogger, "For Job ID '%s', 'Send Message Response' executed successfully.",
                response->m_strJobID.c_str());
}

bool VKMxpDriver::Send2WayRespQuery(VKMessageFile* file, ReportsStatus& status)
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::Send2WayRespQuery()");
    status = ReportsManager::RS_FAILED; // the answer for a file of which nothing new has come in
    if (!file)
        return scope.Result(true);
    std::vector<VKMxpRequest> requests;
    {
        const std::lock_guard<std::mutex> lock(s_mtxCaches);
        const auto found = s_mapRequests.find(file->strJobID);
        if (found == s_mapRequests.end())
            return scope.Result(true);
        requests = std::move(found->second);
        s_mapRequests.erase(found);
    }
    VK_LOG_DEBUG(m_pobjLogger, "Job ID [%s] found in request cache.", file->strJobID.c_str());
    for (const VKMxpRequest& request : requests)
        Apply(file, request, status);
    return scope.Result(true);
}

bool VKMxpDriver::Apply(VKMessageFile* file, const VKMxpRequest& request, ReportsStatus& status)
{
    bool applied = false;
    ReportsStatus told = ReportsManager::RS_FAILED;
    switch (request.iKind) {
    case VKMxpRequest::Confirmed:
        applied = ProcessConfirmMessageFromRespQuery(file);
        told = ReportsManager::RS_CONFIRMED;
        break;
    case VKMxpRequest::Rejected:
        applied = ProcessRejectMessageFromRespQuery(file);
        told = ReportsManager::RS_REJECTED;
        break;
    case VKMxpRequest::StatusSet:
        applied = ProcessSetMessageStatusFromRespQuery(file, request.strStatus);
        told = ReportsManager::RS_DELIVERED;
        break;
    case VKMxpRequest::Responded:
        applied = ProcessSendMessageResponseFromRespQuery(file, request.strResponse);
        told = ReportsManager::RS_REPLIED_WITH;
        break;
    }
    if (applied)
        status = told;
    return applied;
}

bool VKMxpDriver::ProcessConfirmMessageFromRespQuery(VKMessageFile* file)
{
    VK_LOG_DEBUG(m_pobjLogger, "Pushing back received response action [CONFIRM] in vector.");
    file->AddReceivedResponse("CONFIRM");
    VK_LOG_INFO(m_pobjLogger, "Pushing back message file with status 'Confirm'.");
    PushBackMsgFile(file, ReportsManager::RS_CONFIRMED, false, std::string());
    return true;
}

bool VKMxpDriver::ProcessRejectMessageFromRespQuery(VKMessageFile* file)
{
    VK_LOG_DEBUG(m_pobjLogger, "Pushing back received response action [REFUSE] in vector.");
    file->AddReceivedResponse("REFUSE");
    VK_LOG_INFO(m_pobjLogger, "Pushing back message file with status 'Reject'.");
    PushBackMsgFile(file, ReportsManager::RS_REJECTED, false, std::string());
    return true;
}

bool VKMxpDriver::ProcessSetMessageStatusFromRespQuery(VKMessageFile* file, const std::string& status)
{
    if (strcasecmp(status.c_str(), "RECEIVED") != 0 && strcasecmp(status.c_str(), "READ") != 0)
        return false;
    VK_LOG_DEBUG(m_pobjLogger, "Setting message delivered flag to true.");
    file->bDelivered = true;
    file->SetDeliveryStatus("DELIVERED-" + status);
    VK_LOG_INFO(m_pobjLogger, "Pushing back message file with status 'DELIVERED'.");
    PushBackMsgFile(file, ReportsManager::RS_DELIVERED, true, ": " + status);
    return true;
}

bool VKMxpDriver::ProcessSendMessageResponseFromRespQuery(VKMessageFile* file, const std::string& response)
{
    VK_LOG_DEBUG(m_pobjLogger, "Pushing back received response action [%s] in vector.", response.c_str());
    if (!file->AddReceivedResponse(response)) {
        PushBackMsgFile(file, ReportsManager::RS_DELIVERED, false, std::string());
        return true;
    }
    const int last = static_cast<int>(file->vecReceivedResponses.size()) - 1;
    const bool open = file->GetResponseActionType(last) == VKMessageFile::kNonTerminalAction;
    VK_LOG_INFO(m_pobjLogger, "Pushing back message file with status 'RepliedWith'.");
    PushBackMsgFile(file, ReportsManager::RS_REPLIED_WITH, open, std::string());
    VK_LOG_DEBUG(m_pobjLogger, open ? "The response action is not terminal." : "The response action is terminal.");
    return true;
}
