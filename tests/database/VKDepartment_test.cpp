#include <gmock/gmock.h>

#include "BackendDatabase.h"
#include "DatabaseCells.h"
#include "RecordColumns.h"
#include "VKBALMessages.h"
#include "VKBALexception.h"
#include "VKRDBDepartment.h"
#include "VKSQLite3Department.h"

namespace {

VK_DEPARTMENT Department(const std::string& name, long most = -1, long count = 0)
{
    VK_DEPARTMENT department;
    vk::SetText(department.name, name, "name");
    vk::SetText(department.description, "of " + name.substr(0, 40), "description");
    department.max_receivers = most;
    department.num_receivers = count;
    return department;
}

class VKDepartmentTest : public BackendDatabase
{
protected:
    unsigned long Add(VK_DEPARTMENT department)
    {
        store->Add(&department);
        return department.id;
    }
    std::string Names()
    {
        return Names(*departments);
    }
    static std::string Names(VKDBiDepartment& of)
    {
        VK_DEPARTMENT_LIST list;
        of.Get(&list);
        std::string names;
        for (int i = 0; i < list.count; ++i)
            names += std::string(list.list[i].name) + ";";
        EmptyDepartmentList(&list);
        EXPECT_EQ(list.list, nullptr);
        return names;
    }
    long CountOf(unsigned long id)
    {
        VK_DEPARTMENT department;
        return store->GetByID(&department, id) ? department.num_receivers : -1;
    }

    std::unique_ptr<VKDBiDepartment> departments{VKDBiDepartment::CreateInstance(&system)};
    std::unique_ptr<vk::SqlDepartment> store = MakeStore<vk::SqlDepartment, VKSQLite3Department, VKRDBDepartment>();
};

class VKDepartmentFileTest : public VKDepartmentTest
{
};

class VKDepartmentServerTest : public VKDepartmentTest
{
};

VK_ON_BOTH_BACKENDS(VKDepartmentTest);
INSTANTIATE_TEST_SUITE_P(Files, VKDepartmentFileTest, testing::Values(Backend::Files));
INSTANTIATE_TEST_SUITE_P(PostgreSql, VKDepartmentServerTest, testing::Values(Backend::PostgreSql));

} // namespace

TEST_P(VKDepartmentFileTest, TableAndIndexStandInTheFile)
{
    EXPECT_STREQ(VKSQLite3Department::tTableDesc[0].columns,
                 "id INTEGER PRIMARY KEY AUTOINCREMENT, name VARCHAR(50) NOT NULL, description VARCHAR(100) NOT NULL, "
                 "max_receivers INTEGER, num_receivers INTEGER");
    EXPECT_EQ(CellOf(dir / "departments.sdb", "SELECT name FROM pragma_index_info('ix_department_name');"), "name");
}

TEST_P(VKDepartmentTest, EveryTextComesBackAsItWentIn)
{
    const std::vector<std::string> texts = {"O'Brien's \"ward\"",
                                            "100% _ \\ [x] {}",
                                            "\xF0\x9F\x9A\x92 Zürich",
                                            "'); DROP TABLE department; --",
                                            "%s %d {}",
                                            std::string(50, '\'')};
    for (const std::string& text : texts) {
        VK_DEPARTMENT added = Department(text);
        vk::SetText(added.description, text + text, "description");
        ASSERT_TRUE(store->Add(&added)) << text;
        VK_DEPARTMENT read;
        ASSERT_TRUE(store->GetByID(&read, added.id));
        EXPECT_EQ(AllColumns(vk::kDepartmentTable.fields, read), AllColumns(vk::kDepartmentTable.fields, added));
        ASSERT_TRUE(store->GetByName(&read, text)) << text;
        EXPECT_EQ(read.id, added.id);
        EXPECT_FALSE(store->IsUniqueName(text, 0));
        EXPECT_TRUE(store->IsUniqueName(text, added.id));
        unsigned long id = 0;
        EXPECT_TRUE(store->GetIDByName(id, text));
        EXPECT_EQ(id, added.id);
        store->SetFilter(text);
        EXPECT_EQ(Names(*store), text + ";");
        EXPECT_TRUE(store->Delete(added.id));
    }
    EXPECT_EQ(store->GetTotalRecordCount(), 0);
}

TEST_P(VKDepartmentTest, TextsThatDoNotFitAreRefusedByName)
{
    VK_DEPARTMENT department;
    EXPECT_EQ(ErrorOf([&] { vk::SetText(department.name, std::string(51, 'x'), "name"); }),
              "-1 The text for 'name' is 51 bytes long; at most 50 fit.");
    EXPECT_EQ(ErrorOf([&] { vk::SetText(department.name, std::string("a\0b", 3), "name"); }),
              "-1 The text for 'name' holds a zero byte.");
    EXPECT_STREQ(department.name, "");
    memset(department.description, 'x', sizeof department.description);
    EXPECT_EQ(ErrorOf([&] { store->Add(&department); }),
              "-1 The text for 'description' has no end within its 101 bytes.");
    EXPECT_THAT(ErrorOf([&] { store->IsUniqueName(std::string(600, 'x'), 0); }),
                testing::HasSubstr("at most 511 are run [SELECT id FROM "));
    EXPECT_THAT(ErrorOf([&] { store->IsUniqueName(std::string("a\0b", 3), 0); }), testing::HasSubstr("zero byte"));
}

TEST_P(VKDepartmentTest, AllBrokenRulesAreToldAtOnce)
{
    Add(Department("Surgery"));
    const auto lines = [](std::initializer_list<int> numbers) {
        std::string text = "1000 ";
        for (const int number : numbers)
            text += std::string(vk::MessageText(number)) + "\n";
        return text;
    };
    const struct
    {
        VK_DEPARTMENT department;
        bool limits;
        std::initializer_list<int> broken;
    } rows[] = {{Department(""), false, {1003}},
                {Department("  "), false, {1003}},
                {Department("a<b"), false, {1004}},
                {Department("SURGERY"), false, {1005}},
                {Department("Ward", 0), true, {1006}},
                {Department("Ward", 11), true, {1006}},
                {Department("Ward", 5, 6), true, {1007}},
                {Department("%", 0, 3), true, {1004, 1006, 1007}},
                {Department("", -1, 0), true, {1003, 1006, 1007}}};
    for (const auto& row : rows) {
        SetLimits(row.limits, 10);
        VK_DEPARTMENT department = row.department;
        EXPECT_EQ(ErrorOf([&] { departments->Add(&department); }), lines(row.broken)) << department.name;
        EXPECT_EQ(departments->GetTotalRecordCount(), 1);
    }
    VK_DEPARTMENT unnamed = Department("");
    EXPECT_THROW(departments->Modify(&unnamed), VKBALexception);

    SetLimits(false, 10);
    VK_DEPARTMENT free = Department("St. Mary's_2-b", 7);
    ASSERT_TRUE(departments->Add(&free));
    EXPECT_EQ(free.max_receivers, -1) << "without limits none is stored";
}

TEST_P(VKDepartmentTest, ModifyKeepsTheCountThatGrewMeanwhile)
{
    const unsigned long id = Add(Department("Old", 5, 1));
    VK_DEPARTMENT department;
    ASSERT_TRUE(departments->GetByID(&department, id));
    ASSERT_TRUE(departments->IncrementReceiverCount(id));
    vk::SetText(department.name, "New", "name");
    EXPECT_TRUE(departments->Modify(&department));
    ASSERT_TRUE(departments->GetByName(&department, "NEW"));
    EXPECT_EQ(department.num_receivers, 2);
    department.id = 99;
    vk::SetText(department.name, "Other", "name");
    EXPECT_FALSE(departments->Modify(&department));
    EXPECT_FALSE(departments->GetByID(&department, 99));
    EXPECT_STREQ(department.name, "");
}

TEST_P(VKDepartmentTest, ReceiverCountKeepsToTheLimit)
{
    const unsigned long limited = Add(Department("Limited", 2, 1));
    const unsigned long unlimited = Add(Department("Unlimited", -1, 7));
    EXPECT_FALSE(departments->IncrementReceiverCount(0));
    EXPECT_FALSE(departments->DecrementReceiverCount(0));

    SetLimits(true, 100);
    EXPECT_TRUE(VKDBiDepartment::IncreaseReceCount(limited, &system));
    EXPECT_EQ(ErrorOf([&] { departments->IncrementReceiverCount(limited); }),
              "100 Department maximum receivers limit exceeds.");
    EXPECT_EQ(CountOf(limited), 2);
    EXPECT_TRUE(departments->IncrementReceiverCount(unlimited)) << "no limit, no error";
    EXPECT_EQ(CountOf(unlimited), 7);

    SetLimits(false, 0);
    EXPECT_TRUE(departments->IncrementReceiverCount(limited));
    EXPECT_EQ(CountOf(limited), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(VKDBiDepartment::DecreaseReceCount(limited, &system));
    EXPECT_EQ(ErrorOf([&] { departments->DecrementReceiverCount(limited); }),
              "-1 Department receiver count has corrupted.");
    for (const auto change : {&VKDBiDepartment::IncrementReceiverCount, &VKDBiDepartment::DecrementReceiverCount})
        EXPECT_EQ(ErrorOf([&] { (departments.get()->*change)(99); }),
                  "-1 Unknown department. The record may have been deleted.");
}

TEST_P(VKDepartmentTest, ListsAreOrderedFilteredAndPaged)
{
    for (const char* name : {"b_1", "a1", "B2", "bX1", "A0", "c"})
        Add(Department(name));
    EXPECT_EQ(Names(), "A0;a1;B2;bX1;b_1;c;");
    const std::pair<const char*, const char*> rows[] = {{"", "A0;a1;B2;bX1;b_1;c;"},
                                                        {"B", "B2;bX1;b_1;"},
                                                        {"b_", "b_1;"},
                                                        {"%1", "a1;bX1;b_1;"},
                                                        {"'", ""},
                                                        {"\\", ""},
                                                        {"*", "A0;a1;B2;bX1;b_1;c;"}};
    for (const auto& [filter, names] : rows) {
        departments->SetFilter(filter);
        EXPECT_EQ(Names(), names) << filter;
    }
    const auto page = [&](int size, int number) {
        departments->SetFilter(size, number);
        const std::string names = Names();
        return names + " of " + std::to_string(departments->GetPageCount());
    };
    EXPECT_EQ(page(4, 2), "b_1;c; of 2");
    EXPECT_EQ(page(3, 1), "A0;a1;B2; of 2");
    EXPECT_EQ(page(3, 9).substr(0, 4), " of ");
    departments->ClearFilter();
    EXPECT_EQ(Names(), "A0;a1;B2;bX1;b_1;c;");
    std::vector<VK_NAME_RECORD> names;
    EXPECT_TRUE(departments->GetNamesList(names));
    ASSERT_EQ(names.size(), 6u);
    EXPECT_EQ(names[0].name, "A0");
    EXPECT_EQ(names[0].id, 5u);
}

TEST_P(VKDepartmentTest, ADepartmentInUseIsNotDeleted)
{
    const unsigned long own = Add(Department("Own"));
    const unsigned long guest = Add(Department("Guest"));
    const unsigned long empty = Add(Department("Empty"));
    VK_RECEIVER receiver;
    SetColumns(vk::kReceiverTable.fields, receiver, {{"name", "Pager"}, {"pin", "1"}, {"department_id", own}});
    AddDeptRights(&receiver, guest);
    ASSERT_TRUE(std::unique_ptr<VKDBiReceiver>(VKDBiReceiver::CreateInstance(&system))->Add(&receiver, false));
    EmptyReceiver(&receiver);

    for (const unsigned long used : {own, guest}) // a server keeps watch itself, and says it in its own words
        EXPECT_THAT(ErrorOf([&] { departments->Delete(used); }),
                    OnFiles() ? testing::HasSubstr("1000 Foreign Key constraints failed.")
                              : testing::HasSubstr("DELETE FROM VK_DEPARTMENT"));
    EXPECT_TRUE(departments->Delete(empty));
    EXPECT_FALSE(departments->Delete(empty));
    EXPECT_EQ(departments->GetTotalRecordCount(), 2);
}

TEST_P(VKDepartmentTest, MovedRecordsKeepTheirIdsAndNewOnesGoOnBehindThem)
{
    VK_DEPARTMENT_LIST list;
    for (const unsigned long id : {7ul, 3ul, 4000000000ul}) {
        VK_DEPARTMENT department = Department("d" + std::to_string(id), 9, 2);
        department.id = id;
        AddDepartment(&list, &department);
    }
    ASSERT_TRUE(store->ConvertRecords(&list));
    EXPECT_EQ(Names(), "d3;d4000000000;d7;");
    EXPECT_EQ(CountOf(4000000000ul), 2);
    EXPECT_NE(ErrorOf([&] { store->ConvertRecords(&list); }), "") << "ids that are there already";
    list.list[0].id = 8;
    EXPECT_NE(ErrorOf([&] { store->ConvertRecords(&list); }), "");
    EXPECT_EQ(CountOf(8), -1) << "all or none";

    EXPECT_EQ(Add(Department("new")), 4000000001ul);
    EXPECT_TRUE(store->Delete(4000000001ul));
    list.count = 1;
    ASSERT_TRUE(store->ConvertRecords(&list));
    EXPECT_EQ(Add(Department("newer")), 4000000002ul) << "no id twice";
    EmptyDepartmentList(&list);
}

TEST_P(VKDepartmentServerTest, LongCellsArriveWholeAndErrorsCarryTheServersWords)
{
    VKODBCResultSet result;
    ASSERT_TRUE(server->ExecuteSelectQuery("SELECT repeat('ab', 5000), NULL, ''", result));
    EXPECT_EQ(result[0][0].GetValueString().size(), 10000u);
    EXPECT_EQ(result[0][1].GetValuePtr(), nullptr);
    EXPECT_STREQ(result[0][2].GetValuePtr(), "");
    EXPECT_THAT(WholeErrorOf([&] { server->ExecuteCommand("SELECT * FROM nowhere"); }),
                testing::AllOf(testing::HasSubstr(" SQL query[SELECT * FROM nowhere]: "),
                               testing::HasSubstr("\"nowhere\" does not exist")));
    EXPECT_THROW(server->ExecuteCommand("SELECT 7 AS ErrorCode"), VKDBexception);
}

TEST_P(VKDepartmentServerTest, ACutConnectionThrowsRollsBackAndOnlyTheTestConnectsAnew)
{
    const unsigned long kept = Add(Department("kept"));
    ASSERT_TRUE(server->BeginTransaction());
    ASSERT_TRUE(server->ExecuteCommand("DELETE FROM VK_DEPARTMENT"));
    PostgresServer::Get().Stop();
    EXPECT_THROW(server->ExecuteCommand("SELECT 1"), VKDBexception);
    EXPECT_THROW(departments->GetTotalRecordCount(), VKDBexception);
    EXPECT_FALSE(server->TestNReconnect()) << "nobody is there";
    PostgresServer::Get().Start();
    EXPECT_THROW(departments->GetTotalRecordCount(), VKDBexception) << "a statement never connects anew";
    EXPECT_TRUE(server->TestNReconnect());
    EXPECT_EQ(departments->GetTotalRecordCount(), 1);
    EXPECT_EQ(CountOf(kept), 0);
}
