#include <gmock/gmock.h>

#include "ChildProcess.h"
#include "DatabaseCells.h"
#include "ReceiverDatabase.h"

namespace {

/// Receivers in a file, and what stands in it.
class VKReceiverTest : public FileDatabase
{
protected:
    VKReceiverTest() { Open(); }

    void Open() { receivers.reset(VKDBiReceiver::CreateInstance(&system)); }
    std::string Value(const std::string& query) { return CellOf(File(), query); }
    std::string File() { return dir / "receivers.sdb"; }

    std::unique_ptr<VKDBiReceiver> receivers;
};

} // namespace

TEST_F(VKReceiverTest, TablesAndIndexesStandInTheFile)
{
    const auto columns = [](int table) { return std::string(VKSQLite3Receiver::tTableDesc[table].columns); };
    EXPECT_THAT(columns(0), testing::StartsWith("id INTEGER PRIMARY KEY AUTOINCREMENT, name VARCHAR(50) NOT NULL, "
                                                "description VARCHAR(100) NOT NULL, pin VARCHAR(255) NOT NULL, "));
    EXPECT_THAT(columns(0), testing::EndsWith("msg_encrypt_opt INTEGER, misc_settings TEXT, is_secure BOOLEAN"));
    EXPECT_EQ(columns(3), "id INTEGER PRIMARY KEY AUTOINCREMENT, receiver_id INTEGER, disable_start_date INTEGER, "
                          "disable_end_date INTEGER, forward_to_id INTEGER, forward_to_number VARCHAR(10)");
    EXPECT_EQ(columns(4), "id INTEGER PRIMARY KEY AUTOINCREMENT, name VARCHAR(256) NOT NULL, attr_order INTEGER NOT "
                          "NULL, type INTEGER, attr_values TEXT, misc TEXT");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite%';"), "6");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM sqlite_master WHERE type='index';"), "14");
    EXPECT_EQ(Value("SELECT tbl_name FROM sqlite_master WHERE name='ix_rcvrschd_archived';"), "receiver_schd");
}

TEST_F(VKReceiverTest, ARowOfAResultFillsARecordByPosition)
{
    Receiver ann("ann", "1", {{"type", VKReceiverTwoWay}});
    ASSERT_TRUE(receivers->Add(&ann, false));
    VKSQLite3Database file(File(), true);
    VKSQLite3ResultSet result;
    file.SelectQueryTransaction("SELECT * FROM receiver;", result);
    Receiver read;
    EXPECT_TRUE(receivers->FillStructFromResultSet(&read, result, 0));
    EXPECT_EQ(read["name type"], "ann 2");
    for (const int missing : {-1, 1})
        EXPECT_FALSE(receivers->FillStructFromResultSet(&read, result, missing));
    EXPECT_THROW(file.ForEachRow("SELECT nothing FROM receiver;", [](const vk::SqlRow&) {}), VKDBexception);
    EXPECT_THROW(file.ForEachRow("SELECT * FROM receiver;", [](const vk::SqlRow&) { throw std::bad_alloc(); }),
                 std::bad_alloc);
    EXPECT_TRUE(file.CloseDatabase()) << "nothing of the statement is left";
}

TEST_F(VKReceiverTest, TheLimitHoldsWhenNoDepartmentFileIsThereYet)
{
    SetLimits(true, 10);
    Receiver receiver("one", "1", {{"department_id", 7}});
    EXPECT_TRUE(receivers->Add(&receiver, false));
}

TEST_F(VKReceiverTest, AnOlderFileIsBroughtUpToDateAndKeepsItsRows)
{
    receivers.reset();
    VK_CARRIER carrier;
    carrier.protocol_id = VKProtocolMxpOneWay;
    std::unique_ptr<VKDBiCarrier>(VKDBiCarrier::CreateInstance(&system))->Add(&carrier);
    std::filesystem::remove(File());
    std::string columns = VKSQLite3Receiver::tTableDesc[0].columns;
    for (const std::string newer : {", advanced_messaging BOOLEAN, msg_encrypt_opt INTEGER", ", is_secure BOOLEAN"})
        columns.erase(columns.find(newer), newer.size()); // misc_settings stays, so the order changes
    const char* const history = VKSQLite3Receiver::tTableDesc[3].columns;
    VKSQLite3Database(File(), {{"receiver", columns}, {"recv_disable_history", history}}, false);
    for (const std::string values : {"'old', 1, '{}'", "'other', 0, ''"})
        RunOn(File(), "INSERT INTO receiver (description, pin, email, bk_pin, security_code, first_name, last_name, "
                      "voice_number, forward_to_number, ad_code, acct_name, acct_pwd, name, carrier_id, "
                      "misc_settings) VALUES ('', '1', '', '', '', '', '', '', '', '', '', '', " + values + ");");
    RunOn(File(), "INSERT INTO recv_disable_history (receiver_id, disable_start_date, disable_end_date) VALUES "
                  "(1, 10, 0), (2, 15, 0), (1, 20, 30), (1, 40, 0), (1, 50, 0);");
    const auto named = [&](const char* name) {
        Receiver read;
        EXPECT_TRUE(receivers->GetByName(&read, name));
        return read["misc_settings msg_encrypt_opt is_secure"];
    };
    Open();
    EXPECT_EQ(named("old"), "{} 0 1") << "its carrier speaks MXP";
    EXPECT_EQ(named("other"), " 0 0");
    receivers->SetFilter(FltEither, FltEither, FltOnlyDisabled);
    std::vector<VK_NAME_RECORD> names;
    receivers->GetNamesList(names);
    EXPECT_EQ(names.size(), 2u) << "a column that came later is 0 in them, as conditions ask";
    receivers->ClearFilter();
    EXPECT_EQ(Value("SELECT group_concat(disable_end_date, ' ') FROM "
                    "(SELECT * FROM recv_disable_history ORDER BY id);"),
              "20 0 30 50 0")
        << "each ends as the receiver's next one begins";
    Receiver added("new", "2", {{"msg_encrypt_opt", 3}, {"is_secure", true}, {"misc_settings", "[]"}});
    ASSERT_TRUE(receivers->Add(&added, false));
    EXPECT_EQ(named("new"), "[] 3 1");
    receivers->UpdateReceiverSecureStatus(1, false);
    Open();
    EXPECT_EQ(named("old"), "{} 0 0") << "that happens once";
}

TEST_F(VKReceiverTest, TwoProcessesAddAtOnceAndNoneIsLost)
{
    receivers.reset();
    const auto add = [this](const std::string& prefix) {
        return [this, prefix] {
            std::unique_ptr<VKDBiReceiver> own(VKDBiReceiver::CreateInstance(&system));
            for (int i = 0; i < 15; ++i) {
                Receiver receiver(prefix + std::to_string(i), "1", {{"guest", 1}});
                if (!own->Add(&receiver, true))
                    return 1;
            }
            return 0;
        };
    };
    ChildProcess one(add("one"));
    ChildProcess two(add("two"));
    EXPECT_EQ(one.Wait(), 0);
    EXPECT_EQ(two.Wait(), 0);
    EXPECT_EQ(Value("SELECT COUNT(*) FROM receiver;"), "30");
    EXPECT_EQ(Value("SELECT COUNT(DISTINCT owner_id) FROM receiver_dept;"), "30");
}

TEST_F(VKReceiverTest, ReadingAcrossFilesWritesNothing)
{
    const auto read = [&] {
        ReceiverViews views;
        receivers->Get(&views);
        return std::filesystem::last_write_time(dir.Path());
    };
    const auto before = read(); // makes the files that are not there yet
    EXPECT_EQ(read(), before) << "a file that names both was made and deleted";
}

TEST(VKReceiverTypeName, IsShortAndAlphaOnlyWhenAskedFor)
{
    std::string names;
    for (int type = 0; type <= 4; ++type)
        names += VKDBiReceiver::GetReceiverTypeName(type, type % 2 == 0) + "|";
    EXPECT_EQ(names, "Alpha|Num|2Way|Fax||");
    EXPECT_EQ(VKDBiReceiver::GetReceiverTypeName(VKReceiverAlpha, false), "");
}
