#include "ChildProcess.h"
#include "QueueOfMessages.h"
#include "StoreWatch.h"
#include "TroubleFilter.h"

#include <atomic>

#include <sqlite3.h>

namespace {

using testing::HasSubstr;
using Names = std::set<std::string>;

/// What goes wrong with a queue while a messenger works on it.
class QueueFaults : public QueueOfMessages
{
protected:
    void AddSome(const std::string& prefix, int count)
    {
        for (int i = 0; i < count; ++i) {
            const std::string job = prefix + std::to_string(i);
            Add(job, Body(job, i % 2 == 0 ? "CONFIRM" : "", "", i % 2 == 0));
            m_expected.insert("M.0." + job + ".fake");
        }
    }
    /// All that was added is in the archive, and was sent once.
    void ExpectEachSentOnce(RunningProgram& messenger) const
    {
        EXPECT_TRUE(installation.Await(4, m_expected)) << messenger.Err();
        EXPECT_EQ(messenger.End(SIGTERM), 0) << messenger.Err();
        EXPECT_EQ(installation.Names(1), Names{});
        EXPECT_EQ(installation.Names(5), Names{});
        EXPECT_EQ(Count(messenger.Out(), "  send  "), m_expected.size()) << messenger.Out();
    }
    static std::size_t Count(const std::string& text, const std::string& part)
    {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++count;
        return count;
    }
    std::string Log() const { return installation.Dir().Read("root/logs/vkmessenger.log"); }

    Names m_expected;
};

class QueueFaultsOnAServer : public QueueFaults
{
};
INSTANTIATE_TEST_SUITE_P(PostgreSql, QueueFaultsOnAServer, testing::Values(Backend::PostgreSql));

class QueueFaultsInFiles : public QueueFaults
{
};
INSTANTIATE_TEST_SUITE_P(Files, QueueFaultsInFiles, testing::Values(Backend::Files));

TEST_P(QueueFaultsOnAServer, AServerThatGoesAndComesBackIsToldAndNothingIsLost)
{
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    AddSome("before", 4);
    Add("open", Body("open", "READ", "", true));
    EXPECT_TRUE(messenger.AwaitOut("open  report")) << messenger.Out();
    PostgresServer::Get().Stop();
    EXPECT_TRUE(Until([&] { return messenger.Err().find("Connection refused") != std::string::npos; }));
    PostgresServer::Get().Start();
    EXPECT_TRUE(Until([&] { return Log().find("connected to the server again") != std::string::npos; }));
    EXPECT_LE(Count(messenger.Err(), "\n"), 3u) << messenger.Err();
    AddSome("behind", 4);
    EXPECT_TRUE(installation.Await(4, m_expected)) << messenger.Err();
    EXPECT_TRUE(installation.Await(1, {"Q.1.open.fake"})) << "it still waits for its answer";
    EXPECT_TRUE(installation.Queue(1).Delete("Q.1.open.fake"));
    EXPECT_EQ(Count(messenger.Out(), "open  send"), 1u);
    EXPECT_EQ(messenger.End(SIGTERM), 0) << messenger.Err();
    EXPECT_EQ(Count(messenger.Out(), "  send  "), m_expected.size() + 1) << messenger.Out();
    EXPECT_EQ(installation.Names(1), Names{});
}

TEST_P(QueueFaultsOnAServer, ConnectionsThatAreCutLoseAndDoubleNothing)
{
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    for (int cut = 0; cut < 12; ++cut) {
        AddSome("cut" + std::to_string(cut) + "-", 6);
        std::this_thread::sleep_for(std::chrono::milliseconds(17 * cut)); // anywhere in its work
        EXPECT_EQ(PostgresServer::Get().RunScript("SELECT 1 FROM (SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                                                  "WHERE pid<>pg_backend_pid() AND usename='postgres') t LIMIT 0")
                      .find("ERROR"),
                  std::string::npos);
    }
    ExpectEachSentOnce(messenger);
}

TEST_P(QueueFaultsOnAServer, WhatTheServerRefusesIsToldWithoutTheBodyAndItsPassword)
{
    PostgresServer::Get().RunScript("ALTER TABLE VK_QUEUE_COMPLETED ADD CONSTRAINT refuse CHECK (id < 0)");
    Add("refused", R"({"job_id": "refused", "receiver_pin": "a@b", "password": "s3cret"})");
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    EXPECT_TRUE(Until([&] { return messenger.Err().find("\"refuse\"") != std::string::npos; }));
    PostgresServer::Get().RunScript("ALTER TABLE VK_QUEUE_COMPLETED DROP CONSTRAINT refuse");
    EXPECT_TRUE(installation.Await(4, {"M.0.refused.fake"}));
    EXPECT_EQ(messenger.End(SIGTERM), 0);
    EXPECT_EQ((messenger.Err() + Log()).find("s3cret"), std::string::npos) << messenger.Err();
    EXPECT_EQ(installation.Body(4, "M.0.refused.fake")["password"].asString(), "s3cret");
}

TEST_P(QueueFaultsInFiles, AQueueThatAnotherProcessLocksForATimeGoesOnBehindIt)
{
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    AddSome("before", 4);
    EXPECT_TRUE(installation.Await(4, m_expected)) << messenger.Err();
    for (const char* queue : {"spool", "archive"}) {
        AddSome(queue, 6);
        const std::string file = installation.Root() + "/" + queue + "/queue_metabase.sdb";
        Signal locked;
        Signal enough;
        ChildProcess other([&] {
            sqlite3* database = nullptr;
            const auto run = [&](const char* text) { return sqlite3_exec(database, text, nullptr, nullptr, nullptr); };
            const bool isLocked = sqlite3_open(file.c_str(), &database) == SQLITE_OK &&
                                  sqlite3_busy_timeout(database, 30000) == SQLITE_OK && run("BEGIN IMMEDIATE") == SQLITE_OK;
            locked.Send();
            enough.Await();
            return isLocked && run("ROLLBACK") == SQLITE_OK ? 0 : 1;
        });
        EXPECT_TRUE(locked.Await());
        std::this_thread::sleep_for(std::chrono::milliseconds(500)); // long enough for it to run into the lock
        enough.Send();
        EXPECT_EQ(other.Wait(), 0);
        EXPECT_TRUE(installation.Await(4, m_expected)) << messenger.Err();
    }
    ExpectEachSentOnce(messenger);
}

TEST(StoreWatch, TellsOfAnOperationThatLastsAndOfNoOther)
{
    using std::chrono::milliseconds;
    std::atomic<int> told{0};
    vk::StoreWatch watch([&](std::chrono::seconds) { ++told; }, milliseconds(50), milliseconds(20));
    const auto end = std::chrono::steady_clock::now() + milliseconds(200);
    while (std::chrono::steady_clock::now() < end)
        const vk::StoreWatch::Operation quick(watch);
    EXPECT_EQ(told, 0);
    const vk::StoreWatch::Operation slow(watch);
    EXPECT_TRUE(Until([&] { return told >= 2; }));
}

TEST(TroubleFilter, TellsEachTroubleOnceAMinuteAndFewOfMany)
{
    vk::TroubleFilter filter;
    const vk::TroubleFilter::Clock::time_point start{std::chrono::hours(1)};
    EXPECT_EQ(filter.Pass("locked", start), "locked");
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(filter.Pass("locked", start + std::chrono::seconds(i % 60)), "");
    EXPECT_EQ(filter.Pass("full", start + std::chrono::seconds(59)), "full (100 failures before it not told)");
    EXPECT_EQ(filter.Pass("locked", start + std::chrono::seconds(60)), "locked");
    int told = 0;
    for (int i = 0; i < 1000; ++i)
        told += filter.Pass("message " + std::to_string(i), start + std::chrono::seconds(61)).empty() ? 0 : 1;
    EXPECT_EQ(told, 9);
}

} // namespace
