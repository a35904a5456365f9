#pragma once

#include "HostMessageFile.h"
#include "VKMessageHeader.h"

#include <json/json.h>

#include <string>

namespace vk {

/// One message of a queue in this service's hands: its row, its body, and the file that a driver gets. What became of
/// it stands in the body under "report" and goes wherever the message goes. Times are seconds since the epoch. One
/// thread.
class QueueMessage
{
public:
    /// A body that is no message gives a message with a fault. Only one in status Q brings its report along: with any
    /// other letter it is sent as if for the first time.
    QueueMessage(const VK_MESSAGE_HEADER& header, const std::string& body);
    QueueMessage(const QueueMessage&) = delete;
    QueueMessage& operator=(const QueueMessage&) = delete;

    HostMessageFile& File() { return m_file; }
    /// Why the body is no message; empty when it is one.
    const std::string& Fault() const { return m_fault; }

    VK_MESSAGE_HEADER& Header() { return m_header; }
    std::string Name() const { return m_header.msg_name; }
    /// The job of its body, or else of its name.
    std::string Job() const;
    /// Its name with another letter and count.
    std::string NameAs(char status, int queryCount) const;
    int QueryCount() const;

    /// Notes what a driver reported.
    void Note(const MessageReport& report);
    /// Notes a reason of the host's own.
    void NoteReason(const std::string& reason) { m_report["reason"] = reason; }
    VKMessageFile::ReportsStatus Status() const;
    std::string Reason() const { return m_report.get("reason", "").asString(); }

    /// When it was handed over; 0 when it was not.
    long SentAt() const { return static_cast<long>(m_report.get("sent_at", 0).asInt64()); }
    /// The service that handed it over.
    std::string SentBy() const { return m_report.get("service", "").asString(); }
    void NoteSent(long time, const std::string& service);

    /// The queue that it is on its way to, 0 for none: kept in the body, so that a move that was cut short is known.
    int Target() const { return m_report.get("to", 0).asInt(); }
    void SetTarget(int queue) { m_report["to"] = queue; }

    std::string Body() const;
    /// The body as it arrives at its target: not on its way any more. Without any report where it is sent again.
    std::string BodyAtTarget(bool withReport) const;

    /// By its row, else by its body's seconds_to_live, else so many seconds after it was made.
    long ExpiresAt(long defaultSeconds) const;

private:
    std::string BodyWith(const Json::Value& report) const;

    VK_MESSAGE_HEADER m_header;
    HostMessageFile m_file;
    std::string m_fault;
    Json::Value m_document; ///< the body without its report
    Json::Value m_report;   ///< an object
};

} // namespace vk
