#pragma once

#include "AnswerLine.h"
#include "DriverExchange.h"
#include "QueueRouter.h"
#include "QueueSettings.h"
#include "StoreWatch.h"
#include "Timeline.h"
#include "TroubleFilter.h"
#include "WaitingRoom.h"

#include <atomic>
#include <functional>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace vk {

/// A service at work on a queue: takes what is ready, hands it to the driver, and moves each message to where it
/// belongs.
///
/// A message in its hands goes through these stages; its row's letter stands behind them.
///
///   Sending    R  to be handed over, at once or again after a failure
///   Settling   R  handed over a moment ago; should the process die now, it is sent again
///   Travelling R  handed over, its files are on their way
///   Asking     Q  wants an answer; its row is renewed from time to time, so that it stays with this service
///   Leaving       on its way to another queue
///
/// Works on the thread that calls it. Failures of the store are told and tried again, each message's at growing
/// intervals. While the server of the store is away it is asked once a second, and what is in hand goes on.
class QueueFeeder
{
public:
    /// What it works with; all of it outlives the feeder.
    struct Parts
    {
        const QueueSettings& settings;
        QueueRouter& router;
        StoreWatch& watch;
        WaitingRoom& waiting;
        DriverExchange& exchange;
        AnswerLine& line;
        Timeline& timeline;
        VKLogInterface& logger;
        /// Tells what was logged as errors since the last time.
        std::function<void(const std::string& about)> tellErrors;
        /// Ends Run when it becomes true.
        const std::atomic<bool>& stop;
    };
    explicit QueueFeeder(Parts parts) : m_parts(std::move(parts)) {}
    ~QueueFeeder();
    QueueFeeder(const QueueFeeder&) = delete;
    QueueFeeder& operator=(const QueueFeeder&) = delete;

    /// Works until it is told to stop; without `follow` until nothing is ready and every message is final, or until the
    /// answers that are still missing have been waited for long enough. Then ends the driver and gives back what is
    /// left. Throws VKDBexception when the queue cannot be used at the start.
    void Run();

    bool AnyFailed() const { return m_anyFailed; }

private:
    using Clock = std::chrono::steady_clock;

    enum class Stage { Sending, Settling, Travelling, Asking, Leaving, Gone };

    struct Entry
    {
        std::unique_ptr<QueueMessage> message;
        Stage stage = Stage::Sending;
        /// When the stage is to be looked at.
        Clock::time_point due{};
        int tries = 0;
        int storeFailures = 0; ///< in a row
        int target = 0;        ///< of one that leaves; 0 deletes it
        bool answered = false; ///< one that travels has its last answer
    };

    // QueueFeeder.cpp: the loop, and what comes in.
    bool Attempt(const std::function<void()>& work);
    void NoteTrouble(const std::string& trouble);
    void NoteWorks();
    void TakeBack();
    void Round();
    void KeepHouse();
    void Poll();
    void Take(const VK_MESSAGE_HEADER& header);
    void Begin(unsigned long id);
    void TakeNew(const VK_MESSAGE_HEADER& header);
    void TakeOver(const VK_MESSAGE_HEADER& header);
    bool LoadTaken(const VK_MESSAGE_HEADER& header, VK_MESSAGE_HEADER& row, std::string& body);
    void PutBack();
    Entry& Keep(std::unique_ptr<QueueMessage> message, Stage stage);
    void Ask();
    bool IsDone() const;
    std::size_t CountOf(Stage stage) const { return m_counts[static_cast<std::size_t>(stage)]; }
    std::size_t CountInHand() const { return m_entries.size() - CountOf(Stage::Asking); }
    std::chrono::milliseconds Pause() const;
    void Finish();

    // QueueFeederStages.cpp: what becomes of one message.
    void StepAll();
    void Step(Entry& entry);
    void StepStored(Entry& entry);
    void Send(Entry& entry);
    void Settle(Entry& entry);
    void Renew(Entry& entry);
    bool Store(Entry& entry, int queryCount);
    void Leave(Entry& entry, int target);
    void Move(Entry& entry);
    void Fail(Entry& entry, const std::string& reason);
    void TakeReports();
    void TakeReport(Entry& entry, const MessageReport& report);
    void TakeReportOnTheWay(Entry& entry, const MessageReport& report);
    void Show(QueueMessage& message, int target);
    void Enter(Entry& entry, Stage stage, std::chrono::milliseconds until = {});
    void DropThoseGone();

    const Parts m_parts;
    std::unordered_map<unsigned long, Entry> m_entries; ///< by the row's id
    std::unordered_map<const VKMessageFile*, unsigned long> m_ids;
    std::unordered_multiset<std::string> m_jobs; ///< of all entries
    std::size_t m_counts[6] = {};                ///< of the entries in each stage
    Clock::time_point m_nextPoll{};
    Clock::time_point m_nextHousekeeping{};
    Clock::time_point m_nextAsking{};
    Clock::time_point m_lastSent{};
    bool m_foundNothing = false;
    bool m_anyFailed = false;
    /// Until when a carrier's messages are held back, after a failure that took its time: those of others go first.
    std::map<std::string, Clock::time_point> m_holds;

    /// Messages that could not be loaded after they had become R, or may have become so: to be put back.
    struct Unloaded
    {
        VK_MESSAGE_HEADER header;
        int failures = 0;
        bool isToPutBack = false;
    };
    std::unordered_map<unsigned long, Unloaded> m_unloaded; ///< by the row's id

    TroubleFilter m_troubles;
    Clock::time_point m_awaySince{}; ///< when the server of the store was found to be away; zero when it is there
    Clock::time_point m_awayUntil{}; ///< when it is asked again
};

} // namespace vk
