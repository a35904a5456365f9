// What becomes of one message in a service's hands, stage by stage.

#include "QueueFeeder.h"

#include "VKDBexception.h"
#include "VKLog.h"
#include "VKRecordText.h"

#include <algorithm>
#include <ctime>

namespace vk {

namespace {

using Reports = VKMessengerReportsMngrInterface;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// A driver's reason after which another try would be in vain.
constexpr const char* kReceiverOffline = "Receiver is offline.";
/// What the store refuses is tried again after a second, then after twice the time, up to this.
constexpr milliseconds kRetry(1000);
constexpr milliseconds kLongestRetry(30000);
/// A server that does not answer holds the service up so long; its other messages must not do so one by one.
constexpr seconds kLongFailure(1);
/// A row that is being sent is given to others when it has not changed for 20 minutes.
constexpr seconds kTouchInterval(300);

struct QueueWord
{
    int queue;
    const char* word;
};
constexpr QueueWord kQueueWords[] = {{kArchiveQueue, "archive"}, {kErrorQueue, "error"}, {kWaitingQueue, "waiting"}};

std::string WordOf(int queue)
{
    for (const QueueWord& row : kQueueWords)
        if (row.queue == queue)
            return row.word;
    return "queue " + std::to_string(queue);
}

} // namespace

void QueueFeeder::Enter(Entry& entry, Stage stage, milliseconds until)
{
    --m_counts[static_cast<std::size_t>(entry.stage)];
    ++m_counts[static_cast<std::size_t>(stage)];
    entry.stage = stage;
    entry.due = Clock::now() + until;
}

void QueueFeeder::StepAll()
{
    const auto now = Clock::now();
    for (auto& [id, entry] : m_entries) {
        if (m_parts.stop)
            return;
        if (entry.stage != Stage::Gone && entry.due <= now)
            Step(entry);
    }
}

void QueueFeeder::Step(Entry& entry)
{
    if (entry.stage == Stage::Sending)
        return Send(entry); // with the store or without it
    if (Attempt([&] { StepStored(entry); })) {
        entry.storeFailures = 0;
        return;
    }
    const bool isAway = Clock::now() < m_awayUntil;
    entry.storeFailures += isAway ? 0 : 1;
    entry.due = Clock::now() + std::min(kRetry * (1 << std::clamp(entry.storeFailures - 1, 0, 5)), kLongestRetry);
}

void QueueFeeder::StepStored(Entry& entry)
{
    switch (entry.stage) {
    case Stage::Settling:
        return Settle(entry);
    case Stage::Travelling:
        m_parts.router.Own().Touch(entry.message->Name());
        entry.due = Clock::now() + kTouchInterval;
        return;
    case Stage::Asking:
        entry.message->NoteReason("No answer came within " + std::to_string(m_parts.settings.answerSeconds) +
                                  " seconds.");
        Leave(entry, kArchiveQueue);
        return Move(entry);
    case Stage::Leaving:
        return Move(entry);
    case Stage::Sending:
    case Stage::Gone:
        return;
    }
}

void QueueFeeder::Send(Entry& entry)
{
    QueueMessage& message = *entry.message;
    const auto started = Clock::now();
    Clock::time_point& hold = m_holds[message.File().strCarrierName];
    if (started < hold) {
        entry.due = hold;
        return;
    }
    const long now = std::time(nullptr);
    const long expiry = message.ExpiresAt(m_parts.settings.expireSeconds);
    message.File().iSecondsToLive = static_cast<int>(std::clamp<long>(expiry - now, 0, INT32_MAX));
    const MessageReport report = m_parts.exchange.Send(message.File());
    m_lastSent = Clock::now();
    if (report.status == Reports::RS_FAILED && m_lastSent - started >= kLongFailure)
        hold = m_lastSent + seconds(m_parts.settings.retrySeconds);
    message.Note(report);
    m_parts.timeline.Show(message.Job(), "send", report);
    m_parts.tellErrors(message.Job());
    switch (report.status) {
    case Reports::RS_FAILED:
        if (++entry.tries >= m_parts.settings.tries || report.failureReason == kReceiverOffline)
            return Fail(entry, report.failureReason);
        entry.due = Clock::now() + seconds(m_parts.settings.retrySeconds);
        return;
    case Reports::RS_DEVICE_OFFLINE:
        message.Header().expiry_time = expiry;
        return Leave(entry, kWaitingQueue);
    case Reports::RS_SENT:
        message.NoteSent(now, m_parts.settings.service);
        return Enter(entry, Stage::Settling, milliseconds(m_parts.settings.settleMilliseconds));
    case Reports::RS_PENDING:
        message.NoteSent(now, m_parts.settings.service);
        return Enter(entry, Stage::Travelling, kTouchInterval);
    default:
        return Leave(entry, kArchiveQueue);
    }
}

/// It has left this process, or its device has it: it will not be sent again.
void QueueFeeder::Settle(Entry& entry)
{
    if (entry.message->File().bTwoWay == 0) {
        Leave(entry, kArchiveQueue);
        return Move(entry);
    }
    if (Store(entry, std::max(entry.message->QueryCount(), 1)))
        Enter(entry, Stage::Asking, seconds(m_parts.settings.answerSeconds));
}

void QueueFeeder::Renew(Entry& entry) { Store(entry, entry.message->QueryCount() + 1); }

/// Stores it as one that is asked about, with its report, and so that it is due for the next question in time.
bool QueueFeeder::Store(Entry& entry, int queryCount)
{
    QueueMessage& message = *entry.message;
    VK_MESSAGE_HEADER row = message.Header();
    row.next_query_time = std::time(nullptr) + m_parts.settings.querySeconds;
    SetText(row.msg_name, message.NameAs('Q', queryCount), "msg_name");
    if (QueueRouter::Change(m_parts.router.Own(), row, message.Body(), message.Name())) {
        message.Header() = row;
        return true;
    }
    VK_LOG_WARN(&m_parts.logger, "Job ID: [%s] >> The message '%s' is not in queue %d any more.", message.Job().c_str(),
                message.Name().c_str(), m_parts.settings.queue);
    Enter(entry, Stage::Gone);
    return false;
}

void QueueFeeder::Leave(Entry& entry, int target)
{
    entry.target = target;
    Enter(entry, Stage::Leaving);
}

void QueueFeeder::Move(Entry& entry)
{
    if (entry.target == 0)
        m_parts.router.Own().Delete(entry.message->Name());
    else if (m_parts.router.Move(*entry.message, m_parts.router.Own(), entry.target))
        Show(*entry.message, entry.target);
    else
        VK_LOG_WARN(&m_parts.logger, "Job ID: [%s] >> The message '%s' is not in queue %d any more.",
                    entry.message->Job().c_str(), entry.message->Name().c_str(), m_parts.settings.queue);
    Enter(entry, Stage::Gone);
}

void QueueFeeder::Fail(Entry& entry, const std::string& reason)
{
    MessageReport report = entry.message->File().Now();
    report.status = Reports::RS_FAILED;
    report.failureReason = reason;
    entry.message->Note(report);
    m_anyFailed = true;
    Leave(entry, kErrorQueue);
}

void QueueFeeder::TakeReports()
{
    while (VKMessageFile* const file = m_parts.exchange.NextReturned()) {
        const auto id = m_ids.find(file);
        if (id == m_ids.end())
            continue;
        Entry& entry = m_entries.at(id->second);
        HostMessageFile& own = entry.message->File();
        if (own.bDelete) {
            Leave(entry, 0);
        } else {
            TakeReport(entry, own.TakeReport().value_or(own.Now()));
        }
    }
}

void QueueFeeder::TakeReport(Entry& entry, const MessageReport& report)
{
    QueueMessage& message = *entry.message;
    m_parts.timeline.Show(message.Job(), "report", report);
    if (entry.stage == Stage::Travelling)
        return TakeReportOnTheWay(entry, report);
    message.Note(report);
    if (entry.stage == Stage::Leaving || entry.stage == Stage::Gone)
        return;
    if (!report.keepOpen) {
        const bool failed = report.status == Reports::RS_FAILED;
        m_anyFailed = m_anyFailed || failed;
        Leave(entry, failed ? kErrorQueue : kArchiveQueue);
    } else if (entry.stage == Stage::Settling) {
        entry.due = {};
    } else if (entry.stage == Stage::Asking) {
        Attempt([&] { Store(entry, message.QueryCount()); });
    }
}

/// The driver holds on to the file as long as its attachments travel, whatever its receiver says meanwhile. Behind them
/// an answer may still come.
void QueueFeeder::TakeReportOnTheWay(Entry& entry, const MessageReport& report)
{
    const bool failed = report.status == Reports::RS_FAILED;
    const bool filesEnded = !report.keepOpen && (failed || report.status == Reports::RS_SENT);
    if (!filesEnded) {
        entry.message->Note(report);
        entry.answered = entry.answered || !report.keepOpen;
        return;
    }
    if (entry.answered) {
        entry.message->NoteReason(report.failureReason);
        return Leave(entry, kArchiveQueue);
    }
    entry.message->Note(report);
    if (!failed)
        return Enter(entry, Stage::Settling);
    m_anyFailed = true;
    Leave(entry, kErrorQueue);
}

void QueueFeeder::Show(QueueMessage& message, int target)
{
    MessageReport report = message.File().Now();
    report.status = message.Status();
    report.text = "to " + WordOf(target);
    report.failureReason = message.Reason();
    report.deliveryStatus.clear();
    m_parts.timeline.Show(message.Job(), "move", report);
}

/// At the end of a round, when nothing that the driver pushed back points to them any more.
void QueueFeeder::DropThoseGone()
{
    if (CountOf(Stage::Gone) == 0)
        return;
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        if (entry->second.stage != Stage::Gone) {
            ++entry;
            continue;
        }
        m_ids.erase(&entry->second.message->File());
        m_jobs.erase(m_jobs.find(entry->second.message->File().strJobID));
        entry = m_entries.erase(entry);
    }
    m_counts[static_cast<std::size_t>(Stage::Gone)] = 0;
}

} // namespace vk
