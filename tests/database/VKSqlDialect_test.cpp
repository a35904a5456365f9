#include <gmock/gmock.h>

#include <cmath>

#include "DatabaseErrors.h"
#include "NotingConnection.h"
#include "RecordColumns.h"
#include "VKSQLite3Dialect.h"
#include "VKSqlDepartment.h"
#include "VKSqlReceiver.h"
#include "VKSqlXmppGWUser.h"

/// How an entity speaks to its database where no operation shows it: transactions, moves, errors, and the files' SQL
/// that other programs know. The texts for a server stand in transact.sql.

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string Mismatch(const std::string& records)
{
    return "-1 Record ID mismatch while converting " + records +
           " records: New added record ID doesn't match with the old record ID.";
}

} // namespace

TEST(VKSqlDialect, MovedRowsSwitchTheServersIdentityOnAndOff)
{
    Noted<vk::SqlDepartment> departments;
    VK_DEPARTMENT department;
    department.id = 77;
    VK_DEPARTMENT_LIST list{1, &department};
    std::string error;
    const auto convert = [&] { error = ErrorOf([&] { departments.ConvertRecords(&list); }); };
    EXPECT_THAT(departments.NotesOf(convert),
                ElementsAre("exclusive", "SET IDENTITY_INSERT VK_DEPARTMENT ON",
                            StartsWith("INSERT INTO VK_DEPARTMENT (id, name, "),
                            "SET IDENTITY_INSERT VK_DEPARTMENT OFF", "commit"));
    EXPECT_EQ(error, "");
    department.id = 78;
    EXPECT_THAT(departments.NotesOf(convert), ElementsAre("exclusive", StartsWith("SET"), StartsWith("INSERT"),
                                                          "SET IDENTITY_INSERT VK_DEPARTMENT OFF", "rollback"))
        << "no rollback takes the switch back";
    EXPECT_EQ(error, Mismatch("department"));
    department.id = 77;
    departments.connection->failing = "SET IDENTITY_INSERT VK_DEPARTMENT OFF";
    convert();
    EXPECT_EQ(error, "8101 Disabling IDENTITY_INSERT failed.");
    departments.connection->failing = "SET IDENTITY_INSERT VK_DEPARTMENT ON";
    convert();
    EXPECT_EQ(error, "8101 Enabling IDENTITY_INSERT failed.");

    Noted<vk::SqlReceiver> receivers;
    VK_RECEIVER receiver;
    receiver.id = 77;
    VK_ONDUTY_SCHEDULE schedule;
    schedule.id = 78;
    receiver.schedules = &schedule;
    receiver.schedule_count = 1;
    VK_RECEIVER_LIST receiverList{1, &receiver};
    EXPECT_EQ(ErrorOf([&] { receivers.ConvertRecords(&receiverList); }), Mismatch("receiver schedule"));
    receiver.id = 5;
    EXPECT_EQ(ErrorOf([&] { receivers.ConvertRecords(&receiverList); }), Mismatch("receiver"));
}

TEST(VKSqlDialect, AReceiverIsCountedUnderTheLockUnderWhichItIsStored)
{
    Noted<vk::SqlReceiver> receivers;
    VK_RECEIVER added;
    VKDBiDepartment::s_bRecLimit = true;
    EXPECT_THAT(receivers.NotesOf([&] { receivers.AddImpl(&added); }),
                ElementsAre("exclusive", HasSubstr("sp_getapplock @Resource='VK_RECEIVER'"),
                            "SELECT max_receivers FROM VK_DEPARTMENT WHERE id=0", StartsWith("INSERT INTO "),
                            "commit"));
    VKDBiDepartment::s_bRecLimit = false;
}

TEST(VKSqlDialect, FilesAreToldToTheLetter)
{
    Noted<vk::SqlReceiver> receivers(vk::SQLite3Dialect::Get());
    VK_RECEIVER_LIST list;
    for (const bool covers : {true, false}) {
        VKDBiReceiver::s_bIsCoverByAllowed = covers;
        const std::string free = covers ? " AND receiver.forward_to_id<=0  AND ( receiver.disable_end_date<=0 OR  "
                                        : " AND ( ";
        EXPECT_EQ(receivers.NotesOf([&] { receivers.GetForScheduler(&list, false); }).at(1),
                  "SELECT receiver.id, receiver.name, (receiver.status_code<>1 " + free +
                      "(receiver.disable_start_date<=NOW AND receiver.disable_end_date>=NOW))) AS "
                      "IsReceiverDisabledAtTime from receiver ORDER BY UPPER(receiver.name) ASC;");
    }
    unsigned long id = 0;
    EXPECT_EQ(receivers.NotesOf([&] { receivers.GetIDByName(id, "x"); }).at(1),
              "SELECT id FROM receiver WHERE LOWER(name) = LOWER('x');");

    Noted<vk::SqlXmppGWUser> users(vk::SQLite3Dialect::Get());
    users.SetFilter("a");
    users.SetFilter(10, 2);
    std::vector<VKXmppGWUserView> view;
    const auto viewed = [&](VKDBiXmppGWUser::SortFld field, bool ascending) {
        users.SetSort(field, ascending);
        return users.NotesOf([&] { users.Get(&view, false); });
    };
    const std::string filtered = " FROM xmpp_user LEFT OUTER JOIN dbUsers.user ON xmpp_user.vk_user_id=dbUsers.user.id "
                                 "WHERE UPPER(xmpp_user.name) LIKE UPPER('a%') ESCAPE '\\'";
    EXPECT_THAT(viewed(VKDBiXmppGWUser::SortUserID, true),
                ElementsAre("shared",
                            "SELECT DISTINCT xmpp_user.id, xmpp_user.type, xmpp_user.user_id, xmpp_user.name, "
                            "xmpp_user.enabled, xmpp_user.vk_user_id, xmpp_user.enable_readonly, "
                            "xmpp_user.enable_hidden, dbUsers.user.name AS VKUserName" + filtered +
                                " ORDER BY UPPER(xmpp_user.user_id) ASC LIMIT 10 OFFSET 10;",
                            "SELECT COUNT(DISTINCT xmpp_user.id)" + filtered + ";", "commit"));
    EXPECT_THAT(viewed(VKDBiXmppGWUser::SortVKUserName, false).at(1),
                HasSubstr(" ORDER BY UPPER(dbUsers.user.name) DESC LIMIT"));
}

TEST(VKSqlTransaction, WhatCannotStartOrCommitIsAnError)
{
    Noted<vk::SqlDepartment> departments;
    departments.connection->starts = false;
    EXPECT_THAT(departments.NotesOf([&] { EXPECT_THROW(departments.GetTotalRecordCount(), VKDBexception); }),
                ElementsAre("shared"));
    departments.connection->starts = true;
    departments.connection->commits = false;
    EXPECT_THAT(departments.NotesOf([&] { EXPECT_THROW(departments.Delete(1), VKDBexception); }),
                ElementsAre("exclusive", StartsWith("DELETE"), "commit", "rollback"));
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
