#include "MessageRun.h"

#include "StopSignal.h"

#include <algorithm>

namespace vk {

namespace {

using Reports = VKMessengerReportsMngrInterface;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPollInterval(10);

} // namespace

MessageRun::MessageRun(DriverExchange& exchange, Timeline& timeline, const std::atomic<bool>& stop)
    : m_exchange(exchange), m_timeline(timeline), m_stop(stop)
{
}

void MessageRun::Send(std::unique_ptr<HostMessageFile> file)
{
    const MessageReport report = m_exchange.Send(*file);
    m_anyFailed = m_anyFailed || report.status == Reports::RS_FAILED;
    m_timeline.Show(file->strJobID, "send", report);
    m_entries.push_back({std::move(file), report.keepOpen});
}

void MessageRun::WaitForAnswers(std::chrono::milliseconds limit)
{
    const auto end = Clock::now() + limit;
    ShowReports();
    while (AnyOpen() && !m_stop && Clock::now() < end) {
        for (Entry& entry : m_entries)
            if (entry.open)
                m_exchange.Ask(*entry.file);
        ShowReports();
        m_exchange.KeepGoing();
        if (AnyOpen())
            SleepUntilStop(kPollInterval);
    }
}

bool MessageRun::AnyOpen() const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [](const Entry& entry) { return entry.open; });
}

void MessageRun::ShowReports()
{
    while (VKMessageFile* const file = m_exchange.NextReturned())
        ShowReport(file);
}

void MessageRun::ShowReport(VKMessageFile* file)
{
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& candidate) { return candidate.file.get() == file; });
    if (entry == m_entries.end())
        return;
    if (file->bDelete) {
        entry->open = false;
        return;
    }
    const MessageReport report = entry->file->TakeReport().value_or(entry->file->Now());
    entry->open = entry->open && report.keepOpen;
    m_anyFailed = m_anyFailed || report.status == Reports::RS_FAILED;
    m_timeline.Show(file->strJobID, "report", report);
}

} // namespace vk
