#include <gmock/gmock.h>

#include "DatabaseCells.h"
#include "ReceiverDatabase.h"
#include "VKStoreCopy.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

/// What goes wrong on a server while entities work on it.
class ServerFaultTest : public ReceiverDatabase
{
protected:
    /// From now on a row for this table ends the connection that adds it.
    void CutConnectionsThatInsertInto(const std::string& table)
    {
        server->ExecuteCommand("CREATE FUNCTION cut() RETURNS trigger AS $$ BEGIN "
                               "PERFORM pg_terminate_backend(pg_backend_pid()); RETURN NEW; END $$ LANGUAGE plpgsql");
        server->ExecuteCommand("CREATE TRIGGER cut BEFORE INSERT ON " + table + " FOR EACH ROW EXECUTE FUNCTION cut()");
    }
    void StopCutting(const std::string& table) { server->ExecuteCommand("DROP TRIGGER cut ON " + table); }

    std::string Value(const std::string& query) { return CellOf(*server, query); }
};

INSTANTIATE_TEST_SUITE_P(PostgreSql, ServerFaultTest, testing::Values(Backend::PostgreSql));

} // namespace

TEST_P(ServerFaultTest, AConnectionCutInATransactionLeavesNothingOfIt)
{
    const unsigned long guest = AddDepartment("Guest");
    CutConnectionsThatInsertInto("VK_RECEIVER_DEPT");
    Receiver receiver("Ann", "1", {{"id", 77}, {"guest", guest}});
    EXPECT_THROW(receivers->Add(&receiver, false), VKDBexception) << "the connection died behind its row";
    EXPECT_EQ(receiver.id, 77u);
    EXPECT_THROW(receivers->GetTotalRecordCount(), VKDBexception) << "a statement never connects anew";

    EXPECT_TRUE(server->TestNReconnect());
    EXPECT_EQ(receivers->GetTotalRecordCount(), 0);
    StopCutting("VK_RECEIVER_DEPT");
    EXPECT_TRUE(receivers->Add(&receiver, false)) << "the next transaction is whole again";
    EXPECT_EQ(Value("SELECT COUNT(*) FROM VK_RECEIVER_DEPT"), "1");
}

TEST_P(ServerFaultTest, ACopyThatIsCutLeavesItsFamilyAsItWas)
{
    vk::StorePlace files;
    vk::StorePlace target;
    files.configDirectory = dir.Path().string();
    files.source.database_type = DbTypeSdb;
    target.source.database_type = DbTypeOdbc;
    vk::SetText(target.source.connect_string, PostgresServer::kSource, "connect_string");
    vk::SetText(target.source.user, "postgres", "user");
    Store("Ann", {{"guest", AddDepartment("Guest")}});
    vk::CopyStores(target, files, nullptr);
    MakeTables(*server);

    CutConnectionsThatInsertInto("VK_RECEIVER_DEPT");
    EXPECT_NE(ErrorOf([&] { vk::CopyStores(files, target, nullptr); }), "");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM VK_DEPARTMENT"), "1") << "the family before it is complete";
    EXPECT_EQ(Value("SELECT COUNT(*) FROM VK_RECEIVER"), "0");
    StopCutting("VK_RECEIVER_DEPT");
    vk::CopyStores(files, target, nullptr);
    EXPECT_EQ(Value("SELECT COUNT(*) FROM VK_RECEIVER_DEPT"), "1") << "run again";
}

TEST_P(ServerFaultTest, AServerThatIsNotThereIsNamedWithoutThePassword)
{
    const std::unique_ptr<VKRDBiDatabase> other(VKRDBiDatabase::GetInstance(0, nullptr));
    PostgresServer::Get().Stop();
    for (const bool isDSN : {true, false}) {
        const std::string connect =
            isDSN ? PostgresServer::kSource : std::string("DSN=") + PostgresServer::kSource + ";UID=postgres;PWD=hush";
        EXPECT_THAT(WholeErrorOf([&] { other->Open(connect, "postgres", "hush", isDSN, true); }),
                    AllOf(HasSubstr("127.0.0.1"), Not(HasSubstr("hush"))));
        EXPECT_FALSE(other->IsOpen());
        EXPECT_FALSE(other->TestNReconnect());
        EXPECT_THAT(WholeErrorOf([&] { other->ExecuteCommand("SELECT 1"); }),
                    AllOf(HasSubstr("is not open"), Not(HasSubstr("hush"))));
    }
    PostgresServer::Get().Start();
    EXPECT_TRUE(other->TestNReconnect()) << "with what it was opened with";
}
