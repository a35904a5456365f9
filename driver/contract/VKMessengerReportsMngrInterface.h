#pragma once

#include "VKField.h"

#include <string>

class VKMessageFile;

/// The host's reports manager: takes what became of a message into the host's records. The host implements it and owns
/// the object; the driver calls it through VKProtocolDriverInterface::WriteMessageReport.
class VKMessengerReportsMngrInterface
{
public:
    /// What became of a message. The numbers cross the boundary with the host and stand in its records.
    enum ReportsStatus : int {
        /// "Leave the status as it is", for PushBackMsgFile and WriteMessageReport only; no operation of a driver ever
        /// gives it out.
        RS_UNCHANGED = 0,
        /// Sending failed or an attachment transfer broke; also what a two-way query answers when nothing is new.
        RS_FAILED = 2,
        /// Accepted for delivery, attachments included.
        RS_SENT = 3,
        /// The client chose a response action.
        RS_REPLIED_WITH = 5,
        /// The client reported the message received or read.
        RS_DELIVERED = 6,
        /// The message is on its way, its attachments are still to travel.
        RS_PENDING = 7,
        /// The receiver is offline and the message goes to the waiting queue.
        RS_DEVICE_OFFLINE = 13,
        RS_CONFIRMED = 15,
        RS_REJECTED = 16
    };

    /// Records the status of a file. Called on whatever thread the driver reports from.
    /// \return Only the low byte counts: zero means that the report was not written.
    virtual int WriteReport(VKMessageFile* file, ReportsStatus status, const std::string& text) = 0;

    // Behind the operation above, which has the first slot.
    virtual ~VKMessengerReportsMngrInterface() = default;
};

namespace vk {

/// The word that stands for a status in logs and reports.
inline constexpr CodeText<VKMessengerReportsMngrInterface::ReportsStatus> kReportsStatusWords[] = {
    {VKMessengerReportsMngrInterface::RS_UNCHANGED, "UNCHANGED"},
    {VKMessengerReportsMngrInterface::RS_FAILED, "FAILED"},
    {VKMessengerReportsMngrInterface::RS_SENT, "SENT"},
    {VKMessengerReportsMngrInterface::RS_REPLIED_WITH, "REPLIED_WITH"},
    {VKMessengerReportsMngrInterface::RS_DELIVERED, "DELIVERED"},
    {VKMessengerReportsMngrInterface::RS_PENDING, "PENDING"},
    {VKMessengerReportsMngrInterface::RS_DEVICE_OFFLINE, "DEVICE_OFFLINE"},
    {VKMessengerReportsMngrInterface::RS_CONFIRMED, "CONFIRMED"},
    {VKMessengerReportsMngrInterface::RS_REJECTED, "REJECTED"},
};

/// The status as a word; "UNKNOWN" for a number that no driver gives out.
constexpr const char* ReportsStatusWord(VKMessengerReportsMngrInterface::ReportsStatus status)
{
    return TextOfCode(kReportsStatusWords, status, "UNKNOWN");
}

} // namespace vk
