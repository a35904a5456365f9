#include "QueueFeeder.h"

#include "StopSignal.h"
#include "TextLine.h"
#include "VKDBexception.h"
#include "VKLog.h"
#include "VKMessageName.h"

#include <algorithm>
#include <ctime>
#include <thread>

namespace vk {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int kPage = 50;
/// More than so many messages that are neither asked about nor gone are not taken in.
constexpr std::size_t kMostInHand = 4000;
constexpr seconds kHousekeeping(60);
constexpr milliseconds kRetry(1000);
/// The driver is asked about all open messages every ten milliseconds, more rarely when they are thousands.
constexpr milliseconds kAskInterval(10);
constexpr std::chrono::microseconds kAskShare(10);
/// A message that cannot be read is tried so often before others get their turn for half an hour.
constexpr int kLoadTries = 3;
/// What was handed over last has so long to leave before the driver is ended.
constexpr milliseconds kLastWords(500);

std::string NameWith(char status, const VK_MESSAGE_HEADER& header)
{
    MessageName name = MessageName::Parse(header.msg_name);
    name.status = status;
    return name.Text();
}

} // namespace

/// The driver lets go of the files first.
QueueFeeder::~QueueFeeder() { m_parts.exchange.End(); }

/// Does something with the store. What does not come out is told and is tried again by whoever comes back to it.
bool QueueFeeder::Attempt(const std::function<void()>& work)
{
    if (Clock::now() < m_awayUntil)
        return false;
    try {
        const StoreWatch::Operation watched(m_parts.watch);
        m_parts.router.Reconnect();
        NoteWorks();
        work();
        return true;
    } catch (const VKDBexception& error) {
        NoteTrouble(OneLine(error.what()));
        return false;
    }
}

void QueueFeeder::NoteTrouble(const std::string& trouble)
{
    const auto now = Clock::now();
    if (m_parts.router.IsCutOff()) {
        m_awaySince = m_awaySince == Clock::time_point{} ? now : m_awaySince;
        m_awayUntil = now + kRetry;
    }
    if (const std::string told = m_troubles.Pass(trouble, now); !told.empty())
        VK_LOG_ERROR(&m_parts.logger, "Queue %d: %s", m_parts.settings.queue, told.c_str());
    m_parts.tellErrors(m_parts.settings.service);
}

void QueueFeeder::NoteWorks()
{
    if (m_awaySince == Clock::time_point{})
        return;
    const auto time = std::chrono::ceil<seconds>(Clock::now() - m_awaySince);
    m_awaySince = {};
    VK_LOG_WARN(&m_parts.logger, "Queue %d: connected to the server again, after %lld seconds.", m_parts.settings.queue,
                static_cast<long long>(time.count()));
}

void QueueFeeder::Run()
{
    TakeBack();
    m_lastSent = Clock::now();
    while (!m_parts.stop && !IsDone()) {
        Round();
        if (!m_parts.stop)
            SleepUntilStop(Pause());
    }
    Finish();
}

/// What this service held when it ended. What it was asking about is due at once: its answers come to this service's
/// name.
void QueueFeeder::TakeBack()
{
    const StoreWatch::Operation watched(m_parts.watch);
    m_parts.router.Own().GiveBack(m_parts.settings.service);
    m_parts.router.Waiting().GiveBack(m_parts.settings.service);
    QueueStore& own = m_parts.router.Own();
    for (const VK_MESSAGE_HEADER& header : own.List(m_parts.settings.protocol, "", "Q.")) {
        VK_MESSAGE_HEADER row;
        std::string body;
        if (header.next_query_time <= std::time(nullptr) || !own.Load(header.msg_name, row, body) ||
            QueueMessage(row, body).SentBy() != m_parts.settings.service)
            continue;
        row.next_query_time = 0;
        own.Change(row, body, row.msg_name);
    }
}

void QueueFeeder::Round()
{
    KeepHouse();
    Poll();
    StepAll();
    Ask();
    TakeReports();
    DropThoseGone();
    m_parts.exchange.KeepGoing();
    m_parts.tellErrors("while waiting");
}

void QueueFeeder::KeepHouse()
{
    Attempt([&] { m_parts.waiting.Check([&](QueueMessage& message) { Show(message, message.Target()); }); });
    if (Clock::now() < m_nextHousekeeping)
        return;
    m_nextHousekeeping = Clock::now() + kHousekeeping;
    Attempt([&] {
        m_parts.router.Own().GiveBackForgotten();
        m_parts.router.Waiting().GiveBackForgotten();
    });
}

void QueueFeeder::Poll()
{
    if (Clock::now() < m_nextPoll)
        return;
    if (CountInHand() >= kMostInHand) {
        m_nextPoll = Clock::now() + milliseconds(m_parts.settings.pollMilliseconds);
        return;
    }
    PutBack();
    QueueStore::Headers ready;
    const bool polled = Attempt([&] { ready = m_parts.router.Own().TakeReady(m_parts.settings.protocol, "", kPage); });
    m_foundNothing = polled && ready.empty();
    m_nextPoll = Clock::now() + (polled ? milliseconds(m_parts.settings.pollMilliseconds) : kRetry);
    if (ready.size() == kPage)
        m_nextPoll = {};
    for (const VK_MESSAGE_HEADER& header : ready) {
        if (m_parts.stop)
            return;
        if (Attempt([&] { Take(header); }))
            Begin(header.id);
        else
            m_nextPoll = Clock::now() + kRetry;
    }
}

/// What needs the message's carrier, not the store: the first try to send it, or keeping its carrier connected for the
/// answer.
void QueueFeeder::Begin(unsigned long id)
{
    const auto entry = m_entries.find(id);
    if (entry == m_entries.end())
        return;
    if (entry->second.stage == Stage::Sending && entry->second.due == Clock::time_point{})
        Send(entry->second);
    else if (entry->second.stage == Stage::Asking)
        m_parts.line.Open(entry->second.message->File());
}

void QueueFeeder::Take(const VK_MESSAGE_HEADER& header)
{
    const auto held = m_entries.find(header.id);
    const bool asked = MessageName::Parse(header.msg_name).status == 'Q';
    if (held != m_entries.end() && held->second.stage == Stage::Asking)
        Renew(held->second);
    else if (held != m_entries.end())
        m_parts.router.Own().Touch(header.msg_name);
    else if (asked)
        TakeOver(header);
    else
        TakeNew(header);
}

void QueueFeeder::TakeNew(const VK_MESSAGE_HEADER& header)
{
    VK_MESSAGE_HEADER row;
    std::string body;
    if (!LoadTaken(header, row, body))
        return;
    if (row.create_time == 0)
        row.create_time = header.last_modify_time;
    auto message = std::make_unique<QueueMessage>(row, body);
    const std::string job = message->File().strJobID;
    const bool isExpired = message->ExpiresAt(m_parts.settings.expireSeconds) <= std::time(nullptr);
    const bool isOpenAlready = message->Fault().empty() && m_jobs.count(job) != 0;
    const std::string fault = message->Fault();
    Entry& entry = Keep(std::move(message), Stage::Sending);
    if (!fault.empty())
        Fail(entry, "The body is no message: " + fault);
    else if (isOpenAlready)
        Fail(entry, "Another message with the job_id '" + job + "' is still open.");
    else if (isExpired)
        Fail(entry, "The message expired before it could be sent.");
}

/// Makes it R and loads it. When that fails it may be R or not, and is put back before the next poll.
bool QueueFeeder::LoadTaken(const VK_MESSAGE_HEADER& header, VK_MESSAGE_HEADER& row, std::string& body)
{
    QueueStore& own = m_parts.router.Own();
    const std::string taken = NameWith('R', header);
    Unloaded& unloaded = m_unloaded[header.id];
    unloaded.header = header;
    unloaded.isToPutBack = true;
    ++unloaded.failures;
    const bool loaded = own.Rename(header.msg_name, taken) && own.Load(taken, row, body);
    m_unloaded.erase(header.id);
    return loaded;
}

/// One that cannot be read time and again waits for half an hour, so that it does not stand in the way of others.
void QueueFeeder::PutBack()
{
    for (auto& [id, unloaded] : m_unloaded) {
        if (!unloaded.isToPutBack)
            continue;
        const char status = unloaded.failures < kLoadTries ? 'M' : 'W';
        unloaded.isToPutBack = !Attempt([&, &held = unloaded] {
            m_parts.router.Own().Rename(NameWith('R', held.header), NameWith(status, held.header));
            if (status == 'W')
                m_parts.router.Own().Unlock({held.header});
        });
    }
}

/// A message that was handed over before, by this service or by another that is not there any more.
void QueueFeeder::TakeOver(const VK_MESSAGE_HEADER& header)
{
    VK_MESSAGE_HEADER row;
    std::string body;
    if (!m_parts.router.Own().Load(header.msg_name, row, body))
        return;
    auto message = std::make_unique<QueueMessage>(row, body);
    if (m_parts.router.Knows(message->Target())) {
        const int target = message->Target();
        m_parts.router.FinishMove(*message, m_parts.router.Own());
        Show(*message, target);
        return;
    }
    Entry& entry = Keep(std::move(message), Stage::Asking);
    const long sent = entry.message->SentAt() != 0 ? entry.message->SentAt() : std::time(nullptr);
    Enter(entry, Stage::Asking, seconds(std::max<long>(sent + m_parts.settings.answerSeconds - std::time(nullptr), 0)));
    Renew(entry);
}

QueueFeeder::Entry& QueueFeeder::Keep(std::unique_ptr<QueueMessage> message, Stage stage)
{
    const unsigned long id = message->Header().id;
    // A name of its own on the server: another service may be logged in to the same account.
    HostMessageFile& file = message->File();
    file.strResource += (file.strResource.empty() ? "" : ".") + m_parts.settings.service;
    m_ids[&file] = id;
    m_jobs.insert(message->File().strJobID);
    Entry& entry = m_entries[id];
    entry.message = std::move(message);
    entry.stage = stage;
    ++m_counts[static_cast<std::size_t>(stage)];
    return entry;
}

void QueueFeeder::Ask()
{
    if (Clock::now() < m_nextAsking)
        return;
    std::size_t open = 0;
    for (auto& [id, entry] : m_entries)
        if (entry.stage == Stage::Settling || entry.stage == Stage::Travelling || entry.stage == Stage::Asking) {
            m_parts.exchange.Ask(entry.message->File());
            ++open;
        }
    m_nextAsking = Clock::now() + std::max<Clock::duration>(kAskInterval, kAskShare * open);
}

bool QueueFeeder::IsDone() const
{
    if (m_parts.settings.follow || !m_foundNothing)
        return false;
    const bool waitedEnough = Clock::now() - m_lastSent >= seconds(m_parts.settings.waitSeconds);
    return m_entries.empty() || (waitedEnough && CountOf(Stage::Sending) == 0 && CountOf(Stage::Settling) == 0);
}

milliseconds QueueFeeder::Pause() const
{
    Clock::time_point next = m_nextPoll;
    if (CountOf(Stage::Settling) + CountOf(Stage::Travelling) + CountOf(Stage::Asking) > 0)
        next = std::min(next, m_nextAsking);
    return std::chrono::ceil<milliseconds>(std::max(next - Clock::now(), Clock::duration::zero()));
}

/// Nothing more is taken. What was handed over gets the time to leave and a last question, then each row is left as it
/// is to be found by the next service.
void QueueFeeder::Finish()
{
    const auto wait = std::min(kLastWords, milliseconds(m_parts.settings.settleMilliseconds));
    const auto end = CountOf(Stage::Settling) > 0 ? m_lastSent + wait : Clock::now();
    do {
        m_nextAsking = {};
        Ask();
        TakeReports();
        std::this_thread::sleep_for(std::clamp<Clock::duration>(end - Clock::now(), {}, kAskInterval));
    } while (Clock::now() < end);
    m_awayUntil = {};
    for (auto& [id, entry] : m_entries) {
        if (entry.stage == Stage::Settling)
            Attempt([&, &held = entry] { Settle(held); });
        if (entry.stage == Stage::Leaving)
            Attempt([&, &held = entry] { Move(held); });
    }
    m_parts.line.Close();
    m_parts.exchange.End();
    Attempt([&] {
        m_parts.router.Own().GiveBack(m_parts.settings.service);
        m_parts.router.Waiting().GiveBack(m_parts.settings.service);
    });
    m_parts.tellErrors("at the end");
}

} // namespace vk
