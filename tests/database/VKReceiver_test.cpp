#include <gmock/gmock.h>

#include "ChildProcess.h"
#include "ReceiverDatabase.h"
#include "VKBALMessages.h"
#include "VKRecordText.h"
#include "VKSQLite3Database.h"
#include "VKSQLite3Receiver.h"

namespace {

/// Gives every field a value of its own.
void FillAll(VK_RECEIVER& receiver)
{
    int number = 0;
    vk::ForEachField(vk::kReceiverTable.fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        Value& value = field.of(receiver);
        ++number;
        if constexpr (std::is_same_v<Value, bool>)
            value = number % 2 == 0;
        else if constexpr (std::is_same_v<Value, char*>)
            value = strdup(R"({"MXP":{"DeviceID":"it's \"so\""}})");
        else if constexpr (std::is_array_v<Value>)
            vk::SetText(value, (std::string(field.name) + "'%_").substr(0, sizeof value - 1), field.name);
        else
            value = static_cast<Value>(number * 1000);
    });
}

class VKReceiverTest : public FileDatabase
{
protected:
    VKReceiverTest() : receivers(VKDBiReceiver::CreateInstance(&system)) {}

    std::string Value(const std::string& query)
    {
        VKSQLite3Database file(dir / "receivers.sdb", true);
        VKSQLite3ResultSet result;
        file.SelectQueryTransaction(query, result);
        return result.GetReturnedRowsCount() > 0 ? result[0][0].GetValueString() : "none";
    }

    std::unique_ptr<VKDBiReceiver> receivers;
};

} // namespace

TEST_F(VKReceiverTest, TablesAndIndexesStandInTheFile)
{
    const std::string columns = VKSQLite3Receiver::tTableDesc[0].columns;
    EXPECT_THAT(columns, testing::StartsWith("id INTEGER PRIMARY KEY AUTOINCREMENT, name VARCHAR(50) NOT NULL, "
                                             "description VARCHAR(100) NOT NULL, pin VARCHAR(255) NOT NULL, "));
    EXPECT_THAT(columns, testing::EndsWith("msg_encrypt_opt INTEGER, misc_settings TEXT, is_secure BOOLEAN"));
    EXPECT_STREQ(VKSQLite3Receiver::tTableDesc[3].columns,
                 "id INTEGER PRIMARY KEY AUTOINCREMENT, receiver_id INTEGER, disable_start_date INTEGER, "
                 "disable_end_date INTEGER, forward_to_id INTEGER, forward_to_number VARCHAR(10)");
    EXPECT_STREQ(VKSQLite3Receiver::tTableDesc[4].columns,
                 "id INTEGER PRIMARY KEY AUTOINCREMENT, name VARCHAR(256) NOT NULL, attr_order INTEGER NOT NULL, type "
                 "INTEGER, attr_values TEXT, misc TEXT");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite%';"), "6");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM sqlite_master WHERE type='index';"), "14");
    EXPECT_EQ(Value("SELECT tbl_name FROM sqlite_master WHERE name='ix_rcvrschd_archived';"), "receiver_schd");
}

TEST_F(VKReceiverTest, EveryFieldComesBackAsItWentIn)
{
    Receiver added;
    FillAll(added);
    added.disabled = true;
    added.status_code = 1;
    AddDeptRights(&added, 5);
    AddDeptRights(&added, 6);
    VKSQLite3Receiver store;
    ASSERT_TRUE(store.Initialize(&system));
    ASSERT_TRUE(store.Add(&added, false));

    Receiver read;
    ASSERT_TRUE(store.GetByID(&read, added.id));
    added.disabled = false; // a column that this layer does not write
    vk::ForEachField(vk::kReceiverTable.fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        if constexpr (std::is_array_v<Value> || std::is_same_v<Value, char*>)
            EXPECT_STREQ(field.of(read), field.of(added)) << field.name;
        else
            EXPECT_EQ(field.of(read), field.of(added)) << field.name;
    });
    ASSERT_EQ(read.dept_rights_count, 2);
    EXPECT_EQ(read.dept_rights[1].department_id, 6u);
    EXPECT_EQ(read.dept_rights[1].owner_id, added.id);

    Receiver copy;
    DuplicateReceiver(&copy, &read);
    EXPECT_NE(copy.dept_rights, read.dept_rights);
    EXPECT_NE(copy.misc_settings, read.misc_settings);
    EXPECT_STREQ(copy.misc_settings, read.misc_settings);
    VK_RECEIVER_LIST list;
    AddReceiver(&list, &copy);
    EXPECT_EQ(list.list[0].dept_rights[0].department_id, 5u);
    EmptyReceiverList(&list);
    EXPECT_EQ(list.count, 0);
}

TEST_F(VKReceiverTest, FoundByNameAndPinWhateverTheCase)
{
    Receiver ann("Ann [Pager] {1}", "Ann@Example.org");
    Receiver bob("bob", "0'42\\%");
    ASSERT_TRUE(receivers->Add(&ann, false));
    ASSERT_TRUE(receivers->Add(&bob, false));
    Receiver read;
    EXPECT_TRUE(receivers->GetByName(&read, "ANN [pager] {1}"));
    EXPECT_EQ(read.id, ann.id);
    EXPECT_TRUE(receivers->GetByPin(&read, "ann@EXAMPLE.org"));
    EXPECT_EQ(read.id, ann.id);
    EXPECT_TRUE(receivers->GetByPin(&read, "0'42\\%"));
    EXPECT_EQ(read.id, bob.id);
    EXPECT_FALSE(receivers->GetByPin(&read, "0'42\\x"));
    EXPECT_STREQ(read.name, "");
    EXPECT_FALSE(receivers->GetByID(&read, 99));
    unsigned long id = 0;
    EXPECT_TRUE(receivers->GetIDByName(id, "BOB"));
    EXPECT_EQ(id, bob.id);
    EXPECT_EQ(receivers->GetTotalRecordCount(), 2);
    VK_RECEIVER_LIST list;
    EXPECT_TRUE(receivers->Get(&list));
    ASSERT_EQ(list.count, 2);
    EXPECT_STREQ(list.list[0].name, "Ann [Pager] {1}");
    EmptyReceiverList(&list);
}

TEST_F(VKReceiverTest, ARowOfAResultFillsARecordByPosition)
{
    Receiver ann("ann", "1");
    ann.type = VKReceiverTwoWay;
    ASSERT_TRUE(receivers->Add(&ann, false));
    VKSQLite3Database file(dir / "receivers.sdb", true);
    VKSQLite3ResultSet result;
    file.SelectQueryTransaction("SELECT * FROM receiver;", result);
    Receiver read;
    EXPECT_TRUE(receivers->FillStructFromResultSet(&read, result, 0));
    EXPECT_STREQ(read.name, "ann");
    EXPECT_EQ(read.type, VKReceiverTwoWay);
    for (const int missing : {-1, 1})
        EXPECT_FALSE(receivers->FillStructFromResultSet(&read, result, missing));
    EXPECT_THROW(file.ForEachRow("SELECT nothing FROM receiver;", [](const vk::SqlRow&) {}), VKDBexception);
    EXPECT_THROW(file.ForEachRow("SELECT * FROM receiver;", [](const vk::SqlRow&) { throw std::bad_alloc(); }),
                 std::bad_alloc);
    EXPECT_TRUE(file.CloseDatabase()) << "nothing of the statement is left";
}

TEST_F(VKReceiverTest, BrokenRulesAreToldTogetherAndNothingIsStored)
{
    Receiver first("Taken", "1");
    ASSERT_TRUE(receivers->Add(&first, false));
    const struct
    {
        const char* name;
        const char* pin;
        std::initializer_list<int> broken;
    } rows[] = {{"", "1", {1110}},           {" \t", "1", {1110}},           {"a/b", "1", {1111}},
                {"it's", "1", {1111}},       {"Z\xC3\xBCrich", "1", {1111}}, {"ok", " \t ", {1113}},
                {"TAKEN", "", {1113, 1114}}, {"<", "", {1111, 1113}}};
    for (const auto& row : rows) {
        Receiver receiver(row.name, row.pin);
        std::string expected = "1000 ";
        for (const int number : row.broken)
            expected += std::string(vk::MessageText(number)) + "\n";
        EXPECT_EQ(ErrorOf([&] { receivers->Add(&receiver, false); }), expected) << row.name;
    }
    EXPECT_EQ(receivers->GetTotalRecordCount(), 1);
}

TEST_F(VKReceiverTest, ThePasswordIsStoredAsDigestAndTheCallerKeepsTheClearOne)
{
    Receiver hashed("hashed", "1");
    vk::SetText(hashed.acct_pwd, "secret", "acct_pwd");
    ASSERT_TRUE(receivers->Add(&hashed, true));
    EXPECT_STREQ(hashed.acct_pwd, "secret");
    EXPECT_EQ(Value("SELECT acct_pwd FROM receiver WHERE id=1;"), "5ebe2294ecd0e0f08eab7690d2a6ee69");

    Receiver taken("hashed", "1");
    vk::SetText(taken.acct_pwd, "secret", "acct_pwd");
    EXPECT_NE(ErrorOf([&] { receivers->Add(&taken, true); }), "");
    EXPECT_STREQ(taken.acct_pwd, "secret") << "also when the receiver was refused";

    Receiver plain("plain", "1");
    ASSERT_TRUE(receivers->Add(&plain, true));
    EXPECT_EQ(Value("SELECT acct_pwd FROM receiver WHERE name='plain';"), "");
}

TEST_F(VKReceiverTest, MxpSettingsAreStoredBesideWhatElseIsThere)
{
    Receiver receiver("mobile", "ann@host");
    receiver.misc_settings = strdup(R"({"AdvMsgng":{"x":1},"MXP":{"DeviceID":"old","MxpPassword":"kept"}})");
    NeedMxpFields(&receiver)->device_id_set = true;
    vk::SetText(receiver.mxp->device_id, "\xC3\xBC \"1\"", "device_id");
    receiver.mxp->bk_mxp_password_set = true;
    vk::SetText(receiver.mxp->bk_mxp_password, "<p'w>", "bk_mxp_password");
    ASSERT_TRUE(receivers->Add(&receiver, false));

    Receiver read;
    ASSERT_TRUE(receivers->GetByID(&read, receiver.id));
    EXPECT_THAT(read.misc_settings, testing::StartsWith(R"({"AdvMsgng":{"x":1},"MXP":{)"));
    EXPECT_THAT(read.misc_settings, testing::Not(testing::HasSubstr("<p'w>"))) << "passwords are encoded";
    ASSERT_TRUE(ConvertJSONToMXPFieldsData(&read));
    Receiver copy;
    DuplicateReceiver(&copy, &read);
    EXPECT_STREQ(copy.mxp->device_id, "\xC3\xBC \"1\"");
    EXPECT_STREQ(copy.mxp->bk_mxp_password, "<p'w>");
    EXPECT_STREQ(copy.mxp->mxp_password, "kept");
    EXPECT_FALSE(copy.mxp->device_push_service_set);

    for (const std::string& bad :
         {std::string("{"), std::string("[]"), std::string(R"({"MXP":1})"), std::string(5000, '[')}) {
        Receiver broken("broken", "1");
        broken.misc_settings = strdup(bad.c_str());
        NeedMxpFields(&broken);
        EXPECT_EQ(ErrorOf([&] { receivers->Add(&broken, false); }),
                  "-1 Unable to parse MXP Settings Data for Receiver[ broken ].");
        EXPECT_THROW(ConvertJSONToMXPFieldsData(&broken), VKDBexception);
    }
}

TEST_F(VKReceiverTest, AFullDepartmentTakesNoMore)
{
    VK_DEPARTMENT department;
    vk::SetText(department.name, "Small", "name");
    department.max_receivers = 2;
    SetLimits(true, 10);
    std::unique_ptr<VKDBiDepartment> departments(VKDBiDepartment::CreateInstance(&system));
    ASSERT_TRUE(departments->Add(&department));
    for (const char* name : {"one", "two"}) {
        Receiver receiver(name, "1");
        receiver.department_id = department.id;
        EXPECT_TRUE(receivers->Add(&receiver, false));
    }
    Receiver third("three", "1");
    third.department_id = department.id;
    EXPECT_TRUE(receivers->IsDepartmentRecvLimitReached(department.id));
    EXPECT_EQ(ErrorOf([&] { receivers->Add(&third, false); }), "100 Department maximum receivers limit exceeds.");
    third.department_id = 0;
    EXPECT_EQ(ErrorOf([&] { receivers->Add(&third, false); }), "1000 " + std::string(vk::MessageText(1132)) + "\n")
        << "a receiver of no department would escape all limits";
    SetLimits(false, 0);
    Receiver fourth("four", "1");
    fourth.department_id = department.id;
    EXPECT_TRUE(receivers->Add(&fourth, false));
    EXPECT_TRUE(receivers->IsDepartmentRecvLimitReached(department.id)) << "the department's own limit is still there";
}

TEST_F(VKReceiverTest, TheLimitHoldsWhenNoDepartmentFileIsThereYet)
{
    SetLimits(true, 10);
    Receiver receiver("one", "1");
    receiver.department_id = 7;
    EXPECT_TRUE(receivers->Add(&receiver, false));
}

TEST_F(VKReceiverTest, OffDutyWithoutCoverStartsAHistoryRow)
{
    const struct
    {
        const char* name;
        int status;
        unsigned long cover;
        long start;
    } rows[] = {{"covered", 2, 7, 100}, {"available", 1, 0, 100}, {"undated", 2, 0, 0}, {"off", 2, 0, 100}};
    VKSQLite3Receiver store; // behind the rules: these dates are past
    ASSERT_TRUE(store.Initialize(&system));
    for (const auto& row : rows) {
        Receiver receiver(row.name, "1");
        receiver.status_code = row.status;
        receiver.forward_to_id = row.cover;
        receiver.disable_start_date = row.start;
        receiver.disable_end_date = 200;
        ASSERT_TRUE(store.Add(&receiver, false));
    }
    EXPECT_EQ(Value("SELECT COUNT(*) FROM recv_disable_history;"), "1");
    EXPECT_EQ(Value("SELECT receiver_id || ' ' || disable_start_date || ' ' || disable_end_date FROM "
                    "recv_disable_history;"),
              "4 100 200");
}

TEST_F(VKReceiverTest, AnOlderFileIsBroughtUpToDateAndKeepsItsRows)
{
    receivers.reset();
    VK_CARRIER carrier;
    carrier.protocol_id = VKProtocolMxpOneWay;
    std::unique_ptr<VKDBiCarrier>(VKDBiCarrier::CreateInstance(&system))->Add(&carrier);
    std::filesystem::remove(dir / "receivers.sdb");
    std::string columns = VKSQLite3Receiver::tTableDesc[0].columns;
    for (const std::string& newer :
         {std::string(", advanced_messaging BOOLEAN, msg_encrypt_opt INTEGER"), std::string(", is_secure BOOLEAN")})
        columns.erase(columns.find(newer), newer.size()); // misc_settings stays, so the order changes
    {
        VKSQLite3Database old(
            dir / "receivers.sdb",
            {{"receiver", columns}, {"recv_disable_history", VKSQLite3Receiver::tTableDesc[3].columns}}, false);
        VKSQLite3ResultSet result;
        unsigned long id = 0;
        for (const char* values : {"'old', 1, '{}'", "'other', 0, ''"})
            ASSERT_TRUE(old.InsertQueryTransaction(
                std::string("INSERT INTO receiver (description, pin, email, bk_pin, security_code, first_name, "
                            "last_name, voice_number, forward_to_number, ad_code, acct_name, acct_pwd, name, "
                            "carrier_id, misc_settings) VALUES ('', '1', '', '', '', '', '', '', '', '', '', '', ") +
                    values + ");",
                result, id));
        for (const char* period : {"1, 10, 0", "2, 15, 0", "1, 20, 30", "1, 40, 0", "1, 50, 0"})
            ASSERT_TRUE(old.InsertQueryTransaction("INSERT INTO recv_disable_history (receiver_id, disable_start_date, "
                                                   "disable_end_date) VALUES (" +
                                                       std::string(period) + ");",
                                                   result, id));
    }
    receivers.reset(VKDBiReceiver::CreateInstance(&system));
    Receiver read;
    ASSERT_TRUE(receivers->GetByName(&read, "old"));
    EXPECT_STREQ(read.misc_settings, "{}");
    EXPECT_TRUE(read.is_secure) << "its carrier speaks MXP";
    ASSERT_TRUE(receivers->GetByName(&read, "other"));
    EXPECT_FALSE(read.is_secure);
    receivers->SetFilter(FltEither, FltEither, FltOnlyDisabled);
    std::vector<VK_NAME_RECORD> names;
    receivers->GetNamesList(names);
    EXPECT_EQ(names.size(), 2u) << "a column that came later is 0 in them, as conditions ask";
    receivers->ClearFilter();
    EXPECT_EQ(
        Value("SELECT group_concat(disable_end_date, ' ') FROM (SELECT * FROM recv_disable_history ORDER BY id);"),
        "20 0 30 50 0")
        << "each ends as the receiver's next one begins";
    Receiver added("new", "2");
    added.msg_encrypt_opt = 3;
    added.is_secure = true;
    ASSERT_TRUE(receivers->Add(&added, false));
    ASSERT_TRUE(receivers->GetByID(&read, added.id));
    EXPECT_EQ(read.msg_encrypt_opt, 3);
    EXPECT_TRUE(read.is_secure);
    receivers->UpdateReceiverSecureStatus(1, false);
    receivers.reset(VKDBiReceiver::CreateInstance(&system));
    ASSERT_TRUE(receivers->GetByName(&read, "old"));
    EXPECT_FALSE(read.is_secure) << "that happens once";
}

TEST_F(VKReceiverTest, AStatementBeyondItsLimitIsRefusedAndTellsNoValues)
{
    Receiver receiver("long", "1");
    receiver.misc_settings = strdup(std::string(3000, 's').c_str());
    const std::string error = ErrorOf([&] { receivers->Add(&receiver, false); });
    EXPECT_THAT(error, testing::HasSubstr("at most 2047 are run [INSERT INTO receiver"));
    EXPECT_THAT(error, testing::Not(testing::HasSubstr("sss")));
    EXPECT_EQ(receivers->GetTotalRecordCount(), 0);
}

TEST_F(VKReceiverTest, AnErrorThatQuotesTheStatementShowsNoSecrets)
{
    {
        VKSQLite3Database file(dir / "receivers.sdb", true);
        VKSQLite3ResultSet result;
        file.ExecuteUpdateQuery("CREATE TRIGGER refuse BEFORE INSERT ON receiver BEGIN SELECT RAISE(ABORT, 'no'); END;",
                                result);
    }
    Receiver receiver("shown", "1");
    vk::SetText(receiver.acct_pwd, "pass'word", "acct_pwd");
    receiver.misc_settings = strdup(R"({"MXP":{"MxpPassword":"hidden"}})");
    const std::string error = ErrorOf([&] { receivers->Add(&receiver, false); });
    EXPECT_THAT(error, testing::HasSubstr("Unable to execute UPDATE query [INSERT INTO receiver"));
    EXPECT_THAT(error, testing::HasSubstr("'shown'"));
    EXPECT_THAT(error, testing::Not(testing::AnyOf(testing::HasSubstr("word"), testing::HasSubstr("hidden"))));
}

TEST_F(VKReceiverTest, AFileThatCannotBeUsedIsNamed)
{
    receivers.reset();
    for (const char* content : {"garbage that is no database, whatever its name may say about it"}) {
        dir.Write("receivers.sdb", content);
        EXPECT_THAT(ErrorOf([&] { receivers.reset(VKDBiReceiver::CreateInstance(&system)); }),
                    testing::HasSubstr(dir / "receivers.sdb"));
        EXPECT_EQ(dir.Read("receivers.sdb"), content);
    }
}

TEST_F(VKReceiverTest, TwoProcessesAddAtOnceAndNoneIsLost)
{
    receivers.reset();
    const auto add = [this](const std::string& prefix) {
        return [this, prefix] {
            std::unique_ptr<VKDBiReceiver> own(VKDBiReceiver::CreateInstance(&system));
            for (int i = 0; i < 15; ++i) {
                Receiver receiver(prefix + std::to_string(i), "1");
                AddDeptRights(&receiver, 1);
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
    EXPECT_EQ(VKDBiReceiver::GetReceiverTypeName(0, true), "Alpha");
    EXPECT_EQ(VKDBiReceiver::GetReceiverTypeName(0, false), "");
    EXPECT_EQ(VKDBiReceiver::GetReceiverTypeName(1, false), "Num");
    EXPECT_EQ(VKDBiReceiver::GetReceiverTypeName(2, true), "2Way");
    EXPECT_EQ(VKDBiReceiver::GetReceiverTypeName(3, false), "Fax");
    EXPECT_EQ(VKDBiReceiver::GetReceiverTypeName(4, true), "");
}
