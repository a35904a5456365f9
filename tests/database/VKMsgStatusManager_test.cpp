#include <gmock/gmock.h>

#include <future>

#include "DatabaseCells.h"
#include "LockingProcess.h"
#include "RecordColumns.h"
#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKMsgStatusManager.h"

namespace {

using Manager = VKMsgStatusManager;
using Data = VKMsgStatusManager::VKMessageStatusData;
using Status = VKMsgStatusManager::MsgStatus;

class VKMsgStatusManagerTest : public testing::Test
{
protected:
    VKMsgStatusManagerTest()
    {
        UseReportDirectory(dir.Path().string());
        EXPECT_TRUE(store.Initialize()) << store.GetLastError();
    }

    void UseReportDirectory(const std::string& path)
    {
        dir.Write("config/datasource", "database_type:\tSdb\n");
        dir.Write("config/dir", "report_dir:\t\t" + path + "\n");
        VKConfiguration::getVKConfiguration()->setConfDirectory(dir / "config");
        VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
    }

    std::string File() const { return dir / "report_msg_status.sdb"; }

    static Data Report(const std::string& job, long time, Status status, int sender = 1)
    {
        Data data;
        data.job_id = job;
        data.time_stamp = time;
        data.status = status;
        data.sender_id = sender;
        return data;
    }

    /// The jobs of the rows that a query gives, each with its status; "failed" when it fails.
    template <class Query> std::string Found(Query&& query)
    {
        std::vector<Data> list;
        if (!query(list))
            return "failed";
        std::string found;
        for (const Data& data : list)
            found += data.job_id + std::to_string(data.status) + " ";
        return found;
    }
    std::string All()
    {
        return Found(
            [&](auto& list) { return store.GetFromDB("SELECT * FROM report_msg_status ORDER BY msg_id", list); });
    }

    void Put(const std::string& job, long time, Status status, int sender = 1)
    {
        Data data = Report(job, time, status, sender);
        EXPECT_TRUE(store.Add(data));
    }
    std::string Value(const std::string& query) const { return CellOf(File(), query); }

    TempDir dir;
    Manager store;
};

} // namespace

TEST_F(VKMsgStatusManagerTest, TheFileIsAsOtherProgramsKnowIt)
{
    EXPECT_EQ(Value("SELECT sql FROM sqlite_master WHERE type='table' AND name='report_msg_status';"),
              "CREATE TABLE report_msg_status (msg_id INTEGER PRIMARY KEY AUTOINCREMENT , job_id VARCHAR(64) , "
              "time_stamp INTEGER , sender_id INTEGER , comments TEXT , context INTEGER , status INTEGER , "
              "arguments TEXT)");
    EXPECT_EQ(Value("SELECT sql FROM sqlite_master WHERE name='ix_job_id';"),
              "CREATE INDEX 'ix_job_id' ON 'report_msg_status' ('job_id' ASC)");

    Data written{0, "J1", 1234567890123, -7, "it's", -3, Status::MsgStatusRead, "a'b\"c`d"};
    ASSERT_TRUE(store.Add(written));
    EXPECT_EQ(written.message_id, 1u);
    Data read;
    ASSERT_TRUE(store.GetByJobID("J1", read));
    EXPECT_EQ(AllColumns(vk::kMsgStatusFields, read), AllColumns(vk::kMsgStatusFields, written));
    written.comments = "new";
    ASSERT_TRUE(store.Update(written));
    ASSERT_TRUE(store.GetByJobID("J1", read));
    EXPECT_EQ(read.comments, "new");
}

TEST_F(VKMsgStatusManagerTest, ASecondStartKeepsWhatIsThereAndMakesNoIndex)
{
    Put("J", 1, Status::MsgStatusNew);
    RunOn(File(), "DROP INDEX ix_job_id;");
    Manager second;
    ASSERT_TRUE(second.Initialize());
    Status status = Status::MsgStatusNone;
    EXPECT_TRUE(second.GetStatusByJobID("J", status));
    EXPECT_EQ(status, Status::MsgStatusNew);
    EXPECT_EQ(Value("SELECT COUNT(*) FROM sqlite_master WHERE name='ix_job_id';"), "0");
}

TEST_F(VKMsgStatusManagerTest, AFileThatCannotBeUsedIsRefusedAndLeftAsItIs)
{
    const std::string content = "this is no database, but it is somebody's file";
    dir.Write("other/report_msg_status.sdb", content);
    for (const char* name : {"missing", "other"}) {
        UseReportDirectory(dir / name);
        Manager refused;
        EXPECT_FALSE(refused.Initialize()) << name;
        EXPECT_THAT(refused.GetLastError(), testing::HasSubstr(dir / name));
        Data data = Report("J", 1, Status::MsgStatusNew);
        EXPECT_FALSE(refused.AddOrUpdateByJobID(data));
        EXPECT_FALSE(refused.GetByJobID("J", data));
    }
    EXPECT_EQ(dir.Read("other/report_msg_status.sdb"), content);
    UseReportDirectory("");
    Manager besideTheOthers;
    EXPECT_TRUE(besideTheOthers.Initialize()) << besideTheOthers.GetLastError();
    EXPECT_TRUE(std::filesystem::exists(dir.Path() / "config/report_msg_status.sdb"));
}

TEST_F(VKMsgStatusManagerTest, ALaterStateOfAJobIsNeverOverwrittenByAnEarlierOne)
{
    // What of the new statuses 0 to 9 a stored status gives way to, at the same time and later.
    constexpr const char* kAll = "0123456789";
    const std::pair<int, std::string> cases[] = {{0, kAll}, {1, kAll}, {2, kAll},  {3, kAll}, {4, ""},
                                                 {5, ""},   {6, kAll}, {7, "789"}, {8, ""},   {9, ""}};
    for (const auto& [stored, takes] : cases)
        for (int next = 0; next <= 9; ++next)
            for (const long later : {-1, 0, 1}) {
                const std::string job = std::to_string(stored * 1000 + next * 10 + later + 1);
                SCOPED_TRACE(job);
                Data first = Report(job, 100, static_cast<Status>(stored));
                Data second = Report(job, 100 + later, static_cast<Status>(next));
                second.comments = "second";
                ASSERT_TRUE(store.AddOrUpdateByJobID(first));
                ASSERT_TRUE(store.AddOrUpdateByJobID(second));
                EXPECT_EQ(second.message_id, first.message_id);
                const bool taken = later >= 0 && takes.find(static_cast<char>('0' + next)) != std::string::npos;
                Data read;
                ASSERT_TRUE(store.GetByJobID(job, read));
                EXPECT_EQ(read.status, taken ? next : stored);
                EXPECT_EQ(read.comments, taken ? "second" : "");
            }
}

TEST_F(VKMsgStatusManagerTest, AListIsStoredInOrderAndWholeOrNotAtAll)
{
    std::vector<Data> list = {Report("A", 1, Status::MsgStatusNew), Report("B", 1, Status::MsgStatusNew),
                              Report("A", 2, Status::MsgStatusFailed), Report("A", 3, Status::MsgStatusCompleted)};
    ASSERT_TRUE(store.AddOrUpdateListByJobID(list));
    EXPECT_EQ(All(), "A5 B1 ");
    EXPECT_EQ(list[2].message_id, list[0].message_id);
    EXPECT_EQ(list[3].message_id, list[0].message_id);

    for (const std::string& bad : {std::string("it's"), std::string("z\0z", 3)}) {
        std::vector<Data> half = {Report("B", 2, Status::MsgStatusRead), Report("C", 1, Status::MsgStatusNew),
                                  Report(bad, 1, Status::MsgStatusNew)};
        EXPECT_FALSE(store.AddOrUpdateListByJobID(half)) << bad;
        EXPECT_EQ(half[1].message_id, 0u);
        EXPECT_EQ(All(), "A5 B1 ");
    }
    std::vector<Data> none;
    EXPECT_TRUE(store.AddOrUpdateListByJobID(none));
    EXPECT_TRUE(store.AddOrUpdateByJobID(list[1])) << "a refused list leaves no transaction open";
}

TEST_F(VKMsgStatusManagerTest, RowsAreFoundBySenderStatusAndJobs)
{
    Put("A", 1, Status::MsgStatusNew, 1);
    Put("B", 1, Status::MsgStatusRead, 1);
    Put("C", 1, Status::MsgStatusNew, 2);
    const std::vector<std::string> jobs = {"A", "B"};
    const std::vector<std::string> noJobs;
    const std::vector<std::string> quoted = {"A') OR ('1'='1"};
    const std::tuple<int, int, const std::vector<std::string>*, const char*, const char*> cases[] = {
        {0, 0, nullptr, "A1 B3 C1 ", "A1 B3 C1 "},
        {1, 0, nullptr, "A1 B3 ", "A1 B3 "},
        {-1, 1, nullptr, "A1 C1 ", "A1 B3 C1 "},
        {1, 1, nullptr, "A1 ", "A1 B3 "},
        {0, 0, &jobs, "A1 B3 ", "A1 B3 "},
        {2, 0, &jobs, "", ""},
        {0, 3, &jobs, "B3 ", "A1 B3 "},
        {1, 1, &jobs, "A1 ", "A1 B3 "},
        {0, 0, &noJobs, "failed", "A1 B3 C1 "},
        {1, 0, &noJobs, "A1 B3 ", "A1 B3 "},
        {0, 1, &noJobs, "A1 C1 ", "A1 B3 C1 "},
        {0, 0, &quoted, "failed", "failed"}};
    for (const auto& [sender, status, ofJobs, got, whateverStatus] : cases) {
        SCOPED_TRACE(testing::Message() << sender << " " << status);
        const auto get = [&, sender = sender, wanted = static_cast<Status>(status), only = ofJobs](auto& list) {
            return store.Get(list, sender, wanted, only);
        };
        const auto getAll = [&, sender = sender, only = ofJobs](auto& list) {
            return store.GetConfNRejectedMsgs(list, sender, only);
        };
        EXPECT_EQ(Found(get), got);
        EXPECT_EQ(Found(getAll), whateverStatus);
    }
    std::vector<Data> list(1);
    EXPECT_TRUE(store.GetFromDB("SELECT * FROM report_msg_status WHERE sender_id=2", list));
    EXPECT_EQ(list.size(), 2u) << "rows are appended";
    EXPECT_FALSE(store.GetFromDB("SELECT nothing", list));
    EXPECT_THAT(store.GetLastError(), testing::HasSubstr("SELECT nothing"));
}

TEST_F(VKMsgStatusManagerTest, RowsGoByJobAndByAge)
{
    for (const auto& [job, time] : {std::pair("A", 10L), {"A", 20L}, {"B", 30L}, {"C", 40L}})
        Put(job, time, Status::MsgStatusNew);
    EXPECT_FALSE(store.Delete("x' OR '1'='1"));
    EXPECT_TRUE(store.Delete("A"));
    EXPECT_EQ(All(), "B1 C1 ");
    EXPECT_TRUE(store.CleanupOldMsgs(40));
    EXPECT_EQ(All(), "C1 ");
    Data data;
    Status status = Status::MsgStatusReplied;
    EXPECT_FALSE(store.GetByJobID("A", data));
    EXPECT_FALSE(store.GetStatusByJobID("A", status));
    EXPECT_EQ(status, Status::MsgStatusReplied);
    EXPECT_EQ(store.GetLastError(), "") << "a row that is not there is no failure";
    EXPECT_FALSE(store.GetStatusByJobID("C' --", status));
    EXPECT_NE(store.GetLastError(), "");
}

TEST_F(VKMsgStatusManagerTest, AnotherProcessOnTheFileIsWaitedFor)
{
    vktest::LockingProcess other(File());
    auto stored = std::async(std::launch::async, [&] {
        Data data = Report("J", 1, Status::MsgStatusNew);
        return store.AddOrUpdateByJobID(data);
    });
    EXPECT_EQ(stored.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    other.Release();
    ASSERT_EQ(stored.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_TRUE(stored.get()) << store.GetLastError();
}

TEST(VKMsgStatus, TextsAndReportWords)
{
    const char* const texts[] = {"None",   "New",       "Attempt", "Read",     "Filtered",
                                 "Failed", "Completed", "Replied", "Rejected", "Confirmed"};
    for (int status = 0; status < 10; ++status) {
        EXPECT_EQ(Manager::GetStatusTextFromID(status), texts[status]);
        std::string word = texts[status];
        EXPECT_EQ(vk::MsgStatusOfReport(word), status);
        std::transform(word.begin(), word.end(), word.begin(), [](unsigned char c) { return std::toupper(c); });
        EXPECT_EQ(vk::MsgStatusOfReport(word), status);
    }
    EXPECT_EQ(Manager::GetStatusTextFromID(10), "Unknown Status");
    EXPECT_EQ(Manager::GetStatusTextFromID(-1), "Unknown Status");
    for (const char* other : {"", "QUEUED", "NEW ", "READY"})
        EXPECT_EQ(vk::MsgStatusOfReport(other), Status::MsgStatusNone) << other;
}
