#include <gmock/gmock.h>
#include <regex>

#include "NotingConnection.h"
#include "VKDBiDepartment.h"
#include "VKRecordText.h"
#include "VKSQLite3Dialect.h"
#include "VKSqlReceiver.h"
#include "VKSqlStore.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Receivers on a connection that only notes what it is told.
class NotedReceivers : public vk::SqlReceiver
{
public:
    explicit NotedReceivers(const vk::SqlDialect& dialect)
    {
        UseStore(std::make_unique<vk::SqlStore>(std::make_unique<NotingConnection>(m_notes, dialect),
                                                kStatementLimit));
    }

    /// The statements of an operation, without its transaction; times as "NOW".
    template <class Operation> std::vector<std::string> Statements(Operation&& operation)
    {
        operation();
        std::vector<std::string> statements;
        for (const std::string& note : std::exchange(m_notes, {}))
            if (note != "shared" && note != "exclusive" && note != "commit")
                statements.push_back(std::regex_replace(note, std::regex("\\b1[0-9]{9}\\b"), "NOW"));
        return statements;
    }
    template <class Operation> std::string Statement(Operation&& operation) { return Statements(operation).at(0); }

private:
    std::vector<std::string> m_notes;
};

} // namespace

TEST(VKSqlReceiver, FilesAndServersAreToldTheSameInTheirOwnSql)
{
    VKDBiReceiver::s_bIsCoverByAllowed = true;
    NotedReceivers files(vk::SQLite3Dialect::Get());
    NotedReceivers server(vk::TransactSqlDialect::Get());
    for (NotedReceivers* const each : {&files, &server}) {
        NotedReceivers& receivers = *each;
        const std::string receiver = each == &files ? "receiver" : "VK_RECEIVER";
        const std::string end = each == &files ? ";" : "";
        const std::string updateEnd = each == &files ? ";" : " SELECT ErrorCode = @@ERROR ";
        VK_RECEIVER read;
        VK_RECEIVER_LIST list;
        unsigned long id = 0;
        EXPECT_EQ(receivers.Statement([&] { receivers.GetByPin(&read, "o'1"); }),
                  "SELECT * FROM " + receiver + " WHERE UPPER(pin)=UPPER('o''1')" + end);
        EXPECT_EQ(receivers.Statement([&] { receivers.GetIDByName(id, "x"); }),
                  "SELECT id FROM " + receiver + " WHERE LOWER(name) = LOWER('x')" + end);
        EXPECT_EQ(receivers.Statement([&] { receivers.IsFaxReceiverPresent(); }),
                  "SELECT COUNT(id) FROM " + receiver + " WHERE carrier_id=2147483646" + end);
        EXPECT_EQ(receivers.Statement([&] { receivers.IsVoiceReceiverPresent(); }),
                  "SELECT COUNT(id) FROM " + receiver + " WHERE carrier_id=2147483647" + end);
        read.id = 5;
        read.status_code = 3;
        read.disable_start_date = 7;
        EXPECT_EQ(receivers.Statement([&] { receivers.ChangeStatus(&read, nullptr, nullptr, true); }),
                  "UPDATE " + receiver +
                      " SET disable_start_date=7, disable_end_date=0, status_code=3, forward_to_id=0 WHERE id=5" +
                      updateEnd);
        EXPECT_EQ(receivers.Statement([&] { receivers.Delete(5, 1); }),
                  "DELETE FROM " + receiver + " WHERE id=5" + updateEnd);

        receivers.SetFilter("a'_", "*", 3, 0, 0, "", FltOnlyLetters);
        receivers.SetFilterAccount("ann", "secret");
        const std::string filtered = receivers.Statement([&] { receivers.GetOnlyEnabled(&list); });
        EXPECT_THAT(filtered, HasSubstr(receiver + ".name) LIKE UPPER('a''\\_%') ESCAPE '\\' AND UPPER("));
        EXPECT_THAT(filtered,
                    HasSubstr("UPPER('ann') AND " + receiver + ".acct_pwd='5ebe2294ecd0e0f08eab7690d2a6ee69'"));
        EXPECT_THAT(filtered,
                    HasSubstr(" AND (" + receiver + ".status_code=1 OR " + receiver + ".forward_to_id>0 OR NOT (" +
                              receiver + ".disable_end_date<=0 OR (" + receiver + ".disable_start_date<=NOW AND " +
                              receiver + ".disable_end_date>=NOW))) ORDER BY UPPER(" + receiver + ".name) ASC"));
        receivers.ClearFilter();
    }
    VK_RECEIVER_LIST list;
    VK_RECEIVER_VIEW_LIST views;
    EXPECT_EQ(files.Statement([&] { files.GetForScheduler(&list, false); }),
              "SELECT receiver.id, receiver.name, (receiver.status_code<>1  AND receiver.forward_to_id<=0  AND ( "
              "receiver.disable_end_date<=0 OR  (receiver.disable_start_date<=NOW AND "
              "receiver.disable_end_date>=NOW))) AS IsReceiverDisabledAtTime from receiver ORDER BY "
              "UPPER(receiver.name) ASC;");
    EXPECT_THAT(server.Statement([&] { server.GetForScheduler(&list, false); }),
                HasSubstr(", (CASE WHEN (VK_RECEIVER.status_code<>1  AND "));
    files.SetFilter("", "", 0, 0, 4, "cover", FltNoLetters);
    const std::string view = files.Statement([&] { files.Get(&list, false, false, false); });
    EXPECT_THAT(view,
                HasSubstr(" FROM receiver LEFT OUTER JOIN receiver Recv2 ON Recv2.id=receiver.forward_to_id WHERE "));
    EXPECT_THAT(view,
                HasSubstr("(UPPER(substr(receiver.name, 1, 1)) < 'A' OR UPPER(substr(receiver.name, 1, 1)) > 'Z')"));
    EXPECT_THAT(view, HasSubstr("LEFT OUTER JOIN receiver_dept ON receiver.id=receiver_dept.owner_id"));
    server.SetFilterAttribute({{1, "a"}, {2, "b"}});
    const std::string attributes = server.Statement([&] { server.GetForFavorites(&list); });
    EXPECT_THAT(attributes, HasSubstr(" HAVING COUNT(VK_RECV_ATTRIBUTE.receiver_id) = 2)"));
    EXPECT_THAT(attributes, HasSubstr("(VK_RECV_ATTRIBUTE.attribute_id=2 AND UPPER(VK_RECV_ATTRIBUTE.attribute_values)="
                                      "UPPER('b'))"));
    const std::string serverView = server.Statement([&] { server.Get(&views); });
    EXPECT_THAT(serverView, HasSubstr("(CASE WHEN (VK_RECEIVER.carrier_id=2147483646) THEN 'Fax' WHEN "
                                      "(VK_RECEIVER.carrier_id=2147483647) THEN 'Voice' ELSE '' END)"));
    EXPECT_THAT(serverView, HasSubstr(", COALESCE(Recv2.name, '') AS ForwardToName"));
    EmptyReceiverViewList(&views);
    VKDBiReceiver::s_bIsCoverByAllowed = false;
    VKDBiDepartment::s_bRecLimit = true;
    VK_RECEIVER added;
    EXPECT_THAT(server.Statements([&] { server.AddImpl(&added); }),
                testing::ElementsAre(HasSubstr("sp_getapplock @Resource='VK_RECEIVER'"),
                                     "SELECT max_receivers FROM VK_DEPARTMENT WHERE id=0", StartsWith("INSERT INTO ")))
        << "nobody else counts until this one is stored";
    VKDBiDepartment::s_bRecLimit = false;
    EXPECT_THAT(files.Statement([&] { files.GetForScheduler(&list, false); }),
                HasSubstr("(receiver.status_code<>1  AND ( (receiver.disable_start_date<=NOW AND "));
}

TEST(VKSqlReceiver, AServerIsToldToKeepTheIdsOfMovedRows)
{
    NotedReceivers receivers(vk::TransactSqlDialect::Get());
    VK_RECEIVER receiver;
    receiver.id = 77;
    VK_DEPT_RIGHTS rights;
    rights.id = 77;
    VK_ONDUTY_SCHEDULE schedule;
    schedule.id = 78;
    receiver.dept_rights = &rights;
    receiver.dept_rights_count = 1;
    VK_RECEIVER_LIST list{1, &receiver};
    EXPECT_THAT(receivers.Statements([&] { receivers.ConvertRecords(&list); }),
                testing::ElementsAre("SET IDENTITY_INSERT VK_RECEIVER ON", StartsWith("INSERT INTO VK_RECEIVER (id, "),
                                     "SET IDENTITY_INSERT VK_RECEIVER OFF", "SET IDENTITY_INSERT VK_RECEIVER_DEPT ON",
                                     StartsWith("INSERT INTO VK_RECEIVER_DEPT (id, "),
                                     "SET IDENTITY_INSERT VK_RECEIVER_DEPT OFF"));
    receiver.schedules = &schedule;
    receiver.schedule_count = 1;
    const auto errorOf = [&] {
        try {
            receivers.ConvertRecords(&list);
            return std::string();
        } catch (const VKDBexception& failure) {
            return failure.GetMsg();
        }
    };
    EXPECT_EQ(errorOf(), "Record ID mismatch while converting receiver schedule records: New added record ID doesn't "
                         "match with the old record ID.");
    receiver.id = 5;
    EXPECT_EQ(errorOf(), "Record ID mismatch while converting receiver records: New added record ID doesn't match with "
                         "the old record ID.");
}
