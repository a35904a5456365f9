#include "MessageRun.h"

#include "VKconCriticalSection.h"

#include <algorithm>
#include <thread>

namespace vk {

namespace {

using Reports = VKMessengerReportsMngrInterface;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPollInterval(10);
constexpr std::chrono::seconds kPeriodicInterval(1);

bool MoreMayFollow(Reports::ReportsStatus status) { return status == Reports::RS_SENT || status == Reports::RS_PENDING; }

} // namespace

MessageRun::MessageRun(VKProtocolDriverInterface& driver, VKMsgFileQueue& queue, Timeline& timeline,
                       const std::atomic<bool>& stop)
    : m_driver(driver), m_queue(queue), m_timeline(timeline), m_stop(stop)
{
}

void MessageRun::Send(std::unique_ptr<HostMessageFile> file)
{
    Reports::ReportsStatus status = Reports::RS_FAILED;
    const bool taken = m_driver.SendAMessage(file.get(), status);
    // What happened to a file that the driver took only to say no is all in its answer.
    const bool open = taken && MoreMayFollow(status);
    if (!open)
        file->DropReports();
    m_anyFailed = m_anyFailed || !taken;

    MessageReport report = file->Now();
    report.status = taken ? status : Reports::RS_FAILED;
    report.keepOpen = open;
    m_timeline.Show(file->strJobID, "send", report);
    m_entries.push_back({std::move(file), open});
}

void MessageRun::WaitForAnswers(std::chrono::milliseconds limit)
{
    const auto end = Clock::now() + limit;
    auto periodic = Clock::now() + kPeriodicInterval;
    ShowReports();
    while (AnyOpen() && !m_stop && Clock::now() < end) {
        for (Entry& entry : m_entries)
            if (entry.open) {
                // The output only repeats what comes back through the queue.
                Reports::ReportsStatus status = Reports::RS_UNCHANGED;
                m_driver.Send2WayRespQuery(entry.file.get(), status);
            }
        ShowReports();
        if (Clock::now() >= periodic) {
            m_driver.PeriodicEvent();
            periodic += kPeriodicInterval;
        }
        if (AnyOpen())
            std::this_thread::sleep_for(kPollInterval);
    }
}

bool MessageRun::AnyOpen() const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [](const Entry& entry) { return entry.open; });
}

void MessageRun::ShowReports()
{
    while (ShowNextReport()) {
    }
}

VKMessageFile* MessageRun::PopFile()
{
    const ScopedSection guard(m_queue.objLock);
    if (m_queue.queFiles.empty())
        return nullptr;
    VKMessageFile* const file = m_queue.queFiles.front();
    m_queue.queFiles.pop_front();
    return file;
}

bool MessageRun::ShowNextReport()
{
    VKMessageFile* const file = PopFile();
    if (file == nullptr)
        return false;
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& candidate) { return candidate.file.get() == file; });
    if (entry == m_entries.end())
        return true;
    if (file->bDelete) {
        entry->open = false;
        return true;
    }
    const MessageReport report = entry->file->TakeReport().value_or(entry->file->Now());
    entry->open = entry->open && report.keepOpen;
    m_anyFailed = m_anyFailed || report.status == Reports::RS_FAILED;
    m_timeline.Show(file->strJobID, "report", report);
    return true;
}

} // namespace vk
