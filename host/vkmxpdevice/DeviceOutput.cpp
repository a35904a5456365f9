#include "DeviceOutput.h"

#include "Clock.h"
#include "TextLine.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace vk {

void DeviceOutput::Online(const std::string& jid)
{
    Json::Value line(Json::objectValue);
    line["jid"] = jid;
    Write("online", line, jid);
}

void DeviceOutput::Message(const std::string& from, const VKMXPmMessage& message)
{
    Json::Value line(Json::objectValue);
    line["from"] = from;
    line["sequence"] = message.m_iSequence;
    line["job_id"] = message.m_strJobID;
    line["two_way"] = message.m_bTwoWay;
    line["sender"] = message.m_strSender;
    line["dispatch_at"] = message.m_tDispatchTime;
    line["severity"] = message.m_iSeverity;
    line["expiration"] = message.m_iExpiration;
    line["confidential"] = message.m_bConfidential;
    line["subject"] = message.m_strSubject;
    line["body"] = message.m_strBody;
    line["response_choices"] = Json::arrayValue;
    for (const std::string& choice : message.m_vecResponseChoices)
        line["response_choices"].append(choice);
    line["attachments"] = Json::arrayValue;
    for (const auto& attachment : message.m_vecAttachments)
        line["attachments"].append(attachment.m_strID);
    line["custom_parameters"] = message.m_strCustomParameters;
    Write("message", line,
          message.m_strJobID + "  from " + message.m_strSender + ": " + message.m_strSubject + ": " + message.m_strBody);
}

void DeviceOutput::Answer(const std::string& jobId, const std::string& answer)
{
    Json::Value line(Json::objectValue);
    line["job_id"] = jobId;
    line["answer"] = answer;
    Write("answer", line, jobId + "  " + answer);
}

void DeviceOutput::Response(const VKMXPmBase& packet)
{
    Json::Value line(Json::objectValue);
    line["packet"] = packet.GetName();
    line["sequence"] = packet.m_iSequence;
    line["code"] = packet.m_iResponseCode;
    line["error_code"] = packet.m_iResponseErrorCode;
    line["message"] = packet.m_strResponseMessage;
    Write("response", line, std::string(packet.GetName()) + "  " + packet.m_strResponseMessage);
}

void DeviceOutput::File(const DeviceFiles::Arrived& file)
{
    Json::Value line(Json::objectValue);
    line["job_id"] = file.jobId;
    line["name"] = file.name;
    line["size"] = static_cast<Json::Int64>(file.size);
    line["sha256"] = file.sha256;
    line["over"] = file.over;
    if (!file.savedAs.empty())
        line["saved_as"] = file.savedAs;
    Write("file", line,
          file.jobId + "  " + file.name + ", " + std::to_string(file.size) + " bytes, SHA-256 " + file.sha256);
}

void DeviceOutput::Other(const std::string& from, const std::string& what)
{
    Json::Value line(Json::objectValue);
    line["from"] = from;
    line["text"] = what;
    Write("other", line, "from " + from + ": " + what);
}

void DeviceOutput::Write(const char* event, Json::Value line, const std::string& readable)
{
    const TimePoint now = std::chrono::system_clock::now();
    std::string text;
    if (m_json) {
        line["time"] = IsoTime(now);
        line["event"] = event;
        text = JsonLine(line);
    } else {
        std::string name = event;
        name.resize(9, ' ');
        text = ClockTime(now) + "  " + name + " " + Printable(readable);
    }
    text += '\n';
    if (std::fwrite(text.data(), 1, text.size(), m_out) != text.size() || std::fflush(m_out) != 0)
        throw std::runtime_error(std::string("standard output: ") + std::strerror(errno));
}

} // namespace vk
