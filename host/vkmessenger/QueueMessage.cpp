#include "QueueMessage.h"

#include "MessageFields.h"
#include "MessageFileReader.h"
#include "Options.h"
#include "TextLine.h"
#include "Utf8.h"
#include "VKMessageName.h"
#include "VKbase64.h"

#include <algorithm>

namespace vk {

namespace {

/// A body that is no JSON object is kept as a text, beside the report.
Json::Value Wrapped(const std::string& body)
{
    Json::Value document(Json::objectValue);
    if (FindInvalidUtf8(body) == std::string_view::npos)
        document["unreadable"] = body;
    else
        document["unreadable_base64"] = EncodeBase64(body);
    return document;
}

/// Of a report that stands in a body only what this program writes.
Json::Value CheckedReport(const Json::Value& report)
{
    Json::Value checked(Json::objectValue);
    if (!report.isObject())
        return checked;
    for (const char* key : {"status", "to"})
        if (report[key].isInt())
            checked[key] = report[key];
    if (report["sent_at"].isInt64())
        checked["sent_at"] = report["sent_at"];
    for (const char* key : {"reason", "status_name", "delivery_status", "text", "time", "service"})
        if (report[key].isString())
            checked[key] = report[key];
    for (const Json::Value& response : report["responses"])
        if (response.isObject() && response["text"].isString() && response["received_at"].isString())
            checked["responses"].append(response);
    return checked;
}

} // namespace

QueueMessage::QueueMessage(const VK_MESSAGE_HEADER& header, const std::string& body)
    : m_header(header), m_report(Json::objectValue)
{
    try {
        m_document = ParseObject(body);
    } catch (const InputError& error) {
        m_fault = error.what();
        m_document = Wrapped(body);
        return;
    }
    if (MessageName::Parse(Name()).status == 'Q')
        m_report = CheckedReport(std::as_const(m_document)[kReportKey]);
    m_document.removeMember(kReportKey);
    try {
        ReadMessage(m_document, m_file);
    } catch (const InputError& error) {
        m_fault = error.what();
    }
    for (const Json::Value& response : std::as_const(m_report)["responses"])
        m_file.vecReceivedResponses.push_back({response["text"].asString(), response["received_at"].asString()});
}

std::string QueueMessage::Job() const
{
    return m_file.strJobID.empty() ? MessageName::Parse(Name()).job : m_file.strJobID;
}

std::string QueueMessage::NameAs(char status, int queryCount) const
{
    MessageName name = MessageName::Parse(Name());
    name.status = status;
    name.queryCount = queryCount;
    return name.Text();
}

int QueueMessage::QueryCount() const { return MessageName::Parse(Name()).queryCount; }

void QueueMessage::Note(const MessageReport& report)
{
    m_report["status"] = static_cast<int>(report.status);
    m_report["status_name"] = ReportsStatusWord(report.status);
    m_report["reason"] = report.failureReason;
    m_report["text"] = report.text;
    m_report["delivery_status"] = report.deliveryStatus;
    m_report["time"] = IsoTime(report.time);
    Json::Value responses(Json::arrayValue);
    for (const auto& received : m_file.vecReceivedResponses) {
        Json::Value& response = responses.append(Json::Value(Json::objectValue));
        response["text"] = received.strText;
        response["received_at"] = received.strReceivedAt;
    }
    m_report["responses"] = responses;
}

VKMessageFile::ReportsStatus QueueMessage::Status() const
{
    return static_cast<VKMessageFile::ReportsStatus>(m_report.get("status", 0).asInt());
}

void QueueMessage::NoteSent(long time, const std::string& service)
{
    m_report["sent_at"] = Json::Int64(time);
    m_report["service"] = service;
}

std::string QueueMessage::BodyWith(const Json::Value& report) const
{
    if (report.empty())
        return JsonLine(m_document);
    Json::Value document = m_document;
    document[kReportKey] = report;
    return JsonLine(document);
}

std::string QueueMessage::Body() const { return BodyWith(m_report); }

std::string QueueMessage::BodyAtTarget(bool withReport) const
{
    Json::Value report(Json::objectValue);
    if (withReport) {
        report = m_report;
        report.removeMember("to");
    }
    return BodyWith(report);
}

long QueueMessage::ExpiresAt(long defaultSeconds) const
{
    if (m_header.expiry_time != 0)
        return m_header.expiry_time;
    const long made = m_header.create_time != 0 ? m_header.create_time : m_header.last_modify_time;
    return made + (m_file.iSecondsToLive > 0 ? m_file.iSecondsToLive : defaultSeconds);
}

} // namespace vk
