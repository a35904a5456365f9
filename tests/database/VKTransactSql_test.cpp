#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "NotingConnection.h"
#include "VKMessageRows.h"
#include "VKQueueTables.h"
#include "VKRecipientRights.h"
#include "VKRecordText.h"
#include "VKSqlActiveMxpClient.h"
#include "VKSqlCarrier.h"
#include "VKSqlDepartment.h"
#include "VKSqlMessageQueue.h"
#include "VKSqlReceiver.h"
#include "VKSqlStore.h"
#include "VKSqlXmppGWUser.h"

/// What every operation of every entity sends to a T-SQL server, to the letter: the text "transact.sql" beside this file.
/// A change of it is a change of what installations run.

namespace {

/// An entity on a connection that notes what it sends.
template <class Entity> class Noted : public Entity
{
public:
    Noted() { this->UseStore(MakeStore()); }

    std::vector<std::string> notes;
    NotingConnection* connection = nullptr; ///< the store's

protected:
    struct WithoutStore
    {
    };
    template <class... Arguments>
    explicit Noted(WithoutStore, const Arguments&... arguments) : Entity(arguments...)
    {
    }
    std::unique_ptr<vk::SqlStore> MakeStore()
    {
        auto made = std::make_unique<NotingConnection>(notes);
        connection = made.get();
        return std::make_unique<vk::SqlStore>(std::move(made), 65535);
    }
};

class NotedQueue : public Noted<vk::SqlMessageQueue>
{
public:
    explicit NotedQueue(int number) : Noted(WithoutStore{}, number, "svc")
    {
        const vk::TableName table{"queue_metadata", "VK_QUEUE_PAGING"};
        UseStore(MakeStore(), std::make_unique<vk::MessageRows>(table), table);
    }
    bool CreateQueue(int) override { return true; }
    bool DeleteQueue(int) override { return true; }

protected:
    time_t Now() const override
    {
        tm wednesday{};
        wednesday.tm_year = 126;
        wednesday.tm_mday = 7;
        wednesday.tm_hour = 10;
        wednesday.tm_isdst = -1;
        return mktime(&wednesday);
    }
};

/// The statements under the names of the operations.
class Script
{
public:
    template <class Entity, class Operation> void Add(const char* name, Entity& entity, Operation&& operation)
    {
        entity.notes.clear();
        operation();
        m_text << "-- " << name << "\n";
        for (const std::string& note : entity.notes)
            m_text << Timeless(note) << "\n";
    }
    std::string Text() const { return m_text.str(); }

private:
    /// Times of the clock and the machine's address differ from run to run.
    static std::string Timeless(const std::string& text)
    {
        const std::string timeless = std::regex_replace(text, std::regex("\\b1[0-9]{9}\\b"), "NOW");
        return std::regex_replace(timeless, std::regex("'[0-9.]+\\.[0-9]+'"), "'ADDRESS'");
    }

    std::ostringstream m_text;
};

void Departments(Script& script)
{
    Noted<vk::SqlDepartment> departments;
    VK_DEPARTMENT department;
    vk::SetText(department.name, "O'Brien", "name");
    department.max_receivers = 9;
    VK_DEPARTMENT_LIST list;
    std::vector<VK_NAME_RECORD> names;
    unsigned long id = 0;
    const auto add = [&](const char* name, auto&& run) { script.Add(name, departments, run); };
    add("department: Add", [&] { departments.Add(&department); });
    add("department: Modify", [&] { departments.Modify(&department); });
    add("department: Delete", [&] { departments.Delete(7); });
    VKDBiDepartment::s_bRecLimit = true;
    add("department: IncrementReceiverCount, with limits", [&] { departments.IncrementReceiverCount(7); });
    VKDBiDepartment::s_bRecLimit = false;
    add("department: IncrementReceiverCount", [&] { departments.IncrementReceiverCount(7); });
    add("department: DecrementReceiverCount", [&] { departments.DecrementReceiverCount(7); });
    departments.connection->touched = 0;
    add("department: DecrementReceiverCount of a row that is not there",
        [&] { EXPECT_THROW(departments.DecrementReceiverCount(7), VKDBexception); });
    departments.connection->touched = 1;
    add("department: Get", [&] { departments.Get(&list); });
    departments.SetFilter("a_[");
    departments.SetFilter(10, 3);
    add("department: Get, third page of a filter", [&] { departments.Get(&list); });
    add("department: GetByID", [&] { departments.GetByID(&department, 7); });
    add("department: GetByName", [&] { departments.GetByName(&department, "it's"); });
    add("department: GetTotalRecordCount", [&] { departments.GetTotalRecordCount(); });
    add("department: IsUniqueName", [&] { departments.IsUniqueName("it's", 7); });
    add("department: GetNamesList", [&] { departments.GetNamesList(names); });
    add("department: GetIDByName", [&] { departments.GetIDByName(id, "it's"); });
    department.id = 77;
    AddDepartment(&list, &department);
    add("department: ConvertRecords", [&] { departments.ConvertRecords(&list); });
    EmptyDepartmentList(&list);
}

void ChangesOfReceivers(Script& script, Noted<vk::SqlReceiver>& receivers)
{
    VK_RECEIVER receiver;
    vk::SetText(receiver.name, "it's", "name");
    AddDeptRights(&receiver, 5);
    VK_DISABLE_HISTORY history;
    VK_RECEIVER_LIST list;
    const auto add = [&](const char* name, auto&& run) { script.Add(name, receivers, run); };
    receivers.connection->answers = {{"SELECT status_code", {"1"}}, {"SELECT id, pin", {"7", "a@old"}},
                                     {"SELECT misc_settings", {"{}"}}, {"COUNT(id) FROM VK_RECEIVER_DEPT", {"0"}},
                                     {"COUNT(", {"1"}}, {"SELECT MAX(", {"8"}}};
    add("receiver: Add", [&] { receivers.AddImpl(&receiver); });
    receiver.status_code = 3;
    add("receiver: Modify, from available to not", [&] { receivers.ModifyImpl(&receiver, 0, nullptr, nullptr, true); });
    receiver.status_code = 1;
    receivers.connection->answers[0].second = {"3"};
    add("receiver: Modify, available again", [&] { receivers.ModifyImpl(&receiver, 0, nullptr, nullptr, true); });
    add("receiver: ModifyDepartment, with history",
        [&] { receivers.ModifyDepartment(&receiver, 0, false, &history, &history, true); });
    add("receiver: ChangeStatus", [&] { receivers.ChangeStatus(&receiver, nullptr, nullptr, true); });
    add("receiver: Delete", [&] { receivers.Delete(7, 1); });
    add("receiver: UpdateMXPServiceName", [&] { receivers.UpdateMXPServiceName("old", "new"); });
    add("receiver: UpdateReceiverSecureStatus", [&] { receivers.UpdateReceiverSecureStatus(7, true); });
    add("receiver: SaveAdvMessagingData", [&] { receivers.SaveAdvMessagingData(&receiver); });
    add("receiver: AddGuestDepartment", [&] { receivers.AddGuestDepartment(7, 5); });
    add("receiver: DeleteGuestDepartment", [&] { receivers.DeleteGuestDepartment(7, 5); });
    VKDBiDepartment::s_bCountGrp = true;
    receivers.connection->answers = {{"SELECT max_receivers", {"9"}}, {"TABLE_NAME", {"x"}}, {"COUNT(", {"1"}}};
    add("receiver: IsDepartmentRecvLimitReached, groups counted", [&] { receivers.IsDepartmentRecvLimitReached(5); });
    VKDBiDepartment::s_bCountGrp = false;
    receiver.id = receiver.dept_rights->id = 77;
    AddReceiver(&list, &receiver);
    add("receiver: ConvertRecords", [&] { receivers.ConvertRecords(&list); });
    EmptyReceiverList(&list);
    EmptyReceiver(&receiver);
    receivers.connection->answers.clear();
}

void ReadsOfReceivers(Script& script, Noted<vk::SqlReceiver>& receivers)
{
    VK_RECEIVER receiver;
    VK_RECEIVER_LIST list;
    VK_RECEIVER_VIEW_LIST views;
    VK_DISABLE_HISTORY_LIST periods;
    VK_CARRIER carrier;
    std::vector<VKReceProperty> properties;
    unsigned long id = 0;
    const auto add = [&](const char* name, auto&& run) { script.Add(name, receivers, run); };
    VKDBiReceiver::s_bIsCoverByAllowed = true;
    add("receiver: GetByID", [&] { receivers.GetByID(&receiver, 7); });
    add("receiver: GetByName", [&] { receivers.GetByName(&receiver, "it's"); });
    add("receiver: GetByPin", [&] { receivers.GetByPin(&receiver, "it's"); });
    add("receiver: GetByIDs", [&] { receivers.GetByIDs(&list, {7, 8}); });
    add("receiver: GetIDByName", [&] { receivers.GetIDByName(id, "it's"); });
    add("receiver: Get, with all parts", [&] { receivers.Get(&list, true, true, true); });
    add("receiver: GetForSend, of the enabled", [&] { receivers.GetForSend(&list, false, false, false, true); });
    add("receiver: GetForMemberDetails", [&] { receivers.GetForMemberDetails(&list); });
    add("receiver: GetForScheduler", [&] { receivers.GetForScheduler(&list, false); });
    add("receiver: GetForFavorites", [&] { receivers.GetForFavorites(&list); });
    add("receiver: GetReceiverProperties", [&] { receivers.GetReceiverProperties(properties); });
    add("receiver: GetDisableHistory", [&] { receivers.GetDisableHistory(&periods, 7, 10, 20); });
    add("receiver: GetCoveredBy", [&] { receivers.GetCoveredBy(&list, 7); });
    add("receiver: GetCarrier", [&] { receivers.GetCarrier(&carrier, 7); });
    add("receiver: IsUniqueName", [&] { receivers.IsUniqueName("it's", 7); });
    add("receiver: IsGroupName, without groups", [&] { receivers.IsGroupName("it's"); });
    add("receiver: IsFaxReceiverPresent", [&] { receivers.IsFaxReceiverPresent(); });
    add("receiver: IsTimeZoneBeingUsed", [&] { receivers.IsTimeZoneBeingUsed(7); });
    add("receiver: IsDepartmentBeingUsed", [&] { receivers.IsDepartmentBeingUsed(7); });
    add("receiver: IsCarrierBeingUsed", [&] { receivers.IsCarrierBeingUsed(7); });
    receivers.SetFilter("a_[%", "*", 3, 34, 5, "c'", FltOnlyLetters);
    receivers.SetFilter(FltOnlyEnabled, FltOnlyDisabled, FltOnlyEnabled);
    receivers.SetFilterOwner(6);
    receivers.SetFilterReceiverIDs({});
    receivers.SetFilterAttribute({{1, "a"}, {2, "b'"}});
    receivers.SetFilterAccount("ann", "secret");
    add("receiver: Get of views, every filter", [&] { receivers.Get(&views); });
    receivers.ClearFilter();
    VKDBiReceiver::s_bIsCoverByAllowed = false;
}

void PartsOfReceivers(Script& script, Noted<vk::SqlReceiver>& receivers)
{
    VK_ONDUTY_SCHEDULE schedule;
    schedule.archived = true;
    VK_ATTRIBUTE attribute;
    vk::SetText(attribute.name, "it's", "name");
    VK_ATTRIBUTE_LIST attributes;
    VK_RECEIVER_ATTRIBUTE value;
    VK_RECEIVER_ATTRIBUTE_LIST values;
    const auto add = [&](const char* name, auto&& run) { script.Add(name, receivers, run); };
    receivers.connection->answers = {{"COUNT(", {"25"}}};
    add("schedule: AddSchedule", [&] { receivers.AddSchedule(&schedule); });
    add("schedule: ModifySchedule", [&] { receivers.ModifySchedule(&schedule); });
    add("schedule: DeleteSchedule", [&] { receivers.DeleteSchedule(7); });
    add("schedule: DeleteSchedule of a member", [&] { receivers.DeleteSchedule(7, 8, 1); });
    add("schedule: GetSchedule", [&] { receivers.GetSchedule(&schedule, 7); });
    add("schedule: IsUniqueScheduleName", [&] { receivers.IsUniqueScheduleName("it's", 7, 8); });
    add("attribute: AddAttribute", [&] { receivers.AddAttribute(&attribute); });
    add("attribute: ModifyAttribute", [&] { receivers.ModifyAttribute(&attribute); });
    add("attribute: GetAllAttributes", [&] { receivers.GetAllAttributes(&attributes); });
    add("attribute: AddReceiverAttribute", [&] { receivers.AddReceiverAttribute(&value); });
    add("attribute: DeleteReceiverAttributeByRcvID", [&] { receivers.DeleteReceiverAttributeByRcvID(7); });
    add("attribute: GetReceiverAttributeByRcvID", [&] { receivers.GetReceiverAttributeByRcvID(&values, 7); });
    add("attribute: GetAssociatedRecvCountByAttribute", [&] { receivers.GetAssociatedRecvCountByAttribute(7); });
    receivers.connection->answers.clear();
    add("attribute: DeleteAttributeByID", [&] { receivers.DeleteAttributeByID(7); });
    EmptyAttribute(&attribute);
}

void Carriers(Script& script)
{
    Noted<vk::SqlCarrier> carriers;
    VK_CARRIER carrier;
    script.Add("carrier: Add", carriers, [&] { carriers.Add(&carrier); });
    script.Add("carrier: GetByName", carriers, [&] { carriers.GetByName(&carrier, "it's", true); });
}

void GatewayUsers(Script& script)
{
    Noted<vk::SqlXmppGWUser> users;
    VKXmppGWUser user;
    user.user_id = "it's";
    std::vector<VKXmppGWUserView> views;
    std::vector<VKXmppGWUser> all;
    std::map<unsigned long, std::string> names;
    const auto add = [&](const char* name, auto&& run) { script.Add(name, users, run); };
    add("gateway user: PopulateDefaultUsers", [&] { users.PopulateDefaultUsers(); });
    add("gateway user: Add", [&] { users.Add(&user, false); });
    add("gateway user: Add in the caller's transaction", [&] { users.Add(&user, true); });
    add("gateway user: Modify", [&] { users.Modify(&user); });
    add("gateway user: Delete", [&] { users.Delete(7); });
    add("gateway user: UpdateStatus", [&] { users.UpdateStatus(7, 1); });
    add("gateway user: Get", [&] { users.Get(&all); });
    add("gateway user: Get of views", [&] { users.Get(&views, false); });
    users.SetFilter("a_[%");
    users.SetFilter(10, 3);
    users.SetFilterAssignedVKUser(5);
    users.SetSort(VKDBiXmppGWUser::SortVKUserName, false);
    add("gateway user: Get of views, third page of a filter", [&] { users.Get(&views, true); });
    add("gateway user: GetByName", [&] { users.GetByName(&user, "it's", false); });
    add("gateway user: GetIDByName", [&] { users.GetIDByName("it's"); });
    add("gateway user: GetAllNameList", [&] { users.GetAllNameList(names); });
    add("gateway user: GetTotalRecordCount", [&] { users.GetTotalRecordCount(true); });
    add("gateway user: IsUniqueName", [&] { users.IsUniqueName("it's", nullptr); });
}

void Clients(Script& script)
{
    Noted<vk::SqlActiveMxpClient> clients;
    VKActiveMxpClientInfo client;
    client.client_name = "it's";
    std::vector<VKActiveMxpClientInfo> all;
    std::vector<VKActiveMxpClientView> views;
    const auto add = [&](const char* name, auto&& run) { script.Add(name, clients, run); };
    add("client: Add", [&] { clients.Add(&client); });
    add("client: Modify", [&] { clients.Modify(&client); });
    add("client: Delete", [&] { clients.Delete(7); });
    add("client: UpdateAuthorization", [&] { clients.UpdateAuthorization(7, true); });
    add("client: UpdateActivationMode", [&] { clients.UpdateActivationMode(7, VKActivationModeAdvanced); });
    add("client: Get", [&] { clients.Get(&all); });
    add("client: GetForView", [&] { clients.GetForView(&views); });
    clients.SetFilter("a_[%", 10, 20);
    clients.SetFilter(10, 3);
    add("client: GetForView, third page of a filter", [&] { clients.GetForView(&views); });
    add("client: GetByName", [&] { clients.GetByName("it's", &client); });
    add("client: GetByActivationKey", [&] { clients.GetByActivationKey("it's", &client); });
    add("client: GetTotalRecordCount", [&] { clients.GetTotalRecordCount(VKActivationModeBasic); });
}

void ChangesOfQueues(Script& script)
{
    NotedQueue queue(1);
    VK_MESSAGE_CONTENT content;
    vk::SetText(content.header.msg_name, "M.2.J'1.mxp", "msg_name");
    AddMessageContent(&content, "it's");
    VK_MESSAGE_HEADER taken;
    taken.id = 7;
    VK_MESSAGE_HEADER_LIST list{1, &taken};
    queue.connection->answers = {{"SELECT id, msg_name FROM", {"7", "M.0.old.mxp"}},
                                 {"SELECT msg_name, msg_query_count", {"R.0.a.mxp", "0"}},
                                 {"SELECT msg_name FROM", {"M.0.a.mxp"}}};
    const auto add = [&](const char* name, auto&& run) { script.Add(name, queue, run); };
    add("queue: Add", [&] { queue.Add(&content); });
    add("queue: Modify", [&] { queue.Modify(&content, "M.0.old.mxp"); });
    add("queue: Delete", [&] { queue.Delete("M.0.a.mxp"); });
    add("queue: DeleteMsgList", [&] { queue.DeleteMsgList(&list); });
    add("queue: UpdateName", [&] { queue.UpdateName("M.0.a.mxp", "R.0.a.mxp"); });
    add("queue: Morph, with a time", [&] { queue.Morph("M.0.a.mxp", "Q.", true, 10000); });
    add("queue: UpdateTime", [&] { queue.UpdateTime("M.0.a.mxp", 10000); });
    add("queue: UnlockMsgList", [&] { queue.UnlockMsgList(&list); });
    add("queue: UnprocessMsgList", [&] { queue.UnprocessMsgList("svc"); });
    add("queue: UnprocessLockedUpMsgs", [&] { queue.UnprocessLockedUpMsgs({"svc", "o'ther"}); });
    add("queue: CleanupOldMsgs", [&] { queue.CleanupOldMsgs(50, 1); });
    add("queue: EmptyQueue", [&] { queue.EmptyQueue(); });
    EmptyMessageContent(&content);
}

void ReadsOfQueues(Script& script)
{
    NotedQueue queue(1);
    VK_MESSAGE_CONTENT content;
    VK_MESSAGE_HEADER_LIST list;
    std::vector<VK_MESSAGE_CONTENT> contents;
    std::vector<std::string> services;
    const auto add = [&](const char* name, auto&& run) { script.Add(name, queue, run); };
    queue.connection->answers = {{"SELECT id, msg_name, ", {"7", "M.0.a.mxp", "0", "0"}},
                                 {"this_table", {"7", "M.0.a.mxp", "0", "0"}},
                                 {"SELECT msg_contents", {"{}"}}};
    add("queue: GetReadyMsg", [&] { queue.GetReadyMsg(&list, false); });
    queue.SetFilter(10, 3);
    add("queue: GetReadyMsg, third page", [&] { queue.GetReadyMsg(&list, true); });
    queue.ClearFilter();
    add("queue: GetByName", [&] { queue.GetByName("M.0.a.mxp", &content, false, true); });
    queue.connection->answers.clear();
    queue.SetFilter("mxp*", "it's", 10, 20);
    queue.SetFilterExpired(true);
    queue.SetFilterView("a_[%", "s", "r", "g", "p", "c", 10, 0, 0, 20, 2);
    queue.SetSort(SortByCascadeDelay, false);
    add("queue: Get, every filter", [&] { queue.Get(&list, false); });
    add("queue: GetFilteredRecordCount", [&] { queue.GetFilteredRecordCount(); });
    add("queue: GetByNameList", [&] { queue.GetByNameList("M.0", contents); });
    add("queue: GetLockedUpMsgsServiceNames", [&] { queue.GetLockedUpMsgsServiceNames(services); });
    add("queue: GetOldestMsgTime", [&] { queue.GetOldestMsgTime(); });
    add("queue: GetTotalRecordCount", [&] { queue.GetTotalRecordCount(); });
    add("queue: IsUniqueName", [&] { queue.IsUniqueName("M.0.it's.mxp"); });
    NotedQueue cascade(3);
    script.Add("queue: GetReadyMsg of the cascade queue", cascade, [&] { cascade.GetReadyMsg(&list, false); });
    NotedQueue schedule(2);
    script.Add("queue: GetReadyMsg of the schedule queue", schedule, [&] { schedule.GetReadyMsg(&list, false); });
    EmptyMessageHeaderList(&list);
    EmptyMessageContent(&content);
}

} // namespace

TEST(TransactSql, EveryStatementIsAsItIsWritten)
{
    Script script;
    Departments(script);
    Noted<vk::SqlReceiver> receivers;
    ChangesOfReceivers(script, receivers);
    ReadsOfReceivers(script, receivers);
    PartsOfReceivers(script, receivers);
    Carriers(script);
    GatewayUsers(script);
    Clients(script);
    ChangesOfQueues(script);
    ReadsOfQueues(script);

    std::ifstream written(VK_SOURCE_DIR "/tests/database/transact.sql");
    std::istringstream sent(script.Text());
    std::string expected;
    std::string operation;
    for (std::string line; std::getline(sent, line);) {
        std::getline(written, expected);
        if (line.rfind("-- ", 0) == 0)
            operation = line;
        if (line != expected) // for whoever means the change
            std::ofstream(VK_BUILD_DIR "/transact.sql") << script.Text();
        ASSERT_EQ(line, expected) << operation << ", all of it in " VK_BUILD_DIR "/transact.sql";
    }
    EXPECT_FALSE(std::getline(written, expected)) << expected;
}
