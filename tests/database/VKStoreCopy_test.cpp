#include <gmock/gmock.h>

#include "DatabaseCells.h"
#include "ReceiverDatabase.h"
#include "VKDBiXmppGWUser.h"
#include "VKStoreCopy.h"
#include "VKTransactSqlDialect.h"

namespace {

/// An installation on files with something of everything, another one on files and one on a server.
class StoreCopyTest : public FileDatabase
{
protected:
    StoreCopyTest()
    {
        PostgresServer::Get();
        server->Open(PostgresServer::kSource, "postgres", "", true, true);
        BackendDatabase::MakeTables(*server);
        onServer.source.database_type = DbTypeOdbc;
        vk::SetText(onServer.source.connect_string, PostgresServer::kSource, "connect_string");
        vk::SetText(onServer.source.user, "postgres", "user");
        files.source.database_type = otherFiles.source.database_type = DbTypeSdb;
        files.configDirectory = dir.Path().string();
        otherFiles.configDirectory = other.Path().string();
    }

    void Fill(int count)
    {
        VK_DEPARTMENT department;
        SetColumns(vk::kDepartmentTable.fields, department,
                   {{"name", "Fire"}, {"description", "\xF0\x9F\x9A\x92 O'Brien"}});
        std::unique_ptr<VKDBiDepartment>(VKDBiDepartment::CreateInstance(&system))->Add(&department);
        Receivers list;
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            Receiver receiver("r" + number, "p\\%'" + number, {{"department_id", i % 2 == 0 ? department.id : 0}});
            if (i == 0)
                AddDeptRights(&receiver, department.id);
            AddReceiver(&list, &receiver);
        }
        std::vector<VKRefusedRecord> refused;
        const std::unique_ptr<VKDBiReceiver> store(VKDBiReceiver::CreateInstance(&system));
        EXPECT_TRUE(store->AddAll(&list, false, refused));
        std::unique_ptr<VKDBiXmppGWUser>(VKDBiXmppGWUser::CreateInstance(&system));
    }

    /// Copies, and gives back "added+present" of each table that has any.
    static std::string Copy(const vk::StorePlace& from, const vk::StorePlace& to)
    {
        std::string text;
        for (const vk::CopiedTable& table : vk::CopyStores(from, to, nullptr))
            if (table.added + table.present > 0)
                text += std::string(table.table) + ":" + std::to_string(table.added) + "+" +
                        std::to_string(table.present) + " ";
        return text;
    }
    std::string OnServer(const std::string& query) { return CellOf(*server, query); }

    std::unique_ptr<VKRDBiDatabase> server{VKRDBiDatabase::GetInstance(0, nullptr)};
    TempDir other;
    vk::StorePlace files;
    vk::StorePlace otherFiles;
    vk::StorePlace onServer;
};

} // namespace

TEST_F(StoreCopyTest, EverythingMovesToAServerAndBackAndAgain)
{
    Fill(603);
    const std::string all = "department:1+0 receiver:603+0 receiver_dept:1+0 xmpp_user:3+0 ";
    const std::string none = "department:0+1 receiver:0+603 receiver_dept:0+1 xmpp_user:0+3 ";
    EXPECT_EQ(Copy(files, onServer), all);
    EXPECT_EQ(OnServer("SELECT description FROM VK_DEPARTMENT"), "\xF0\x9F\x9A\x92 O'Brien");
    EXPECT_EQ(OnServer("SELECT pin FROM VK_RECEIVER WHERE id=400"), "p\\%'399");
    EXPECT_EQ(Copy(files, onServer), none) << "run again";
    EXPECT_EQ(Copy(onServer, otherFiles), all);
    EXPECT_EQ(Copy(files, otherFiles), none) << "nothing was changed on the way";

    server->ExecuteCommand("DELETE FROM VK_RECEIVER WHERE id=300 OR id=603");
    server->ExecuteCommand("INSERT INTO VK_DEPARTMENT (name, description) VALUES ('its own', '')");
    EXPECT_EQ(Copy(files, onServer), "department:0+1 receiver:2+601 receiver_dept:0+1 xmpp_user:0+3 ");
    EXPECT_EQ(OnServer("SELECT id FROM VK_DEPARTMENT WHERE name='its own'"), "2") << "ids go on behind the copied ones";
}

TEST_F(StoreCopyTest, AFamilyIsCopiedWholeOrNotAtAll)
{
    Fill(3);
    server->ExecuteCommand("INSERT INTO VK_RECEIVER (id, name, description, pin, email, bk_pin, security_code, "
                           "first_name, last_name, voice_number, forward_to_number, ad_code, acct_name, acct_pwd) "
                           "VALUES (3, 'other', '', '', '', '', '', '', '', '', '', '', '', '')");
    EXPECT_EQ(ErrorOf([&] { Copy(files, onServer); }),
              "1000 The row 3 of the table [receiver] stands in the target already, with another content.");
    EXPECT_EQ(OnServer("SELECT COUNT(*) FROM VK_DEPARTMENT"), "1") << "the family before it is complete";
    EXPECT_EQ(OnServer("SELECT COUNT(*) FROM VK_RECEIVER"), "1") << "nothing of this one";

    server->ExecuteCommand("DELETE FROM VK_RECEIVER");
    server->ExecuteCommand("DELETE FROM VK_DEPARTMENT");
    server->ExecuteCommand("DROP TABLE VK_ACTIVE_MXP_CLIENT");
    server->ExecuteCommand("ALTER TABLE VK_RECEIVER_DEPT ADD CHECK (department_id <> 1)");
    EXPECT_EQ(ErrorOf([&] { Copy(files, onServer); }).substr(2),
              "The row 1 of the table [receiver_dept] is refused by the target.");
    EXPECT_EQ(OnServer("SELECT COUNT(*) FROM VK_RECEIVER"), "0");
}

TEST_F(StoreCopyTest, WhatAnOlderVersionMadeIsBroughtUpToDateOnTheWay)
{
    VK_CARRIER carrier;
    carrier.protocol_id = VKProtocolMxpOneWay;
    std::unique_ptr<VKDBiCarrier>(VKDBiCarrier::CreateInstance(&system))->Add(&carrier);
    std::string columns = VKSQLite3Receiver::tTableDesc[0].columns;
    for (const std::string newer : {", advanced_messaging BOOLEAN, msg_encrypt_opt INTEGER", ", is_secure BOOLEAN"})
        columns.erase(columns.find(newer), newer.size()); // misc_settings stays, so the order changes
    VKSQLite3Database(dir / "receivers.sdb", {{"receiver", columns}}, false);
    RunOn(dir / "receivers.sdb", "INSERT INTO receiver VALUES (9, 'old', '', '1', '', 0, 0, 0, 1, 0, 0, '', 0, 0, 0, "
                                 "0, 0, 0, 0, 1, '', '', '', 0, 0, 0, 0, '', '', 0, '', '', '', 0, 0, 0, '{}');");
    EXPECT_EQ(Copy(files, onServer), "carrier:1+0 receiver:1+0 ");
    EXPECT_EQ(OnServer("SELECT misc_settings || advanced_messaging || msg_encrypt_opt || is_secure FROM VK_RECEIVER"),
              "{}001")
        << "its carrier speaks MXP";
}

TEST(Schema, TransactSqlHasKeysIndexesAndForeignKeys)
{
    const std::vector<std::string> statements = vk::SchemaStatements(vk::TransactSqlDialect::Get());
    EXPECT_EQ(statements[0], "CREATE TABLE VK_DEPARTMENT (\n"
                             "    id BIGINT IDENTITY(1,1) PRIMARY KEY,\n"
                             "    name VARCHAR(50) NOT NULL,\n"
                             "    description VARCHAR(100) NOT NULL,\n"
                             "    max_receivers BIGINT,\n"
                             "    num_receivers BIGINT\n"
                             ")");
    EXPECT_EQ(statements[1], "CREATE INDEX ix_department_name ON VK_DEPARTMENT (name)");
    EXPECT_THAT(statements, testing::Contains(testing::HasSubstr(
                                "    department_id_ref AS NULLIF(department_id, 0) PERSISTED,\n"
                                "    FOREIGN KEY (department_id_ref) REFERENCES VK_DEPARTMENT (id)\n)")));
    EXPECT_THAT(statements,
                testing::Contains("CREATE TABLE VK_RECEIVER_DEPT (\n"
                                  "    id BIGINT IDENTITY(1,1) PRIMARY KEY,\n"
                                  "    owner_id BIGINT,\n"
                                  "    department_id BIGINT,\n"
                                  "    FOREIGN KEY (owner_id) REFERENCES VK_RECEIVER (id) ON DELETE CASCADE,\n"
                                  "    FOREIGN KEY (department_id) REFERENCES VK_DEPARTMENT (id)\n"
                                  ")"));
}
