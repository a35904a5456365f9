#include <gmock/gmock.h>

#include <cmath>

#include "NotingConnection.h"
#include "VKRecordText.h"
#include "VKSQLite3Dialect.h"
#include "VKSqlDepartment.h"
#include "VKSqlStore.h"
#include "VKTransactSqlDialect.h"

/// How an entity speaks to a relational server: transactions, moves, errors. Its texts stand in transact.sql.

namespace {

class ServerDepartment : public vk::SqlDepartment
{
public:
    ServerDepartment()
    {
        auto made = std::make_unique<NotingConnection>(notes);
        connection = made.get();
        UseStore(std::make_unique<vk::SqlStore>(std::move(made), kStatementLimit));
    }

    std::vector<std::string> notes;
    NotingConnection* connection; ///< the store's
};

VK_DEPARTMENT Department()
{
    VK_DEPARTMENT department;
    vk::SetText(department.name, "O'Brien", "name");
    vk::SetText(department.description, "x", "description");
    department.max_receivers = 9;
    return department;
}

} // namespace

TEST(VKSqlDialect, MovedRowsSwitchTheServersIdentityOnAndOff)
{
    ServerDepartment departments;
    VK_DEPARTMENT department = Department();
    department.id = 77;
    VK_DEPARTMENT_LIST list;
    AddDepartment(&list, &department);
    EXPECT_TRUE(departments.ConvertRecords(&list));
    EXPECT_THAT(std::exchange(departments.notes, {}),
                testing::ElementsAre("exclusive", "SET IDENTITY_INSERT VK_DEPARTMENT ON",
                                     testing::StartsWith("INSERT INTO VK_DEPARTMENT (id, name, "),
                                     "SET IDENTITY_INSERT VK_DEPARTMENT OFF", "commit"));
    const auto errorOf = [&] {
        try {
            departments.ConvertRecords(&list);
            return std::string();
        } catch (const VKDBexception& failure) {
            return failure.GetMsg();
        }
    };
    list.list[0].id = 78;
    EXPECT_EQ(errorOf(),
              "Record ID mismatch while converting department records: New added record ID doesn't match with "
              "the old record ID.");
    EXPECT_EQ(departments.notes.back(), "rollback");
    EXPECT_EQ(departments.notes.at(departments.notes.size() - 2), "SET IDENTITY_INSERT VK_DEPARTMENT OFF")
        << "no rollback takes the switch back";
    list.list[0].id = 77;
    departments.connection->failing = "SET IDENTITY_INSERT VK_DEPARTMENT OFF";
    EXPECT_EQ(errorOf(), "Disabling IDENTITY_INSERT failed.");
    departments.connection->failing = "SET IDENTITY_INSERT VK_DEPARTMENT ON";
    EXPECT_EQ(errorOf(), "Enabling IDENTITY_INSERT failed.");
    EmptyDepartmentList(&list);
}

TEST(VKSqlTransaction, WhatCannotStartOrCommitIsAnError)
{
    ServerDepartment departments;
    departments.connection->starts = false;
    EXPECT_THROW(departments.GetTotalRecordCount(), VKDBexception);
    EXPECT_THAT(std::exchange(departments.notes, {}), testing::ElementsAre("shared"));
    departments.connection->starts = true;
    departments.connection->commits = false;
    EXPECT_THROW(departments.Delete(1), VKDBexception);
    EXPECT_THAT(departments.notes,
                testing::ElementsAre("exclusive", testing::StartsWith("DELETE"), "commit", "rollback"));
}

TEST(VKSqlText, ValuesAreConditionedAndPlacesCounted)
{
    const vk::SQLite3Dialect& dialect = vk::SQLite3Dialect::Get();
    EXPECT_EQ(vk::SqlText(dialect, "{} {} {} {} {}", "it's {}", true, -5L, vk::SqlRaw{"a'b"}, 18446744073709551615ul),
              "'it''s {}' 1 -5 a'b 18446744073709551615");
    EXPECT_EQ(vk::SqlText(dialect, "{} {} {}", 4.7, 0.1 + 0.2, std::nan("")), "4.7 0.30000000000000004 NULL");
    EXPECT_THROW(vk::SqlText(dialect, "{}", 1, 2), std::logic_error);
    EXPECT_THROW(vk::SqlText(dialect, "{} {}", 1), std::logic_error);
}
