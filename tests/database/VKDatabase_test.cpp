#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKDBiDepartment.h"
#include "VKDBiReceiver.h"
#include "VKDatabaseMultiThreaded.h"
#include "VKRecordText.h"

namespace {

/// An entity object that counts itself.
struct Counted : VKDBbaseInterface
{
    Counted() { ++alive; }
    ~Counted() override { --alive; }
    static inline std::atomic<int> alive{0};
};

/// A database with a clock that the test sets.
template <class Base> class Timed : public Base
{
public:
    Timed() : Base(nullptr, true) {}
    time_t Now() const override { return now; }
    time_t now = 1000000;
};

template <class Base> class VKDatabaseCacheTest : public testing::Test
{
protected:
    VKDatabaseCacheTest() { Counted::alive = 0; }
    Timed<Base> database;
};

using Bases = testing::Types<VKDatabase, VKDatabaseMultiThreaded>;
TYPED_TEST_SUITE(VKDatabaseCacheTest, Bases);

/// An installation of its own, made known to the process's configuration.
class VKDatabaseTest : public testing::Test
{
protected:
    VKDatabaseTest() { UseRoot(dir, "database_type:\tSdb\n"); }
    static void UseRoot(TempDir& root, const std::string& datasource)
    {
        root.Write("config/datasource", datasource);
        root.Write("config/dir", "spool_dir:\t\t/tmp\n");
        VKConfiguration::getVKConfiguration()->setConfDirectory(root / "config");
        VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
    }

    TempDir dir;
};

} // namespace

TYPED_TEST(VKDatabaseCacheTest, ALineLivesHalfAnHourFromItsLastStore)
{
    auto& database = this->database;
    EXPECT_FALSE(database.isKeyInCache("a"));
    auto* const object = new Counted; // the cache's own from here
    database.setCacheLine("a", object);
    database.setCacheLine("b", new Counted);
    EXPECT_EQ(database.getCacheLine("a")->get(), object);
    EXPECT_EQ(database.getCacheLine("empty")->get(), nullptr);
    EXPECT_TRUE(database.isKeyInCache("empty"));

    database.now += 1000;
    database.setCacheLine("a", object);
    EXPECT_EQ(Counted::alive, 2) << "storing the same again deletes nothing";
    database.now += 800;
    EXPECT_TRUE(database.isKeyInCache("b")) << "expired, and there until it is adjusted";
    database.adjustCache();
    EXPECT_FALSE(database.isKeyInCache("b"));
    EXPECT_FALSE(database.isKeyInCache("empty"));
    EXPECT_TRUE(database.isKeyInCache("a"));
    EXPECT_EQ(Counted::alive, 1);
    database.now += 999;
    database.setCacheLineExpiry("a");
    database.now += 1799;
    database.adjustCache();
    EXPECT_EQ(Counted::alive, 1);
    database.now += 1;
    database.adjustCache();
    EXPECT_EQ(Counted::alive, 0);
    database.setCacheLine("a", new Counted);
    database.resetCache();
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_FALSE(database.isKeyInCache("a"));
}

TEST(VKDatabaseMultiThreadedCache, EachThreadHasItsOwnAndOnlyEndedThreadsLoseIt)
{
    Counted::alive = 0;
    Timed<VKDatabaseMultiThreaded> database;
    database.setCacheLine("key", new Counted);
    std::promise<void> firstEnded;
    std::thread second([&] { // started before the first ends, so that it cannot get its identifier
        firstEnded.get_future().wait();
        database.getCacheLine("other");
    });
    std::thread([&] {
        EXPECT_FALSE(database.isKeyInCache("key"));
        database.setCacheLine("key", new Counted);
        database.PurgeAllCache(true);
        EXPECT_TRUE(database.isKeyInCache("key")) << "a living thread keeps its own";
        EXPECT_EQ(database.GetThreadCount(), 2);
    }).join();
    EXPECT_EQ(Counted::alive, 2);
    firstEnded.set_value();
    second.join(); // coming new, it cleared up after the one that ended
    EXPECT_EQ(Counted::alive, 1);
    database.PurgeAllCache(true);
    EXPECT_EQ(database.GetThreadCount(), 1);
    EXPECT_TRUE(database.isKeyInCache("key"));
    database.PurgeMyCache();
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_EQ(database.GetThreadCount(), 0);
}

TEST_F(VKDatabaseTest, OneObjectAKeyWithItsFilterCleared)
{
    Timed<VKDatabase> database;
    VKDBiDepartment* const departments = database.getVKDBiDepartmentObject();
    ASSERT_NE(departments, nullptr) << database.getLastErrorString();
    EXPECT_TRUE(database.isReady());
    EXPECT_FALSE(database.isErrorOccured());
    VK_DEPARTMENT department;
    vk::SetText(department.name, "Surgery", "name");
    ASSERT_TRUE(departments->Add(&department));
    departments->SetFilter("none");
    EXPECT_EQ(database.getVKDBiDepartmentObject(), departments);
    VK_DEPARTMENT_LIST list;
    departments->Get(&list);
    EXPECT_EQ(list.count, 1);
    EmptyDepartmentList(&list);
    EXPECT_NE(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_TRUE(database.isKeyInCache("VKDBiDepartment"));
    EXPECT_TRUE(database.isKeyInCache("VKDBiReceiver"));
    EXPECT_TRUE(dir.Read("config/departments.sdb").size() > 0) << "files stand in the configuration directory";
}

TEST_F(VKDatabaseTest, EntitiesFollowTheGlobalSettings)
{
    Timed<VKDatabase> database;
    ASSERT_TRUE(database.openDatabase());
    VK_GLOBAL_SETTINGS* const settings = VKConfiguration::getVKConfiguration()->getGlobalSettings(true);
    EXPECT_FALSE(VKDBiDepartment::s_bRecLimit);
    settings->cover_by_allowed = settings->receiver_limit = settings->count_groups = 1;
    settings->max_members = 40;
    ASSERT_TRUE(VKConfiguration::getVKConfiguration()->setGlobalSettings());
    VKConfiguration::getVKConfiguration()->getGlobalSettings(true);
    EXPECT_TRUE(VKDBiReceiver::s_bIsCoverByAllowed);
    EXPECT_TRUE(VKDBiDepartment::s_bRecLimit);
    EXPECT_TRUE(VKDBiDepartment::s_bCountGrp);
    EXPECT_EQ(VKDBiDepartment::s_lMaxMembers, 40);

    settings->cover_by_allowed = settings->receiver_limit = settings->count_groups = 0;
    ASSERT_TRUE(VKConfiguration::getVKConfiguration()->setGlobalSettings());
    VKConfiguration::getVKConfiguration()->getGlobalSettings(true);
    EXPECT_FALSE(VKDBiDepartment::s_bRecLimit);
}

TEST_F(VKDatabaseTest, EveryCallTriesAgainAndTellsWhatIsWrongNow)
{
    Timed<VKDatabase> database;
    UseRoot(dir, "database_type:\tOdbc\n");
    EXPECT_EQ(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_NE(database.getLastErrorString().find("relational"), std::string::npos);
    EXPECT_EQ(database.getDBSystemObject(), nullptr);
    std::filesystem::remove(dir / "config/datasource");
    EXPECT_EQ(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_NE(database.getLastErrorString().find(dir / "config"), std::string::npos) << database.getLastErrorString();

    UseRoot(dir, "database_type:\tSdb\n");
    dir.Write("config/receivers.sdb", std::string(3000, 'x'));
    EXPECT_EQ(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_NE(database.getLastErrorString().find("receivers.sdb]: file is not a database"), std::string::npos)
        << database.getLastErrorString();
    EXPECT_TRUE(database.isErrorOccured());
    EXPECT_NE(database.getVKDBiDepartmentObject(), nullptr) << "the others are not touched by it";
    EXPECT_FALSE(database.isErrorOccured());
    std::filesystem::remove(dir / "config/receivers.sdb");
    EXPECT_NE(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_TRUE(database.closeDatabase());
    EXPECT_FALSE(database.isReady());
    EXPECT_NE(database.getVKDBiReceiverObject(), nullptr);
}

TEST_F(VKDatabaseTest, ManyThreadsWorkAtOnce)
{
    Timed<VKDatabaseMultiThreaded> database;
    constexpr int kThreads = 4;
    constexpr int kEach = 5;
    std::atomic<int> added{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < kEach; ++i) {
                VKDBiReceiver* const receivers = database.getVKDBiReceiverObject();
                VK_RECEIVER receiver;
                vk::SetText(receiver.name, "r" + std::to_string(t) + "-" + std::to_string(i), "name");
                vk::SetText(receiver.pin, "1", "pin");
                if (receivers != nullptr && receivers->Add(&receiver, true) &&
                    database.getVKDBiReceiverObject()->GetByID(&receiver, receiver.id))
                    ++added;
                EmptyReceiver(&receiver);
                database.adjustCache();
                database.PurgeAllCache(true);
            }
            if (t % 2 == 0)
                database.PurgeMyCache();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(added, kThreads * kEach);
    ASSERT_NE(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_EQ(database.getVKDBiReceiverObject()->GetTotalRecordCount(), kThreads * kEach);
    EXPECT_EQ(database.GetThreadCount(), 1);
}
