#include "HostMessageFile.h"

#include "VKstringReplace.h"

#include <ctime>
#include <strings.h>

namespace vk {

namespace {

constexpr int kDefaultPort = 5222;
constexpr int kTerminalAction = 0;

bool SameText(const std::string& left, const std::string& right)
{
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

bool IsVerdict(const std::string& response) { return response == "CONFIRM" || response == "REFUSE"; }

} // namespace

HostMessageFile::HostMessageFile()
{
    iPort = kDefaultPort;
    tDispatchAt = static_cast<std::int32_t>(std::time(nullptr));
}

const VKMessageFile::ResponseChoice* HostMessageFile::FindChoice(const std::string& response) const
{
    // Drivers announce a choice with its colons replaced, so both forms come back.
    const std::string announced = VKstringReplaceColon(response);
    for (const ResponseChoice& choice : vecResponseChoices)
        if (SameText(VKstringReplaceColon(choice.strText), announced))
            return &choice;
    return nullptr;
}

int HostMessageFile::GetResponseActionType(int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= vecReceivedResponses.size())
        return kTerminalAction;
    const ResponseChoice* choice = FindChoice(vecReceivedResponses[static_cast<std::size_t>(index)].strText);
    return choice == nullptr ? kTerminalAction : choice->iType;
}

void HostMessageFile::SetFailureReason(const std::string& reason)
{
    const std::lock_guard guard(m_mutex);
    m_now.failureReason = reason;
}

void HostMessageFile::SetDeliveryStatus(const std::string& status)
{
    const std::lock_guard guard(m_mutex);
    m_now.deliveryStatus = status;
}

void HostMessageFile::SetStatusText(const std::string& text)
{
    const std::lock_guard guard(m_mutex);
    m_now.text = text;
    MessageReport report = m_now;
    report.time = std::chrono::system_clock::now();
    report.status = eReportStatus;
    report.keepOpen = bKeepOpen;
    m_reports.push_back(std::move(report));
    // A response belongs to the report that it causes, not to those that follow.
    m_now.response.clear();
}

bool HostMessageFile::AddReceivedResponse(const std::string& response)
{
    const std::lock_guard guard(m_mutex);
    m_now.response = response;
    if (!IsVerdict(response) && !vecResponseChoices.empty() && FindChoice(response) == nullptr)
        return false;
    vecReceivedResponses.push_back({response, IsoTime(std::chrono::system_clock::now())});
    return true;
}

void HostMessageFile::SetCarrierReference(const std::string& reference) { m_carrierReference = reference; }

MessageReport HostMessageFile::Now() const
{
    const std::lock_guard guard(m_mutex);
    MessageReport report = m_now;
    report.time = std::chrono::system_clock::now();
    return report;
}

std::optional<MessageReport> HostMessageFile::TakeReport()
{
    const std::lock_guard guard(m_mutex);
    if (m_reports.empty())
        return std::nullopt;
    MessageReport report = std::move(m_reports.front());
    m_reports.pop_front();
    return report;
}

void HostMessageFile::DropReports()
{
    const std::lock_guard guard(m_mutex);
    m_reports.clear();
}

void HostMessageFile::StartOver()
{
    const std::lock_guard guard(m_mutex);
    m_reports.clear();
    m_now = {};
}

} // namespace vk
