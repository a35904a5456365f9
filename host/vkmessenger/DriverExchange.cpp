#include "DriverExchange.h"

#include "VKconCriticalSection.h"

namespace vk {

namespace {

using Reports = VKMessengerReportsMngrInterface;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kPeriodicInterval(1);

bool MoreMayFollow(Reports::ReportsStatus status)
{
    return status == Reports::RS_SENT || status == Reports::RS_PENDING;
}

} // namespace

DriverExchange::DriverExchange(VKProtocolDriverInterface& driver, VKMsgFileQueue& queue)
    : m_driver(driver), m_queue(queue), m_nextPeriodic(Clock::now() + kPeriodicInterval)
{
}

MessageReport DriverExchange::Send(HostMessageFile& file)
{
    file.StartOver();
    Reports::ReportsStatus status = Reports::RS_FAILED;
    const bool taken = m_driver.SendAMessage(&file, status);
    const bool open = taken && MoreMayFollow(status);
    // What happened to a file that the driver took only to say no is all in its answer.
    if (!open)
        file.DropReports();
    MessageReport report = file.Now();
    report.status = taken ? status : Reports::RS_FAILED;
    report.keepOpen = open;
    return report;
}

void DriverExchange::Ask(HostMessageFile& file)
{
    // The output only repeats what comes back through the queue.
    Reports::ReportsStatus status = Reports::RS_UNCHANGED;
    m_driver.Send2WayRespQuery(&file, status);
}

VKMessageFile* DriverExchange::NextReturned()
{
    const ScopedSection guard(m_queue.objLock);
    if (m_queue.queFiles.empty())
        return nullptr;
    VKMessageFile* const file = m_queue.queFiles.front();
    m_queue.queFiles.pop_front();
    return file;
}

void DriverExchange::KeepGoing()
{
    if (Clock::now() < m_nextPeriodic)
        return;
    m_driver.PeriodicEvent();
    m_nextPeriodic = Clock::now() + kPeriodicInterval;
}

void DriverExchange::End()
{
    if (!m_ended)
        m_driver.Cleanup();
    m_ended = true;
}

} // namespace vk
