#include <gmock/gmock.h>

#include "BackendDatabase.h"
#include "DatabaseCells.h"
#include "QueueOperations.h"

/// What may go wrong between a queue and its server: each operation, under each fault.

namespace {

class VKMessageQueueServerFaults : public FaultyQueue<BackendDatabase>
{
protected:
    /// All that is in the queue, as another connection sees it.
    QueueState Content()
    {
        VKODBCResultSet rows;
        other->ExecuteSelectQuery("SELECT msg_name, msg_contents FROM VK_QUEUE_PAGING", rows);
        QueueState content;
        for (int row = 0; row < rows.GetReturnedRowsCount(); ++row)
            content[rows[row][0].GetValueString()] = rows[row][1].GetValueString();
        EXPECT_EQ(static_cast<int>(content.size()), rows.GetReturnedRowsCount());
        return content;
    }

    /// Ends the queue's connection from outside.
    void CutConnection()
    {
        const std::string id = CellOf(*server, "SELECT pg_backend_pid()");
        other->ExecuteCommand("SELECT pg_terminate_backend(" + id + ", 10000)");
    }

    /// From now on a change of a row ends the connection that makes it: behind the statement, or at the commit.
    void CutAfter(const std::string& event, const char* when)
    {
        other->ExecuteCommand("CREATE OR REPLACE FUNCTION cut() RETURNS trigger AS $$ BEGIN "
                              "PERFORM pg_terminate_backend(pg_backend_pid()); RETURN NULL; END $$ LANGUAGE plpgsql");
        other->ExecuteCommand("CREATE CONSTRAINT TRIGGER cut AFTER " + event + " ON VK_QUEUE_PAGING " + when +
                              " FOR EACH ROW EXECUTE FUNCTION cut()");
    }

    /// Another transaction has something until the operation gave up waiting for it.
    void Hold(const std::string& limit, const char* what)
    {
        server->ExecuteCommand("SET " + limit + "='50ms'");
        other->BeginTransaction();
        other->ExecuteCommand(what);
    }
    void LetGo()
    {
        other->RollbackTransaction();
        server->ExecuteCommand("SET lock_timeout=0");
        server->ExecuteCommand("SET statement_timeout=0");
    }

    void StartServer()
    {
        PostgresServer::Get().Start();
        EXPECT_TRUE(other->TestNReconnect());
    }

    std::shared_ptr<VKRDBiDatabase> other = system.CreateNewDatabaseInstance(); ///< a connection of the test's own
};

INSTANTIATE_TEST_SUITE_P(PostgreSql, VKMessageQueueServerFaults, testing::Values(Backend::PostgreSql));

} // namespace

TEST_P(VKMessageQueueServerFaults, EachOperationFailsWholeAndWorksOnTheNextConnection)
{
    const std::string gone = "server closed the connection|no connection to the server|terminating connection";
    const std::string lockTime = "canceling statement due to lock timeout";
    const std::string statementTime = "canceling statement due to statement timeout";
    const char* const lockChanges = "LOCK TABLE VK_QUEUE_PAGING IN SHARE MODE";
    const char* const lockAll = "LOCK TABLE VK_QUEUE_PAGING IN ACCESS EXCLUSIVE MODE";
    const char* const holdQueue = "SELECT pg_advisory_xact_lock(hashtext('VK_QUEUE_PAGING'))";
    const auto stopCutting = [&] { other->ExecuteCommand("DROP TRIGGER cut ON VK_QUEUE_PAGING"); };
    const auto letGo = [&] { LetGo(); };
    const auto start = [&] { StartServer(); };
    const struct
    {
        const char* name;
        std::function<void(const char* event)> begin;
        std::function<void()> end;
        std::string error;
        bool onlyChanges;
        bool reconnects;
    } faults[] = {
        {"cut while idle", [&](auto) { CutConnection(); }, [] {}, gone, false, true},
        {"cut between statements", [&](auto event) { CutAfter(event, ""); }, stopCutting, gone, true, true},
        {"cut at the commit", [&](auto event) { CutAfter(event, "DEFERRABLE INITIALLY DEFERRED"); }, stopCutting, gone,
         true, true},
        {"server stopped", [](auto) { PostgresServer::Get().Stop(); }, start, gone, false, true},
        {"server restarted", [&](auto) { PostgresServer::Get().Stop(), StartServer(); }, [] {}, gone, false, true},
        {"changes locked out", [&](auto) { Hold("lock_timeout", lockChanges); }, letGo, lockTime, true, false},
        {"queue held", [&](auto) { Hold("statement_timeout", holdQueue); }, letGo, statementTime, true, false},
        {"table locked", [&](auto) { Hold("lock_timeout", lockAll); }, letGo, lockTime, false, false},
    };
    for (const auto& fault : faults)
        for (const QueueOperation& operation : Operations()) {
            if (fault.onlyChanges && operation.event == nullptr)
                continue;
            SCOPED_TRACE(std::string(operation.name) + ", " + fault.name);
            Fill();
            fault.begin(operation.event);
            EXPECT_THAT(WholeErrorOf([&] { operation.run(*queue); }), testing::ContainsRegex(fault.error));
            if (fault.reconnects) {
                EXPECT_NE(WholeErrorOf([&] { operation.run(*queue); }), "") << "a statement never connects anew";
            }
            fault.end();
            EXPECT_EQ(Content(), kBefore);
            EXPECT_EQ(CellOf(*other, "SELECT COUNT(*) FROM VK_QUEUE_PAGING WHERE lock_time<>0"), "0") << "taken";
            if (fault.reconnects) {
                EXPECT_TRUE(server->TestNReconnect());
            }
            EXPECT_EQ(WholeErrorOf([&] { operation.run(*queue); }), "");
            EXPECT_EQ(Content(), operation.after);
        }
}
