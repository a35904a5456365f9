#include <gmock/gmock.h>

#include <functional>
#include <map>

#include "BackendDatabase.h"
#include "MessageQueueStore.h"
#include "VKODBCResultSet.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// What may go wrong between a queue and its server: each operation, under each fault.

namespace {

using State = std::map<std::string, std::string>; ///< bodies by name

class VKMessageQueueServerFaults : public QueuesOn<BackendDatabase>
{
protected:
    VKMessageQueueServerFaults() : other(system.CreateNewDatabaseInstance()), queue(Open(1)) {}

    void Fill()
    {
        queue->EmptyQueue();
        for (const auto& [name, body] : kBefore)
            Add(*queue, name, body);
    }

    /// All that is in the queue, as another connection sees it.
    State Content()
    {
        VKODBCResultSet rows;
        other->ExecuteSelectQuery("SELECT msg_name, msg_contents FROM VK_QUEUE_PAGING", rows);
        State content;
        for (int row = 0; row < rows.GetReturnedRowsCount(); ++row)
            content[rows[row][0].GetValueString()] = rows[row][1].GetValueString();
        EXPECT_EQ(static_cast<int>(content.size()), rows.GetReturnedRowsCount());
        return content;
    }

    std::string Value(const std::string& query)
    {
        VKODBCResultSet result;
        other->ExecuteSelectQuery(query, result);
        return result[0][0].GetValueString();
    }

    /// Ends the queue's connection from outside.
    void CutConnection()
    {
        VKODBCResultSet result;
        server->ExecuteSelectQuery("SELECT pg_backend_pid()", result);
        other->ExecuteCommand("SELECT pg_terminate_backend(" + result[0][0].GetValueString() + ", 10000)");
    }

    /// From now on a change of a row ends the connection that makes it: behind the statement, or deferred to the commit.
    void CutAfter(const std::string& event, const char* when)
    {
        other->ExecuteCommand("CREATE OR REPLACE FUNCTION cut() RETURNS trigger AS $$ BEGIN "
                              "PERFORM pg_terminate_backend(pg_backend_pid()); RETURN NULL; END $$ LANGUAGE plpgsql");
        other->ExecuteCommand("CREATE CONSTRAINT TRIGGER cut AFTER " + event + " ON VK_QUEUE_PAGING " + when +
                              " FOR EACH ROW EXECUTE FUNCTION cut()");
    }
    void StopCutting() { other->ExecuteCommand("DROP TRIGGER cut ON VK_QUEUE_PAGING"); }

    static inline const std::string kA = "M.0.A.mxp";
    static inline const std::string kB = "M.0.B.mxp";
    static inline const State kBefore = {{kA, "a"}, {kB, "b"}};

    std::shared_ptr<VKRDBiDatabase> other; ///< a connection of the test's own
    std::unique_ptr<VKDBiMessageQueue> queue;
};

/// An operation on the queue with the messages A and B, what it does to rows, and what the queue holds behind it.
struct Operation
{
    const char* name;
    const char* event; ///< the row event that it comes to; null for one that changes nothing
    std::function<void(VKDBiMessageQueue&)> run;
    State after;
};

INSTANTIATE_TEST_SUITE_P(PostgreSql, VKMessageQueueServerFaults, testing::Values(Backend::PostgreSql));

} // namespace

TEST_P(VKMessageQueueServerFaults, EachOperationFailsWholeAndWorksOnTheNextConnection)
{
    const std::string c = "M.0.C.mxp";
    const Operation operations[] = {
        {"add", "INSERT", [&](auto& q) { Add(q, c, "c"); }, {{kA, "a"}, {kB, "b"}, {c, "c"}}},
        {"replace", "INSERT", [](auto& q) { Add(q, kA, "A2"); }, {{kA, "A2"}, {kB, "b"}}},
        {"modify", "UPDATE", [](auto& q) { Modify(q, kB, "Q.1.B.mxp", "B2"); }, {{kA, "a"}, {"Q.1.B.mxp", "B2"}}},
        {"morph", "UPDATE", [](auto& q) { q.Morph(kA, "R.", false, 0); }, {{"R.0.A.mxp", "a"}, {kB, "b"}}},
        {"delete", "DELETE", [](auto& q) { q.Delete(kB); }, {{kA, "a"}}},
        {"poll", "UPDATE", [](auto& q) { EXPECT_EQ(Ready(q).size(), 2u); }, kBefore},
        {"list", nullptr, [](auto& q) { EXPECT_EQ(Names(q).size(), 2u); }, kBefore},
        {"show", nullptr, [](auto& q) { EXPECT_EQ(Body(q, kA), "a"); }, kBefore},
    };
    const std::string gone = "server closed the connection|no connection to the server|terminating connection";
    const auto hold = [&](const char* what) {
        other->BeginTransaction();
        other->ExecuteCommand(what);
    };
    const struct
    {
        const char* name;
        std::function<void(const Operation&)> begin;
        std::function<void()> end;
        std::string error;
        bool onlyChanges;
        bool reconnects;
    } faults[] = {
        {"cut while idle", [&](auto&) { CutConnection(); }, [] {}, gone, false, true},
        {"cut between statements", [&](auto& one) { CutAfter(one.event, ""); }, [&] { StopCutting(); }, gone, true, true},
        {"cut at the commit", [&](auto& one) { CutAfter(one.event, "DEFERRABLE INITIALLY DEFERRED"); }, [&] { StopCutting(); }, gone, true, true},
        {"server stopped", [](auto&) { PostgresServer::Get().Stop(); },
         [&] {
             PostgresServer::Get().Start();
             EXPECT_TRUE(other->TestNReconnect());
         },
         gone, false, true},
        {"server restarted",
         [&](auto&) {
             PostgresServer::Get().Stop();
             PostgresServer::Get().Start();
             EXPECT_TRUE(other->TestNReconnect());
         },
         [] {}, gone, false, true},
        {"changes locked out by another transaction",
         [&](auto&) {
             server->ExecuteCommand("SET lock_timeout='50ms'");
             hold("LOCK TABLE VK_QUEUE_PAGING IN SHARE MODE");
         },
         [&] {
             other->RollbackTransaction();
             server->ExecuteCommand("SET lock_timeout=0");
         },
         "canceling statement due to lock timeout", true, false},
        {"queue held by another transaction",
         [&](auto&) {
             server->ExecuteCommand("SET statement_timeout='50ms'");
             hold("SELECT pg_advisory_xact_lock(hashtext('VK_QUEUE_PAGING'))");
         },
         [&] {
             other->RollbackTransaction();
             server->ExecuteCommand("SET statement_timeout=0");
         },
         "canceling statement due to statement timeout", true, false},
        {"table locked",
         [&](auto&) {
             server->ExecuteCommand("SET lock_timeout='50ms'");
             hold("LOCK TABLE VK_QUEUE_PAGING IN ACCESS EXCLUSIVE MODE");
         },
         [&] {
             other->RollbackTransaction();
             server->ExecuteCommand("SET lock_timeout=0");
         },
         "canceling statement due to lock timeout", false, false},
    };
    for (const auto& fault : faults)
        for (const Operation& operation : operations) {
            if (fault.onlyChanges && operation.event == nullptr)
                continue;
            SCOPED_TRACE(std::string(operation.name) + ", " + fault.name);
            Fill();
            fault.begin(operation);
            EXPECT_THAT(WholeErrorOf([&] { operation.run(*queue); }), testing::ContainsRegex(fault.error));
            if (fault.reconnects) {
                EXPECT_NE(WholeErrorOf([&] { operation.run(*queue); }), "") << "a statement never connects anew";
            }
            fault.end();
            EXPECT_EQ(Content(), kBefore);
            EXPECT_EQ(Value("SELECT COUNT(*) FROM VK_QUEUE_PAGING WHERE lock_time<>0"), "0") << "nothing is taken";
            if (fault.reconnects) {
                EXPECT_TRUE(server->TestNReconnect());
            }
            EXPECT_EQ(WholeErrorOf([&] { operation.run(*queue); }), "");
            EXPECT_EQ(Content(), operation.after);
        }
}
