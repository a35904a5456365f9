#pragma once

#include "VKMessengerReportsMngrInterface.h"

#include <cstdint>
#include <string>
#include <vector>

/// One queued message with everything the host knows of it. The host derives its own class, owns the object and keeps
/// it alive until the driver has given it back; the driver reads and writes the data members directly and reports
/// through the virtual operations. One thread at a time: the host's while it calls the driver, otherwise the thread
/// that pushes the file back. Members and operations stand in the order that hosts and drivers are built for; what a
/// host needs besides goes into its derived class.
class VKMessageFile
{
public:
    /// One answer that the receiver may choose.
    struct ResponseChoice
    {
        std::string strText;
        /// 1 keeps the message open for further answers, anything else ends it.
        std::int32_t iType = 0;
    };

    /// One answer that came back.
    struct ReceivedResponse
    {
        std::string strText;
        /// When the host took it, ISO 8601 in UTC.
        std::string strReceivedAt;
    };

    /// The type of a response action that leaves the message open.
    static constexpr int kNonTerminalAction = 1;

    using ReportsStatus = VKMessengerReportsMngrInterface::ReportsStatus;

    /// Stands in for an empty strSender.
    std::string strFallbackSender;
    std::string strSender;
    std::string strSubject;
    std::string strBody;
    /// The key of the whole delivery.
    std::string strJobID;
    /// The bare JID of the receiver's device, or the word "_vk_emerg_user_".
    std::string strReceiverPin;
    /// Also names the connection: all messages of one carrier share one XMPP account.
    std::string strCarrierName;
    /// A profile id, "@" and the token, or the token alone.
    std::string strPushDeviceToken;
    /// "apns" or "gcms" in any case.
    std::string strPushServiceName;
    /// Seconds since the epoch.
    std::int32_t tDispatchAt = 0;
    /// Row id of the receiver.
    unsigned long ulReceiverID = 0;
    /// Paths of the files to send along.
    std::vector<std::string> vecAttachments;
    std::int32_t iSeverity = 0;
    std::int32_t iExpiration = 0;
    bool bConfidential = false;
    /// The message may wait in the waiting queue while its receiver is offline.
    bool bQueueWhenOffline = false;
    /// Seconds that the message has left.
    std::int32_t iSecondsToLive = 0;
    /// Not zero when the message asks for an answer.
    std::int32_t bTwoWay = 0;
    /// The status to report, set by PushBackMsgFile and WriteMessageReport.
    ReportsStatus eReportStatus = VKMessengerReportsMngrInterface::RS_UNCHANGED;
    /// Seconds since the epoch when that status arose; 0 for none.
    std::int32_t tReportTime = 0;
    /// The file stays in play for further answers after this report.
    bool bKeepOpen = false;
    /// The host is to delete the file.
    bool bDelete = false;
    std::vector<ResponseChoice> vecResponseChoices;
    /// Filled by AddReceivedResponse, in arrival order.
    std::vector<ReceivedResponse> vecReceivedResponses;
    /// Address of the XMPP server.
    std::string strServer;
    /// XMPP domain, which forms the emergency user's JID.
    std::string strDomain;
    /// The account of this server on it: user id, password, resource.
    std::string strUserID;
    std::string strPassword;
    std::string strResource;
    std::int32_t iPort = 0;
    bool bPushEnabled = false;
    /// XML text, sent as it is.
    std::string strCustomParameters;
    /// The client reported the message received or read.
    bool bDelivered = false;

    /// The type of the response action at this index of vecReceivedResponses: kNonTerminalAction, or anything else for
    /// an answer that ends the message.
    virtual int GetResponseActionType(int index) = 0;

    /// Records why delivery failed.
    virtual void SetFailureReason(const std::string& reason) = 0;

    /// Records the text that goes with the next report.
    virtual void SetStatusText(const std::string& text) = 0;

    /// Records the delivery status word, "DELIVERED-" and the status that the client sent.
    virtual void SetDeliveryStatus(const std::string& status) = 0;

    /// Appends a response to vecReceivedResponses.
    /// \return Whether the host takes this text as an answer to the message.
    virtual bool AddReceivedResponse(const std::string& response) = 0;

    /// Records the job id as the reference under which the carrier knows the message; called once, after the packet
    /// was handed over.
    virtual void SetCarrierReference(const std::string& reference) = 0;

    // Behind the operations above, whose slots are settled.
    virtual ~VKMessageFile() = default;
};
