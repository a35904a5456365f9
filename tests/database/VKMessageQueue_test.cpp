#include <gmock/gmock.h>

#include "BackendDatabase.h"
#include "CountedPauses.h"
#include "DatabaseCells.h"
#include "MessageQueueStore.h"
#include "VKDatabase.h"
#include "VKMessageName.h"
#include "VKMsgQueueFileOperations.h"
#include "VKRDBMessageQueue.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class VKMessageQueueTest : public QueuesOn<BackendDatabase>
{
protected:
    VKMessageQueueTest() : queue(Open(1)) {}

    /// Runs a statement behind the queue's back; "{}" is its table.
    void Sql(std::string statement)
    {
        statement.replace(statement.find("{}"), 2, OnFiles() ? "queue_metadata" : "VK_QUEUE_PAGING");
        if (OnFiles())
            RunOn(queue->GetQueueName() + "/queue_metabase.sdb", statement);
        else
            server->ExecuteCommand(statement);
    }

    /// What bodies there are, by name.
    static std::set<std::string> Files(VKDBiMessageQueue& of)
    {
        if (of.GetQueueName().front() == '/')
            return QueuesOn::Files(of);
        const auto names = Names(of);
        return {names.begin(), names.end()};
    }

    /// The services that hold messages for too long; theirs come back.
    static std::vector<std::string> ReleaseHeldUp(VKDBiMessageQueue& of)
    {
        std::vector<std::string> services;
        of.GetLockedUpMsgsServiceNames(services);
        of.UnprocessLockedUpMsgs(services);
        return services;
    }

    std::unique_ptr<VKDBiMessageQueue> queue;
};

class VKMessageQueueFilesTest : public VKMessageQueueTest
{
};

/// A queue whose clock stands where the test puts it.
template <class Queue> class QueueAt : public Queue
{
public:
    explicit QueueAt(const time_t& now) : Queue(2, ""), m_now(now) {}

protected:
    time_t Now() const override { return m_now; }

private:
    const time_t& m_now;
};

} // namespace

TEST(VKMessageNameTest, PartsComeOutOfTheNameAndGoBack)
{
    const std::pair<const char*, const char*> cases[] = {{"M.0.JOB17.mxp", "M|0|JOB17|mxp"},
                                                         {"Q.12.a.b.c.mxp", "Q|12|a.b.c|mxp"},
                                                         {"M.JOB17.mxp", "M|0|JOB17|mxp"},
                                                         {"M.abc", "M|0|abc|"},
                                                         {"M.99999999999.x.mxp", "M|0|99999999999.x|mxp"},
                                                         {"Mx1", "M|0||"}};
    for (const auto& [name, expected] : cases) {
        const vk::MessageName parts = vk::MessageName::Parse(name);
        EXPECT_EQ(parts.status + ("|" + std::to_string(parts.queryCount)) + "|" + parts.job + "|" + parts.protocol,
                  expected);
    }
    EXPECT_EQ(vk::MessageName::Parse("Q.12.a.b.c.mxp").Text(), "Q.12.a.b.c.mxp");
}

TEST_P(VKMessageQueueTest, RowsOfOneNameAreDeletedTogether)
{
    Add(*queue, "M.0.A.mxp");
    Sql("INSERT INTO {} (msg_name, msg_status) VALUES ('M.0.A.mxp', 'M')");
    VK_MESSAGE_HEADER_LIST list;
    queue->Get(&list, false);
    EXPECT_EQ(list.count, 2);
    EXPECT_TRUE(queue->DeleteMsgList(&list));
    EmptyMessageHeaderList(&list);
    EXPECT_THAT(Names(*queue), IsEmpty());
}

TEST_P(VKMessageQueueTest, AddedMessageComesBackWholeAndASecondOfItsNameReplacesIt)
{
    const unsigned long first =
        Add(*queue, "M.0.J1.mxp", "one",
            {{"priority", 1}, {"expiry_time", 5}, {"schd_date_to_send", 7}, {"pin", "o'neil_\\%@example.org"}});
    EXPECT_EQ(Header(*queue, "M.0.J1.mxp", "id priority expiry_time schd_date_to_send pin"),
              std::to_string(first) + " 1 5 7 o'neil_\\%@example.org");
    EXPECT_EQ(Body(*queue, "M.0.J1.mxp"), "one");

    EXPECT_NE(Add(*queue, "M.0.J1.mxp", "two"), first);
    EXPECT_EQ(queue->GetTotalRecordCount(), 1);
    EXPECT_EQ(Body(*queue, "M.0.J1.mxp"), "two");
    EXPECT_THAT(Files(*queue), ElementsAre("M.0.J1.mxp"));
    EXPECT_EQ(Backups(*queue), 0u) << "nothing is kept of the first";
    EXPECT_FALSE(queue->IsUniqueName("M.0.J1.mxp"));
    EXPECT_TRUE(queue->IsMsgExisting("M.0.J1.mxp"));
}

TEST_P(VKMessageQueueTest, RenamingMovesRowAndFileTogether)
{
    Add(*queue, "M.0.J1.mxp", "body");
    EXPECT_FALSE(queue->Morph("M", "Q.", false, 0));
    EXPECT_FALSE(queue->Morph("Mx1", "Q.", false, 0));
    EXPECT_FALSE(queue->Morph("M.0.gone.mxp", "Q.", false, 0));
    EXPECT_TRUE(queue->Morph("M.0.J1.mxp", "Q.", true, 1234));
    EXPECT_THAT(Files(*queue), ElementsAre("Q.0.J1.mxp"));
    Message message;
    ASSERT_TRUE(queue->GetByName("Q.0.J1.mxp", &message, false, true));
    EXPECT_EQ(message["last_modify_time"], "1234");
    vk::SetText(message.header.msg_name, "M.3.J1.mxp", "msg_name");
    AddMessageContent(&message, "+");
    EXPECT_TRUE(queue->Modify(&message, "Q.0.J1.mxp"));
    EXPECT_THAT(Files(*queue), ElementsAre("M.3.J1.mxp"));
    EXPECT_EQ(Body(*queue, "M.3.J1.mxp"), "body+");

    EXPECT_TRUE(queue->Delete("M.3.J1.mxp"));
    EXPECT_FALSE(queue->Delete("M.3.J1.mxp"));
    EXPECT_THAT(Files(*queue), IsEmpty());
}

TEST_P(VKMessageQueueFilesTest, AChangeThatFailsLeavesRowsAndFilesAsTheyWere)
{
    Add(*queue, "M.0.J1.mxp", "old");
    Add(*queue, "M.0.J2.mxp", "two");
    Sql("CREATE TRIGGER no_insert BEFORE INSERT ON {} BEGIN SELECT RAISE(ABORT, 'no'); END;");
    Sql("CREATE TRIGGER no_update BEFORE UPDATE ON {} WHEN NEW.msg_status='X' BEGIN "
        "SELECT RAISE(ABORT, 'no'); END;");
    EXPECT_NE(ErrorOf([&] { Add(*queue, "M.0.J1.mxp", "new"); }), "");
    EXPECT_NE(ErrorOf([&] { queue->Morph("M.0.J1.mxp", "X.", false, 0); }), "");
    EXPECT_THAT(Files(*queue), ElementsAre("M.0.J1.mxp", "M.0.J2.mxp"));
    EXPECT_EQ(Body(*queue, "M.0.J1.mxp"), "old");

    std::filesystem::create_directory(queue->GetQueueName() + "/R.0.J1.mxp"); // no file can take this name
    std::filesystem::create_directory(queue->GetQueueName() + "/R.0.J1.mxp/x");
    std::filesystem::remove(queue->GetQueueName() + "/M.0.J2.mxp");
    EXPECT_THAT(ErrorOf([&] { queue->Morph("M.0.J2.mxp", "Q.", false, 0); }), HasSubstr("cannot be renamed"));
    EXPECT_THAT(Names(*queue), ElementsAre("M.0.J1.mxp")); // and the row without a file is gone with this read
    EXPECT_EQ(queue->GetTotalRecordCount(), 1);
}

TEST_P(VKMessageQueueTest, APollTakesWhatIsReadyByPriorityAndNobodyElseGetsIt)
{
    const long now = time(nullptr);
    Add(*queue, "M.0.a.mxp");
    Add(*queue, "D.0.b.mxp", "{}", {{"priority", 1}});
    Add(*queue, "Q.1.due.mxp", "{}", {{"next_query_time", now - 1}});
    Add(*queue, "Q.1.later.mxp", "{}", {{"next_query_time", now + 1000}});
    Add(*queue, "R.0.running.mxp");
    Add(*queue, "W.0.waiting.mxp");
    const auto other = Open(1, "other");
    const auto ready = Ready(*queue);
    EXPECT_THAT(ready, UnorderedElementsAre("M.0.a.mxp", "D.0.b.mxp", "Q.1.due.mxp"));
    EXPECT_EQ(ready[0], "D.0.b.mxp");
    EXPECT_THAT(Ready(*other), IsEmpty());
    EXPECT_EQ(Ready(*queue).size(), 3u) << "its own it may take again";

    VK_MESSAGE_HEADER_LIST all;
    queue->Get(&all, true);
    queue->UnlockMsgList(&all);
    EmptyMessageHeaderList(&all);
    EXPECT_EQ(Ready(*other).size(), 3u);
    queue->UpdateTime("W.0.waiting.mxp", now - 1900);
    EXPECT_THAT(Ready(*queue), ElementsAre("W.0.waiting.mxp"));

    EXPECT_THAT(ErrorOf([&] { Ready(*Open(1, "")); }), HasSubstr("Messenger service name not set"));
    EXPECT_THAT(ErrorOf([&] { Ready(*Open(1, std::string(51, 's'))); }), HasSubstr("'last_lock_owner_svc_name'"));
    for (const int number : {2, 3})
        EXPECT_EQ(ErrorOf([&] { Ready(*Open(number, "")); }), "") << number;
}

TEST_P(VKMessageQueueTest, WhatADeadServiceHeldComesBack)
{
    const long old = time(nullptr) - 1300;
    for (const char* name : {"M.0.taken.mxp", "M.0.first.mxp", "Q.2.asked.mxp"})
        Add(*queue, name);
    EXPECT_EQ(Ready(*queue).size(), 3u);
    queue->Morph("M.0.first.mxp", "R.", true, old);
    queue->Morph("Q.2.asked.mxp", "R.", true, old);
    const auto other = Open(1, "other");
    EXPECT_THAT(ReleaseHeldUp(*other), ElementsAre("svc"));
    EXPECT_THAT(Files(*queue), ElementsAre("M.0.first.mxp", "M.0.taken.mxp", "Q.2.asked.mxp"));
    EXPECT_THAT(Ready(*other), UnorderedElementsAre("M.0.first.mxp", "Q.2.asked.mxp"));
    queue->UnprocessMsgList("svc");
    EXPECT_THAT(Ready(*other), testing::Contains("M.0.taken.mxp"));

    queue->EmptyQueue();
    for (const char* name : {"D.0.one.mxp", "R.0.one.mxp", "E.0.one.mxp"})
        Add(*queue, name, name);
    Sql("UPDATE {} SET lock_time=1, last_lock_owner_svc_name='svc'");
    queue->UnprocessMsgList("svc");
    EXPECT_THAT(Files(*queue), ElementsAre("D.0.one.mxp", "E.0.one.mxp", "M.0.one.mxp")) << "one name, none lost";
    EXPECT_EQ(Ready(*other).size(), 3u);
    EXPECT_EQ(Body(*queue, "M.0.one.mxp"), "R.0.one.mxp");
}

TEST_P(VKMessageQueueTest, NoRunningMessageBecomesUnreachableWhenItsLockIsOlderThanIts)
{
    Add(*queue, "M.0.young.mxp");
    Ready(*queue);
    queue->Morph("M.0.young.mxp", "R.", true, time(nullptr)); // renamed long after it was taken
    Sql("UPDATE {} SET lock_time=1");
    Add(*queue, "R.0.nobodys.mxp");
    const auto other = Open(1, "other");
    ReleaseHeldUp(*other);
    EXPECT_THAT(Ready(*other), IsEmpty());
    queue->UpdateTime("R.0.young.mxp", time(nullptr) - 1300);
    queue->UpdateTime("R.0.nobodys.mxp", time(nullptr) - 1300);
    EXPECT_THAT(ReleaseHeldUp(*other), ElementsAre("svc"));
    EXPECT_THAT(Ready(*other), UnorderedElementsAre("M.0.young.mxp", "M.0.nobodys.mxp"));
}

TEST_P(VKMessageQueueTest, FiltersPagesAndSorting)
{
    for (const std::string pin : {"12", "123", "Ab"})
        Add(*queue, "M.0.p" + pin + ".mxp", "{}", {{"pin", pin}, {"create_time", pin[1]}, {"sender_name", "s" + pin}});
    Add(*queue, "W.0.x.snpp");
    const auto count = [&](auto&& set) {
        queue->ClearFilter();
        set(*queue);
        const long filtered = queue->GetFilteredRecordCount();
        EXPECT_EQ(static_cast<long>(Names(*queue).size()), filtered);
        return filtered;
    };
    const long now = time(nullptr);
    EXPECT_EQ(count([](auto& q) { q.SetFilterByPin("mxp*", "12"); }), 1);
    EXPECT_EQ(count([](auto& q) { q.SetFilterByPin("mxp*", "aB"); }), 1);
    EXPECT_EQ(count([](auto& q) { q.SetFilterByPin("s*", ""); }), 1);
    EXPECT_EQ(count([](auto& q) { q.SetFilter("", "W.", 0, 0); }), 1);
    EXPECT_EQ(count([](auto& q) { q.SetFilter("", "m.0.P1", 0, 0); }), 2);
    EXPECT_EQ(count([&](auto& q) { q.SetFilter("", "", now + 100, 0); }), 0);
    EXPECT_EQ(count([&](auto& q) { q.SetFilter("", "*", now - 100, now + 100); }), 4);
    EXPECT_EQ(count([](auto& q) { q.SetFilterView("", "S1", "", "", "", "", 0, 0, 0, 0, 3); }), 2);
    EXPECT_EQ(count([](auto& q) { q.SetFilterView("", "", "", "", "", "", 50, 0, 0, 0, 0); }), 3);

    queue->ClearFilter();
    queue->SetFilter("", "M.", 0, 0);
    queue->SetSort(SortBySender, false);
    queue->SetFilter(2, 2);
    EXPECT_THAT(Names(*queue), ElementsAre("M.0.p12.mxp"));
    EXPECT_EQ(queue->GetPageCount(), 2);
    EXPECT_EQ(queue->GetTotalRecords(), 3);
}

TEST_P(VKMessageQueueTest, ScheduledMessagesAreReadyInTheirHalfHour)
{
    time_t now = 0;
    std::unique_ptr<VKDBiMessageQueue> schedule;
    if (OnFiles())
        schedule = std::make_unique<QueueAt<VKSQLite3MessageQueue>>(now);
    else
        schedule = std::make_unique<QueueAt<VKRDBMessageQueue>>(now);
    schedule->Initialize(&system);
    const auto add = [&](const char* name, int days, int minute, long date) {
        Add(*schedule, name, "{}",
            {{"schd_days_to_send", days}, {"schd_time_in_mins", minute}, {"schd_date_to_send", date}});
    };
    add("M.0.wednesday.mxp", 16, 600, 0);
    add("M.0.bit8.mxp", 8, 600, 0);
    add("M.0.once.mxp", 16 | 256, 600, 0);
    add("M.0.date.mxp", 0, 60, LocalTime(8, 0, 0));
    const auto at = [&](int day, int hour, int minute) {
        now = LocalTime(day, hour, minute);
        return Ready(*schedule);
    };
    EXPECT_THAT(at(7, 9, 59), IsEmpty());
    EXPECT_THAT(at(7, 10, 0), UnorderedElementsAre("M.0.wednesday.mxp", "M.0.once.mxp"));
    EXPECT_THAT(at(7, 10, 29), UnorderedElementsAre("M.0.wednesday.mxp", "M.0.once.mxp"));
    EXPECT_THAT(at(7, 10, 30), IsEmpty());
    EXPECT_THAT(at(8, 1, 0), ElementsAre("M.0.date.mxp"));

    Message once;
    schedule->GetByName("M.0.once.mxp", &once, true, true);
    once.header.schd_last_send_time = LocalTime(7, 10, 1);
    schedule->Modify(&once, "");
    EXPECT_THAT(at(7, 10, 5), ElementsAre("M.0.wednesday.mxp"));
    EXPECT_EQ(at(14, 10, 5).size(), 3u);
    schedule->SetFilter("", "M.0.w", 0, 0);
    EXPECT_THAT(at(14, 10, 5), ElementsAre("M.0.wednesday.mxp")) << "the filter holds for both alternatives";
}

TEST_P(VKMessageQueueTest, CascadedMessagesAreReadyBehindTheirDelayAndExpiredOnesAreFound)
{
    const auto cascade = Open(3, "");
    const long now = time(nullptr);
    for (const auto& [delay, expiry] : {std::pair(0, 0L), std::pair(5, now - 9), std::pair(10, now + 900)})
        Add(*cascade, "M.0." + std::to_string(delay) + ".mxp", "{}",
            {{"create_time", now - 400}, {"casc_delay_mins", delay}, {"expiry_time", expiry}});
    EXPECT_THAT(Ready(*cascade), UnorderedElementsAre("M.0.0.mxp", "M.0.5.mxp"));
    EXPECT_EQ(Ready(*cascade).size(), 2u) << "nobody takes them";
    cascade->SetFilterExpired(true);
    EXPECT_THAT(Names(*cascade), UnorderedElementsAre("M.0.0.mxp", "M.0.5.mxp")) << "one without an end, too";
}

TEST_P(VKMessageQueueTest, CleaningTakesOldMessagesThenTheOldestBeyondTheCount)
{
    const long now = time(nullptr);
    for (int i = 0; i < 6; ++i) {
        const std::string name = (i == 1 ? "W.0." : "M.0.") + std::to_string(i) + ".mxp";
        Add(*queue, name);
        queue->UpdateTime(name, i < 2 ? now - 5 * 86400 : now - 100 + i);
    }
    queue->CleanupOldMsgs(3, 4);
    EXPECT_THAT(Files(*queue), ElementsAre("M.0.4.mxp", "M.0.5.mxp", "W.0.1.mxp"));
    EXPECT_THAT(Names(*queue), UnorderedElementsAre("M.0.4.mxp", "M.0.5.mxp", "W.0.1.mxp"));
    queue->EmptyQueue();
    EXPECT_THAT(Files(*queue), IsEmpty());
    EXPECT_EQ(queue->GetTotalRecordCount(), 0);
    EXPECT_EQ(queue->GetOldestMsgTime(), 0);
    Add(*queue, "M.0.after.mxp");
    EXPECT_THAT(Ready(*queue), ElementsAre("M.0.after.mxp"));
}

TEST_P(VKMessageQueueTest, FaxNamesEndingInPAreAlsoThoseWithoutIt)
{
    const auto fax = Open(6);
    Add(*fax, "M.abc", "page");
    EXPECT_EQ(Body(*fax, "M.abcp"), "page");
    EXPECT_EQ(Body(*queue, "M.abcp"), "(none)");
    Add(*fax, "M.abcp", "new");
    EXPECT_THAT(Files(*fax), ElementsAre("M.abcp"));
}

TEST_P(VKMessageQueueFilesTest, QueueDirectoriesAreFoundOrNamedInTheError)
{
    const auto error = [&](int number, const char* path) {
        return ErrorOf([&] { VKMsgQueueFileOperations(number, path).Initialize(&system); });
    };
    EXPECT_EQ(error(0, ""), "-1 Invalid queue type/path");
    EXPECT_EQ(error(11, ""), "-1 Empty queue path");
    EXPECT_EQ(error(101, ""), "-1 Invalid queue path (empty multi-queue option)");
    VK_QUEUE_DIRECTORY_PATH named{};
    named.id = 102;
    vk::SetText(named.path, dir / "named/", "path");
    system.Close();
    system.OpenSdb(dir.Path().string(), "", nullptr, &named, 1, nullptr);
    EXPECT_EQ(error(101, ""), "-1 Invalid queue path (multi-queue option)");
    EXPECT_EQ(error(102, ""), "-1 Invalid queue path [" + (dir / "named") + "]");
    EXPECT_TRUE(queue->CreateQueue(102));
    const auto other = Open(102);
    Add(*other, "M.0.x.mxp");
    EXPECT_FALSE(queue->DeleteQueue(102));
    other->EmptyQueue();
    EXPECT_TRUE(queue->DeleteQueue(102));
    EXPECT_FALSE(std::filesystem::exists(dir / "named"));
}

TEST(VKMsgQueueFileOperations, WritesMovesAndDeletesFilesOfItsDirectory)
{
    TempDir dir;
    dir.Write("queue_metabase.sdb", "rows");
    VKMsgQueueFileOperations files(0, dir.Path().string() + "/");
    ASSERT_TRUE(files.Initialize(nullptr));
    EXPECT_EQ(files.GetQueuePath(), dir.Path().string());
    Message added("M.a", "");
    AddMessageContentFormat(&added, "%s-%d", "long body", 1);
    EXPECT_TRUE(files.Add(&added));
    Message changed("M.b", "short");
    EXPECT_TRUE(files.Modify(&changed, "M.a"));
    EXPECT_TRUE(files.Modify(&changed, "M.b")) << "under its own name";
    EXPECT_FALSE(files.CheckExists("M.a"));
    EXPECT_TRUE(files.Delete("M.a")) << "gone already";
    dir.Write("R.b", "what was there before");
    EXPECT_TRUE(files.ChangeName("M.b", "R.b"));
    EXPECT_TRUE(files.ChangeName("none", "none"));
    Message read;
    EXPECT_TRUE(files.GetByName("R.b", &read));
    EXPECT_EQ(read.Body(), "short");
    for (const bool rename : {false, true}) {
        const vktest::CountedPauses pauses;
        EXPECT_FALSE(rename ? files.ChangeName("M.b", "R.c") : files.GetByName("M.b", &read));
        EXPECT_EQ(pauses.count, 10) << "between 11 tries";
        EXPECT_EQ(pauses.total, 2046000) << "2, 4, ... 1024 milliseconds";
    }
    EXPECT_EQ(read.Body(), "short") << "what cannot be read changes nothing";
    EXPECT_TRUE(files.EmptyQueue());
    EXPECT_FALSE(files.CheckExists("R.b"));
    EXPECT_EQ(dir.Read("queue_metabase.sdb"), "rows");
}

VK_ON_BOTH_BACKENDS(VKMessageQueueTest);
INSTANTIATE_TEST_SUITE_P(Backends, VKMessageQueueFilesTest, testing::Values(Backend::Files));
