#include "Timeline.h"

#include "TextLine.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace vk {

namespace {

std::string JsonText(const std::string& jobId, const char* event, const MessageReport& report)
{
    Json::Value line(Json::objectValue);
    line["time"] = IsoTime(report.time);
    line["job_id"] = jobId;
    line["event"] = event;
    line["status"] = static_cast<int>(report.status);
    line["status_name"] = ReportsStatusWord(report.status);
    line["keep_open"] = report.keepOpen;
    line["text"] = report.text;
    line["delivery_status"] = report.deliveryStatus;
    line["response"] = report.response;
    line["failure_reason"] = report.failureReason;
    return JsonLine(line);
}

std::string Padded(std::string text, std::size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

/// "03:00:12.345  job-1  report  DELIVERED       DELIVERED-READ, more may follow"
std::string ReadableText(const std::string& jobId, const char* event, const MessageReport& report)
{
    std::string details;
    const auto add = [&](const std::string& detail) { details += (details.empty() ? "" : ", ") + detail; };
    if (!report.response.empty())
        add("'" + report.response + "'");
    if (report.status == VKMessengerReportsMngrInterface::RS_DELIVERED && !report.deliveryStatus.empty())
        add(report.deliveryStatus);
    else if (!report.text.empty())
        add(report.text);
    if (!report.failureReason.empty())
        add(report.failureReason);
    if (report.keepOpen)
        add("more may follow");
    std::string line = ClockTime(report.time) + "  " + jobId + "  " + Padded(event, 8) +
                       Padded(ReportsStatusWord(report.status), 15) + " " + Printable(details);
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace

void Timeline::Show(const std::string& jobId, const char* event, const MessageReport& report)
{
    const std::string line =
        (m_form == Form::Json ? JsonText(jobId, event, report) : ReadableText(Printable(jobId), event, report)) + "\n";
    if (std::fwrite(line.data(), 1, line.size(), m_out) != line.size() || std::fflush(m_out) != 0)
        throw std::runtime_error(std::string("standard output: ") + std::strerror(errno));
}

} // namespace vk
