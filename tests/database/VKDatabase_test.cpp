#include <gmock/gmock.h>

#include <future>
#include <thread>

#include "BackendDatabase.h"
#include "DatabaseCells.h"
#include "VKConfiguration.h"
#include "VKDBiMessageQueue.h"
#include "VKDatabaseMultiThreaded.h"
#include "VKRecordText.h"

namespace {

using testing::HasSubstr;
using testing::Not;

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
    explicit Timed(bool multiThreaded = true) : Base(nullptr, multiThreaded) {}
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
        root.Write("config/dir", "spool_dir:\t\t" + (root / "spool") + "\n");
        std::filesystem::create_directory(root / "spool");
        VKConfiguration::getVKConfiguration()->setConfDirectory(root / "config");
        VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
    }

    TempDir dir;
};

constexpr int kLanes = 16;
constexpr int kGenerations = 3;

/// Adds departments on many threads at once, each lane of them one thread after the other, which look at receivers and
/// a queue as well. Gives back how many were added and found again.
int AddOnManyThreads(VKDatabase& database)
{
    std::atomic<int> added{0};
    const auto add = [&](const std::string& name) {
        VKDBiDepartment* const departments = database.getVKDBiDepartmentObject();
        VK_DEPARTMENT department;
        vk::SetText(department.name, name, "name");
        if (departments != nullptr && departments->Add(&department) &&
            database.getVKDBiDepartmentObject()->GetByID(&department, department.id) &&
            database.getVKDBiReceiverObject()->GetTotalRecordCount() == 0 &&
            database.getVKDBiMessageQueueObject(1, name)->GetTotalRecordCount() == 0)
            ++added;
        database.adjustCache();
        database.PurgeAllCache(true);
    };
    std::vector<std::thread> lanes;
    for (int lane = 0; lane < kLanes; ++lane)
        lanes.emplace_back([&, lane] {
            for (int generation = 0; generation < kGenerations; ++generation)
                std::thread(add, std::to_string(lane) + "-" + std::to_string(generation)).join();
            if (lane % 2 == 0)
                database.PurgeMyCache();
        });
    for (std::thread& lane : lanes)
        lane.join();
    return added;
}

/// An installation on a relational server.
class VKDatabaseServerTest : public VKDatabaseTest
{
protected:
    VKDatabaseServerTest()
    {
        PostgresServer::Get();
        UseRoot(dir, std::string("database_type:\tOdbc\ndb_connect_type:\tDSN\ndb_connect_string:\t") +
                         PostgresServer::kSource + "\ndb_user:\tpostgres\n");
        EXPECT_TRUE(own->Open(PostgresServer::kSource, "postgres", "", true, true));
    }
    void MakeTables() { BackendDatabase::MakeTables(*own); }

    std::unique_ptr<VKRDBiDatabase> own{VKRDBiDatabase::GetInstance(0, nullptr)};
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
    EXPECT_NE(database.getVKDBiMessageQueueObject(1), database.getVKDBiMessageQueueObject(1, "svc"));
    EXPECT_TRUE(database.isKeyInCache("VKDBiMessageQueue_1"));
    EXPECT_TRUE(database.isKeyInCache("VKDBiMessageQueue_1_svc"));
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
    EXPECT_TRUE(VKDBiReceiver::s_bIsCoverByAllowed && VKDBiDepartment::s_bRecLimit && VKDBiDepartment::s_bCountGrp);
    EXPECT_EQ(VKDBiDepartment::s_lMaxMembers, 40);

    settings->cover_by_allowed = settings->receiver_limit = settings->count_groups = 0;
    ASSERT_TRUE(VKConfiguration::getVKConfiguration()->setGlobalSettings());
    VKConfiguration::getVKConfiguration()->getGlobalSettings(true);
    EXPECT_FALSE(VKDBiDepartment::s_bRecLimit);
}

TEST_F(VKDatabaseTest, EveryCallTriesAgainAndTellsWhatIsWrongNow)
{
    PostgresServer::Get(); // the driver manager remembers where it looked first
    Timed<VKDatabase> database;
    UseRoot(dir, "database_type:\tOdbc\ndb_connect_type:\tDSN\ndb_connect_string:\tnowhere\ndb_password:\thush\n");
    EXPECT_EQ(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_THAT(database.getLastErrorString(), HasSubstr("Data source name not found"));
    EXPECT_THAT(database.getLastErrorString(), Not(HasSubstr("hush")));
    EXPECT_EQ(database.getDBSystemObject(), nullptr);
    std::filesystem::remove(dir / "config/datasource");
    EXPECT_EQ(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_THAT(database.getLastErrorString(), HasSubstr(dir / "config"));

    UseRoot(dir, "database_type:\tSdb\n");
    dir.Write("config/receivers.sdb", std::string(3000, 'x'));
    EXPECT_EQ(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_THAT(database.getLastErrorString(), HasSubstr("receivers.sdb]: file is not a database"));
    EXPECT_TRUE(database.isErrorOccured());
    EXPECT_NE(database.getVKDBiDepartmentObject(), nullptr) << "the others are not touched by it";
    EXPECT_FALSE(database.isErrorOccured());
    std::filesystem::remove(dir / "config/receivers.sdb");
    EXPECT_NE(database.getVKDBiReceiverObject(), nullptr);
    EXPECT_TRUE(database.closeDatabase());
    EXPECT_FALSE(database.isReady());
    EXPECT_NE(database.getVKDBiReceiverObject(), nullptr);
}

TEST_F(VKDatabaseTest, ManyThreadsWorkAtOnceWhileOthersEnd)
{
    Timed<VKDatabaseMultiThreaded> database;
    EXPECT_EQ(AddOnManyThreads(database), kLanes * kGenerations);
    ASSERT_NE(database.getVKDBiDepartmentObject(), nullptr);
    EXPECT_EQ(database.getVKDBiDepartmentObject()->GetTotalRecordCount(), kLanes * kGenerations);
    EXPECT_EQ(database.GetThreadCount(), 1);
}

TEST_F(VKDatabaseServerTest, ThreadsShareNoConnectionAndEndedOnesGiveTheirsBack)
{
    for (const bool multipleConnections : {false, true}) {
        SCOPED_TRACE(multipleConnections);
        MakeTables();
        Timed<VKDatabaseMultiThreaded> database(multipleConnections);
        EXPECT_EQ(AddOnManyThreads(database), kLanes * kGenerations) << database.getLastErrorString();
        VKDBiDepartment* const departments = database.getVKDBiDepartmentObject();
        ASSERT_NE(departments, nullptr) << database.getLastErrorString();
        EXPECT_EQ(departments->GetTotalRecordCount(), kLanes * kGenerations);
        database.PurgeAllCache(true);
        EXPECT_TRUE(AwaitConnections(*own, "3")) << "the first one, this thread's, and the one that asks";
        database.closeDatabase();
    }
}

TEST_F(VKDatabaseServerTest, TheCustomConnectionIsHandedOutOnce)
{
    Timed<VKDatabase> database(false);
    ASSERT_TRUE(database.openDatabase()) << database.getLastErrorString();
    VKDBsystem& system = *database.getDBSystemObject();
    const auto shared = system.GetDatabaseInstance();
    const auto custom = system.CreateNewDatabaseInstance();
    ASSERT_NE(custom, shared);
    system.SetCustomDatabaseInstance(custom);
    EXPECT_EQ(system.GetDatabaseInstance(), custom);
    EXPECT_EQ(system.GetDatabaseInstance(), shared);
    database.closeDatabase();
}

/// A statement on a lost connection fails; the factory's next object works again, on every kind of database.
TEST_F(VKDatabaseServerTest, AfterARestartTheNextObjectWorks)
{
    MakeTables();
    Timed<VKDatabase> single(false);
    Timed<VKDatabaseMultiThreaded> perThread(false);
    Timed<VKDatabaseMultiThreaded> perObject(true);
    for (VKDatabase* database : std::initializer_list<VKDatabase*>{&single, &perThread, &perObject}) {
        SCOPED_TRACE(testing::Message() << (database == &single) << (database == &perThread));
        VKDBiDepartment* const departments = database->getVKDBiDepartmentObject();
        ASSERT_NE(departments, nullptr) << database->getLastErrorString();
        EXPECT_EQ(database->getVKDBiDepartmentObject(), departments) << "kept while nothing is lost";
        PostgresServer::Get().Stop();
        EXPECT_THROW(departments->GetTotalRecordCount(), VKDBexception);
        EXPECT_EQ(database->getVKDBiDepartmentObject(), nullptr) << "no object of a dead connection is kept";
        EXPECT_THAT(database->getLastErrorString(), HasSubstr("127.0.0.1")) << "the driver says why";
        PostgresServer::Get().Start();
        VKDBiDepartment* const revived = database->getVKDBiDepartmentObject();
        ASSERT_NE(revived, nullptr) << database->getLastErrorString();
        EXPECT_EQ(revived->GetTotalRecordCount(), 0);
        EXPECT_EQ(database->getVKDBiDepartmentObject(), revived);
        database->closeDatabase();
    }
}
