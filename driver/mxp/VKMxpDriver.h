#pragma once

#include "VKMXPAttachmentStatusHandlerIface.h"
#include "VKMXPRequestHandlerIface.h"
#include "VKMXPResponseHandlerIface.h"
#include "VKProtocolDriverInterface.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

class VKMXPCoreManager;
class VKMXPmBase;
class VKMXPmMessage;
class VKconLock;

/// The protocol driver of this library: joins the host's contract to the MXP core. It has no thread of its own: the
/// host's threads run the operations of the contract, the core manager's work thread runs the handlers. No exception
/// leaves any of them; what went wrong is logged and told by the result.
class VKMxpDriver : public VKProtocolDriverInterface,
                    public VKMXPRequestHandlerIface,
                    public VKMXPResponseHandlerIface,
                    public VKMXPAttachmentStatusHandlerIface
{
public:
    VKMxpDriver();
    ~VKMxpDriver() override;

    const char* GetName() override { return m_szName; }
    const char* GetVersion() override { return m_szVersion; }
    const char* GetProtocolName() override { return m_szProtocolName; }
    const char* GetCarrierName() override { return m_szCarrierName; }

    /// Gets the core manager's thread going. The map is ignored. False with a line at error level.
    bool Configure(std::map<std::string, std::string>& settings) override;

    /// Takes over the values of attachment transfer; unchecked.
    bool Setup(VKMessengerInstConfBasic* settings) override;
    bool Setup();

    bool PeriodicEvent() override;
    bool ResetDevice() override;

    /// Applies what clients have said of this job since the last call, in order of arrival. The status is 2 when there
    /// was nothing. Always true.
    bool Send2WayRespQuery(VKMessageFile* file, ReportsStatus& status) override;

    /// Hands one message over for delivery. True: it is sent (3), on its way with attachments behind it (7) or to wait
    /// for its offline receiver (13). False: the file's failure reason says why.
    bool SendAMessage(VKMessageFile* file, ReportsStatus& status) override;

    /// Ends all sessions and connections and stops the core manager's thread. Always true.
    bool Cleanup() override;
    bool ProcessSignal() override;

    void HandleRequest(const std::string& jid, const std::string& connectionId, const std::string& packetType,
                       VKMXPmBase* packet) override;
    void HandleResponse(const std::string& jid, const std::string& connectionId, const std::string& packetType,
                        VKMXPmBase* packet) override;
    void HandleAttachmentStatus(const std::string& connectionId, const std::string& packetId, int status,
                                const std::string& errorText) override;

    /// What a client said of a message, until the host asks.
    struct VKMxpRequest
    {
        enum Kind : std::int32_t { Confirmed = 1, Rejected = 2, StatusSet = 3, Responded = 4 };

        std::int32_t iKind = 0;
        std::string strResponse;
        std::string strStatus;
    };

    /// A message whose attachments are on their way. The file is the host's.
    struct MessageStatus
    {
        VKMessageFile* pobjMessageFile = nullptr;
        ReportsStatus eStatus = VKMessengerReportsMngrInterface::RS_UNCHANGED;
        std::string strText;
    };

private:
    std::string m_strWaitingDirectory; ///< the waiting queue
    const char* m_szName = "MXP";
    const char* m_szProtocolName = "MXP";
    const char* m_szVersion = "1.0";
    const char* m_szCarrierName = "*"; ///< any carrier of the protocol
    std::int32_t m_iFileTransferTimeout = 15; ///< seconds
    std::string m_strFileTransferServer;
    std::int32_t m_iFileTransferPort = 0;
    std::int32_t m_iPacketSize = 65; ///< KiB
    VKMXPCoreManager* m_pobjCoreManager = nullptr; ///< the singleton; null before Configure and after Cleanup
    std::unique_ptr<VKconLock> m_pobjStatusMapLock; ///< guards s_tMsgFileStatusMap; taken before the host queue's lock

    // Kept beyond one instance. The first three are guarded by s_mtxCaches, under which nothing else is taken.
    static std::vector<std::string> s_vecConnIDs;    ///< connections that were started, once each
    static std::vector<std::string> s_vecSessionIDs; ///< sessions as JID, one blank, connection ID, once each
    static std::map<std::string, std::vector<VKMxpRequest>> s_mapRequests; ///< the request cache, by job id
    static std::map<std::string, MessageStatus> s_tMsgFileStatusMap;       ///< by job id
    static std::mutex s_mtxCaches;
    static std::unordered_set<std::string> s_setSessionIDs; ///< the entries of s_vecSessionIDs, for the look-up

    struct Delivery;

    bool Deliver(VKMessageFile& file, ReportsStatus& status);
    bool IsLoggedIn(const VKMessageFile& file);
    bool LetWait(VKMessageFile& file, ReportsStatus& status);
    bool Wake(const VKMessageFile& file);
    bool Connect(VKMessageFile& file, const Delivery& delivery);
    bool OpenSession(VKMessageFile& file, const Delivery& delivery);
    std::unique_ptr<VKMXPmMessage> BuildPacket(const VKMessageFile& file, const Delivery& delivery);
    bool WantsTwoWay(const VKMessageFile& file, const Delivery& delivery);
    void AddAttachments(const VKMessageFile& file, const Delivery& delivery, VKMXPmMessage& packet);
    bool HandOver(VKMessageFile& file, const Delivery& delivery, std::unique_ptr<VKMXPmMessage> packet,
                  ReportsStatus& status);
    std::string CleanText(const VKMessageFile& file, const char* field, const std::string& text) const;

    void CacheRequest(const std::string& jobId, VKMxpRequest request);
    void ProcessConfirmMessage(VKMXPmBase* packet);
    void ProcessRejectMessage(VKMXPmBase* packet);
    void ProcessSetMessageStatus(VKMXPmBase* packet);
    void ProcessSendMessageResponse(VKMXPmBase* packet);
    bool Apply(VKMessageFile* file, const VKMxpRequest& request, ReportsStatus& status);
    bool ProcessConfirmMessageFromRespQuery(VKMessageFile* file);
    bool ProcessRejectMessageFromRespQuery(VKMessageFile* file);
    bool ProcessSetMessageStatusFromRespQuery(VKMessageFile* file, const std::string& status);
    bool ProcessSendMessageResponseFromRespQuery(VKMessageFile* file, const std::string& response);
};
