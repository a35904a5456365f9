#include "QueueRouter.h"

#include "VKMessageName.h"
#include "VKRecordText.h"

#include <algorithm>
#include <ctime>
#include <stdexcept>

namespace vk {

namespace {

/// Whether two rows are of one message, whatever they are called.
bool IsSame(const VK_MESSAGE_HEADER& left, const VK_MESSAGE_HEADER& right)
{
    return left.create_time == right.create_time && std::string(left.pin) == right.pin;
}

std::string JobOf(const char* name) { return MessageName::Parse(name).job; }

} // namespace

QueueRouter::QueueRouter(VKDBsystem& system, int queue, const std::string& service)
    : m_own(system, queue, service), m_archive(system, kArchiveQueue, service), m_error(system, kErrorQueue, service),
      m_waiting(system, kWaitingQueue, service)
{
}

QueueStore& QueueRouter::Store(int number)
{
    for (QueueStore* store : {&m_own, &m_archive, &m_error, &m_waiting})
        if (store->Number() == number)
            return *store;
    throw std::runtime_error("a message is on its way to queue " + std::to_string(number) +
                             ", which this service does not use");
}

bool QueueRouter::IsCutOff() const
{
    return m_own.IsCutOff() || m_archive.IsCutOff() || m_error.IsCutOff() || m_waiting.IsCutOff();
}

void QueueRouter::Reconnect()
{
    for (QueueStore* store : {&m_own, &m_archive, &m_error, &m_waiting})
        store->Reconnect();
}

bool QueueRouter::Change(QueueStore& store, VK_MESSAGE_HEADER& row, const std::string& body, const std::string& oldName)
{
    return store.Change(row, body, oldName) || (oldName != row.msg_name && store.Change(row, body, row.msg_name));
}

bool QueueRouter::Knows(int number) const
{
    return number == m_own.Number() || number == kArchiveQueue || number == kErrorQueue || number == kWaitingQueue;
}

bool QueueRouter::Move(QueueMessage& message, QueueStore& from, int target)
{
    const bool ends = target == kArchiveQueue || target == kErrorQueue;
    const bool isSentAgain = MessageName::Parse(message.Name()).status == 'R';
    message.SetTarget(target);
    if (!(ends && isSentAgain) && !NoteTarget(message, from))
        return false;
    Arrive(message, from);
    from.Delete(message.Name());
    return true;
}

bool QueueRouter::NoteTarget(QueueMessage& message, QueueStore& from)
{
    VK_MESSAGE_HEADER row = message.Header();
    // Due at once for whoever takes it over.
    row.next_query_time = 0;
    SetText(row.msg_name, message.NameAs('Q', std::max(message.QueryCount(), 1)), "msg_name");
    if (!Change(from, row, message.Body(), message.Name()))
        return false;
    message.Header() = row;
    return true;
}

void QueueRouter::FinishMove(QueueMessage& message, QueueStore& from)
{
    if (!HasArrived(message, from))
        Arrive(message, from);
    from.Delete(message.Name());
}

void QueueRouter::Arrive(QueueMessage& message, QueueStore& from)
{
    QueueStore& target = Store(message.Target());
    VK_MESSAGE_HEADER row = message.Header();
    SetText(row.msg_name, FreeName(message, target), "msg_name");
    row.last_paging_queue_id = from.Number();
    const bool isToBeSent = message.Target() == m_own.Number() || message.Target() == kWaitingQueue;
    target.Add(row, message.BodyAtTarget(!isToBeSent));
}

/// "M.0.JOB.mxp", or with "~2" behind the job when another message has that name: none is overwritten by another.
std::string QueueRouter::FreeName(QueueMessage& message, QueueStore& target)
{
    constexpr std::size_t kLongestJob = 64;
    MessageName name = MessageName::Parse(message.Name());
    name.status = 'M';
    name.queryCount = 0;
    const std::string job = name.job;
    for (int number = 2;; ++number) {
        VK_MESSAGE_HEADER present;
        if (!target.Find(name.Text(), present) || IsSame(present, message.Header()))
            return name.Text();
        const std::string behind = "~" + std::to_string(number);
        std::size_t end = std::min(job.size(), kLongestJob - behind.size());
        while (end > 0 && end < job.size() && (job[end] & 0xC0) == 0x80) // a character stays whole
            --end;
        name.job = job.substr(0, end) + behind;
    }
}

/// What reached the queue that sends it may have gone on from there since.
bool QueueRouter::HasArrived(QueueMessage& message, QueueStore& from)
{
    const VK_MESSAGE_HEADER& own = message.Header();
    for (QueueStore* store : {&m_own, &m_archive, &m_error, &m_waiting})
        for (const VK_MESSAGE_HEADER& other : store->List("", own.pin))
            if (JobOf(other.msg_name) == JobOf(own.msg_name) && IsSame(other, own) &&
                !(store == &from && other.id == own.id))
                return true;
    return false;
}

} // namespace vk
