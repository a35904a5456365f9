#pragma once

#include "Clock.h"
#include "VKMessageFile.h"

#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace vk {

/// What a driver reported about a file, as it stood at that moment.
struct MessageReport
{
    TimePoint time;
    VKMessageFile::ReportsStatus status = VKMessengerReportsMngrInterface::RS_UNCHANGED;
    bool keepOpen = false;
    std::string text;
    std::string deliveryStatus;
    std::string response;
    std::string failureReason;
};

/// A message file of this host. A driver may push one file back several times before the host pops it, so each status
/// text, which a driver sets last, also notes how the file stands at that moment: nothing that was reported is lost.
class HostMessageFile final : public VKMessageFile
{
public:
    /// The port and the time of dispatch start as this host's defaults: 5222 and now.
    HostMessageFile();

    int GetResponseActionType(int index) override;
    void SetFailureReason(const std::string& reason) override;
    void SetStatusText(const std::string& text) override;
    void SetDeliveryStatus(const std::string& status) override;

    /// Takes "CONFIRM" and "REFUSE", and any of the response choices as the driver announces them, letters of either
    /// case; a message without choices takes any text.
    bool AddReceivedResponse(const std::string& response) override;
    void SetCarrierReference(const std::string& reference) override;

    /// How the file stands now, without a text of its own to it.
    MessageReport Now() const;

    /// The oldest report that was not taken yet.
    std::optional<MessageReport> TakeReport();

    /// Drops the reports that were not taken: what SendAMessage says of a file that it did not pass on comes back
    /// through its result, not through the return queue.
    void DropReports();

    /// Forgets all that was reported, before the file is handed over another time.
    void StartOver();

    const std::string& CarrierReference() const { return m_carrierReference; }

private:
    const ResponseChoice* FindChoice(const std::string& response) const;

    std::string m_carrierReference;
    mutable std::mutex m_mutex;
    // Guarded by m_mutex: a driver may report from a thread of its own.
    MessageReport m_now;
    std::deque<MessageReport> m_reports;
};

} // namespace vk
