#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "MessageQueueStore.h"
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
#include "VKSqlXmppGWUser.h"

/// What every operation of every entity sends to a T-SQL server, to the letter: the text "transact.sql" beside this
/// file. A change of it is a change of what installations run.

namespace {

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
    time_t Now() const override { return LocalTime(7, 10, 0); }
};

/// The statements of an entity under the names of its operations.
template <class Entity> class Script
{
public:
    Script(std::ostream& text, const char* title, Noted<Entity>& entity)
        : m_text(text), m_title(title), m_entity(entity)
    {
    }

    template <class Operation> void operator()(const char* name, Operation&& operation)
    {
        m_text << "-- " << m_title << ": " << name << "\n";
        for (const std::string& note : m_entity.NotesOf(operation)) // where the machine's address differs
            m_text << std::regex_replace(note, std::regex("'[0-9.]+\\.[0-9]+'"), "'ADDRESS'") << "\n";
    }

private:
    std::ostream& m_text;
    const char* m_title;
    Noted<Entity>& m_entity;
};

void Departments(std::ostream& text)
{
    Noted<vk::SqlDepartment> departments;
    VK_DEPARTMENT department;
    vk::SetText(department.name, "O'Brien", "name");
    department.max_receivers = 9;
    VK_DEPARTMENT_LIST list;
    std::vector<VK_NAME_RECORD> names;
    unsigned long id = 0;
    Script add(text, "department", departments);
    add("Add", [&] { departments.Add(&department); });
    add("Modify", [&] { departments.Modify(&department); });
    add("Delete", [&] { departments.Delete(7); });
    VKDBiDepartment::s_bRecLimit = true;
    add("IncrementReceiverCount, with limits", [&] { departments.IncrementReceiverCount(7); });
    VKDBiDepartment::s_bRecLimit = false;
    add("IncrementReceiverCount", [&] { departments.IncrementReceiverCount(7); });
    add("DecrementReceiverCount", [&] { departments.DecrementReceiverCount(7); });
    departments.connection->touched = 0;
    add("DecrementReceiverCount of a row that is not there",
        [&] { EXPECT_THROW(departments.DecrementReceiverCount(7), VKDBexception); });
    departments.connection->touched = 1;
    add("Get", [&] { departments.Get(&list); });
    departments.SetFilter("a_[");
    departments.SetFilter(10, 3);
    add("Get, third page of a filter", [&] { departments.Get(&list); });
    add("GetByID", [&] { departments.GetByID(&department, 7); });
    add("GetByName", [&] { departments.GetByName(&department, "it's"); });
    add("GetTotalRecordCount", [&] { departments.GetTotalRecordCount(); });
    add("IsUniqueName", [&] { departments.IsUniqueName("it's", 7); });
    add("GetNamesList", [&] { departments.GetNamesList(names); });
    add("GetIDByName", [&] { departments.GetIDByName(id, "it's"); });
    department.id = 77;
    AddDepartment(&list, &department);
    add("ConvertRecords", [&] { departments.ConvertRecords(&list); });
    EmptyDepartmentList(&list);
}

void ChangesOfReceivers(std::ostream& text, Noted<vk::SqlReceiver>& receivers)
{
    VK_RECEIVER receiver;
    vk::SetText(receiver.name, "it's", "name");
    AddDeptRights(&receiver, 5);
    VK_DISABLE_HISTORY history;
    VK_RECEIVER_LIST list;
    Script add(text, "receiver", receivers);
    receivers.connection->answers = {{"SELECT status_code", {"1"}}, {"SELECT id, pin", {"7", "a@old"}},
                                     {"SELECT misc_settings", {"{}"}}, {"COUNT(id) FROM VK_RECEIVER_DEPT", {"0"}},
                                     {"COUNT(", {"1"}}, {"SELECT MAX(", {"8"}}};
    add("Add", [&] { receivers.AddImpl(&receiver); });
    receiver.status_code = 3;
    add("Modify, from available to not", [&] { receivers.ModifyImpl(&receiver, 0, nullptr, nullptr, true); });
    receiver.status_code = 1;
    receivers.connection->answers[0].second = {"3"};
    add("Modify, available again", [&] { receivers.ModifyImpl(&receiver, 0, nullptr, nullptr, true); });
    add("ModifyDepartment, with history",
        [&] { receivers.ModifyDepartment(&receiver, 0, false, &history, &history, true); });
    add("ChangeStatus", [&] { receivers.ChangeStatus(&receiver, nullptr, nullptr, true); });
    add("Delete", [&] { receivers.Delete(7, 1); });
    add("UpdateMXPServiceName", [&] { receivers.UpdateMXPServiceName("old", "new"); });
    add("UpdateReceiverSecureStatus", [&] { receivers.UpdateReceiverSecureStatus(7, true); });
    add("SaveAdvMessagingData", [&] { receivers.SaveAdvMessagingData(&receiver); });
    add("AddGuestDepartment", [&] { receivers.AddGuestDepartment(7, 5); });
    add("DeleteGuestDepartment", [&] { receivers.DeleteGuestDepartment(7, 5); });
    VKDBiDepartment::s_bCountGrp = true;
    receivers.connection->answers = {{"SELECT max_receivers", {"9"}}, {"TABLE_NAME", {"x"}}, {"COUNT(", {"1"}}};
    add("IsDepartmentRecvLimitReached, groups counted", [&] { receivers.IsDepartmentRecvLimitReached(5); });
    VKDBiDepartment::s_bCountGrp = false;
    receiver.id = receiver.dept_rights->id = 77;
    AddReceiver(&list, &receiver);
    add("ConvertRecords", [&] { receivers.ConvertRecords(&list); });
    EmptyReceiverList(&list);
    EmptyReceiver(&receiver);
    receivers.connection->answers.clear();
}

void ReadsOfReceivers(std::ostream& text, Noted<vk::SqlReceiver>& receivers)
{
    VK_RECEIVER receiver;
    VK_RECEIVER_LIST list;
    VK_RECEIVER_VIEW_LIST views;
    VK_DISABLE_HISTORY_LIST periods;
    VK_CARRIER carrier;
    std::vector<VKReceProperty> properties;
    unsigned long id = 0;
    Script add(text, "receiver", receivers);
    VKDBiReceiver::s_bIsCoverByAllowed = true;
    add("GetByID", [&] { receivers.GetByID(&receiver, 7); });
    add("GetByName", [&] { receivers.GetByName(&receiver, "it's"); });
    add("GetByPin", [&] { receivers.GetByPin(&receiver, "it's"); });
    add("GetByIDs", [&] { receivers.GetByIDs(&list, {7, 8}); });
    add("GetIDByName", [&] { receivers.GetIDByName(id, "it's"); });
    add("Get, with all parts", [&] { receivers.Get(&list, true, true, true); });
    add("GetForSend, of the enabled", [&] { receivers.GetForSend(&list, false, false, false, true); });
    add("GetForMemberDetails", [&] { receivers.GetForMemberDetails(&list); });
    add("GetForScheduler", [&] { receivers.GetForScheduler(&list, false); });
    add("GetForFavorites", [&] { receivers.GetForFavorites(&list); });
    add("GetReceiverProperties", [&] { receivers.GetReceiverProperties(properties); });
    add("GetDisableHistory", [&] { receivers.GetDisableHistory(&periods, 7, 10, 20); });
    add("GetCoveredBy", [&] { receivers.GetCoveredBy(&list, 7); });
    add("GetCarrier", [&] { receivers.GetCarrier(&carrier, 7); });
    add("IsUniqueName", [&] { receivers.IsUniqueName("it's", 7); });
    add("IsGroupName, without groups", [&] { receivers.IsGroupName("it's"); });
    add("IsFaxReceiverPresent", [&] { receivers.IsFaxReceiverPresent(); });
    add("IsTimeZoneBeingUsed", [&] { receivers.IsTimeZoneBeingUsed(7); });
    add("IsDepartmentBeingUsed", [&] { receivers.IsDepartmentBeingUsed(7); });
    add("IsCarrierBeingUsed", [&] { receivers.IsCarrierBeingUsed(7); });
    receivers.SetFilter("a_[%", "*", 3, 34, 5, "c'", FltOnlyLetters);
    receivers.SetFilter(FltOnlyEnabled, FltOnlyDisabled, FltOnlyEnabled);
    receivers.SetFilterOwner(6);
    receivers.SetFilterReceiverIDs({});
    receivers.SetFilterAttribute({{1, "a"}, {2, "b'"}});
    receivers.SetFilterAccount("ann", "secret");
    add("Get of views, every filter", [&] { receivers.Get(&views); });
    receivers.ClearFilter();
    VKDBiReceiver::s_bIsCoverByAllowed = false;
}

void PartsOfReceivers(std::ostream& text, Noted<vk::SqlReceiver>& receivers)
{
    VK_ONDUTY_SCHEDULE schedule;
    schedule.archived = true;
    VK_ATTRIBUTE attribute;
    vk::SetText(attribute.name, "it's", "name");
    VK_ATTRIBUTE_LIST attributes;
    VK_RECEIVER_ATTRIBUTE value;
    VK_RECEIVER_ATTRIBUTE_LIST values;
    Script addSchedule(text, "schedule", receivers);
    Script addAttribute(text, "attribute", receivers);
    receivers.connection->answers = {{"COUNT(", {"25"}}};
    addSchedule("AddSchedule", [&] { receivers.AddSchedule(&schedule); });
    addSchedule("ModifySchedule", [&] { receivers.ModifySchedule(&schedule); });
    addSchedule("DeleteSchedule", [&] { receivers.DeleteSchedule(7); });
    addSchedule("DeleteSchedule of a member", [&] { receivers.DeleteSchedule(7, 8, 1); });
    addSchedule("GetSchedule", [&] { receivers.GetSchedule(&schedule, 7); });
    addSchedule("IsUniqueScheduleName", [&] { receivers.IsUniqueScheduleName("it's", 7, 8); });
    addAttribute("AddAttribute", [&] { receivers.AddAttribute(&attribute); });
    addAttribute("ModifyAttribute", [&] { receivers.ModifyAttribute(&attribute); });
    addAttribute("GetAllAttributes", [&] { receivers.GetAllAttributes(&attributes); });
    addAttribute("AddReceiverAttribute", [&] { receivers.AddReceiverAttribute(&value); });
    addAttribute("DeleteReceiverAttributeByRcvID", [&] { receivers.DeleteReceiverAttributeByRcvID(7); });
    addAttribute("GetReceiverAttributeByRcvID", [&] { receivers.GetReceiverAttributeByRcvID(&values, 7); });
    addAttribute("GetAssociatedRecvCountByAttribute", [&] { receivers.GetAssociatedRecvCountByAttribute(7); });
    receivers.connection->answers.clear();
    addAttribute("DeleteAttributeByID", [&] { receivers.DeleteAttributeByID(7); });
    EmptyAttribute(&attribute);
}

void Carriers(std::ostream& text)
{
    Noted<vk::SqlCarrier> carriers;
    VK_CARRIER carrier;
    Script add(text, "carrier", carriers);
    add("Add", [&] { carriers.Add(&carrier); });
    add("GetByName", [&] { carriers.GetByName(&carrier, "it's", true); });
}

void GatewayUsers(std::ostream& text)
{
    Noted<vk::SqlXmppGWUser> users;
    VKXmppGWUser user;
    user.user_id = "it's";
    std::vector<VKXmppGWUserView> views;
    std::vector<VKXmppGWUser> all;
    std::map<unsigned long, std::string> names;
    Script add(text, "gateway user", users);
    add("PopulateDefaultUsers", [&] { users.PopulateDefaultUsers(); });
    add("Add", [&] { users.Add(&user, false); });
    add("Add in the caller's transaction", [&] { users.Add(&user, true); });
    add("Modify", [&] { users.Modify(&user); });
    add("Delete", [&] { users.Delete(7); });
    add("UpdateStatus", [&] { users.UpdateStatus(7, 1); });
    add("Get", [&] { users.Get(&all); });
    add("Get of views", [&] { users.Get(&views, false); });
    users.SetFilter("a_[%");
    users.SetFilter(10, 3);
    users.SetFilterAssignedVKUser(5);
    users.SetSort(VKDBiXmppGWUser::SortVKUserName, false);
    add("Get of views, third page of a filter", [&] { users.Get(&views, true); });
    add("GetByName", [&] { users.GetByName(&user, "it's", false); });
    add("GetIDByName", [&] { users.GetIDByName("it's"); });
    add("GetAllNameList", [&] { users.GetAllNameList(names); });
    add("GetTotalRecordCount", [&] { users.GetTotalRecordCount(true); });
    add("IsUniqueName", [&] { users.IsUniqueName("it's", nullptr); });
}

void Clients(std::ostream& text)
{
    Noted<vk::SqlActiveMxpClient> clients;
    VKActiveMxpClientInfo client;
    client.client_name = "it's";
    std::vector<VKActiveMxpClientInfo> all;
    std::vector<VKActiveMxpClientView> views;
    Script add(text, "client", clients);
    add("Add", [&] { clients.Add(&client); });
    add("Modify", [&] { clients.Modify(&client); });
    add("Delete", [&] { clients.Delete(7); });
    add("UpdateAuthorization", [&] { clients.UpdateAuthorization(7, true); });
    add("UpdateActivationMode", [&] { clients.UpdateActivationMode(7, VKActivationModeAdvanced); });
    add("Get", [&] { clients.Get(&all); });
    add("GetForView", [&] { clients.GetForView(&views); });
    clients.SetFilter("a_[%", 10, 20);
    clients.SetFilter(10, 3);
    add("GetForView, third page of a filter", [&] { clients.GetForView(&views); });
    add("GetByName", [&] { clients.GetByName("it's", &client); });
    add("GetByActivationKey", [&] { clients.GetByActivationKey("it's", &client); });
    add("GetTotalRecordCount", [&] { clients.GetTotalRecordCount(VKActivationModeBasic); });
}

void ChangesOfQueues(std::ostream& text)
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
    Script add(text, "queue", queue);
    add("Add", [&] { queue.Add(&content); });
    add("Modify", [&] { queue.Modify(&content, "M.0.old.mxp"); });
    add("Delete", [&] { queue.Delete("M.0.a.mxp"); });
    add("DeleteMsgList", [&] { queue.DeleteMsgList(&list); });
    add("UpdateName", [&] { queue.UpdateName("M.0.a.mxp", "R.0.a.mxp"); });
    add("Morph, with a time", [&] { queue.Morph("M.0.a.mxp", "Q.", true, 10000); });
    add("UpdateTime", [&] { queue.UpdateTime("M.0.a.mxp", 10000); });
    add("UnlockMsgList", [&] { queue.UnlockMsgList(&list); });
    add("UnprocessMsgList", [&] { queue.UnprocessMsgList("svc"); });
    add("UnprocessLockedUpMsgs", [&] { queue.UnprocessLockedUpMsgs({"svc", "o'ther"}); });
    add("CleanupOldMsgs", [&] { queue.CleanupOldMsgs(50, 1); });
    add("EmptyQueue", [&] { queue.EmptyQueue(); });
    EmptyMessageContent(&content);
}

void ReadsOfQueues(std::ostream& text)
{
    NotedQueue queue(1);
    VK_MESSAGE_CONTENT content;
    VK_MESSAGE_HEADER_LIST list;
    std::vector<VK_MESSAGE_CONTENT> contents;
    std::vector<std::string> services;
    Script add(text, "queue", queue);
    queue.connection->answers = {{"SELECT id, msg_name, ", {"7", "M.0.a.mxp", "0", "0"}},
                                 {"this_table", {"7", "M.0.a.mxp", "0", "0"}},
                                 {"SELECT msg_contents", {"{}"}}};
    add("GetReadyMsg", [&] { queue.GetReadyMsg(&list, false); });
    queue.SetFilter(10, 3);
    add("GetReadyMsg, third page", [&] { queue.GetReadyMsg(&list, true); });
    queue.ClearFilter();
    add("GetByName", [&] { queue.GetByName("M.0.a.mxp", &content, false, true); });
    queue.connection->answers.clear();
    queue.SetFilter("mxp*", "it's", 10, 20);
    queue.SetFilterExpired(true);
    queue.SetFilterView("a_[%", "s", "r", "g", "p", "c", 10, 0, 0, 20, 2);
    queue.SetSort(SortByCascadeDelay, false);
    add("Get, every filter", [&] { queue.Get(&list, false); });
    add("GetFilteredRecordCount", [&] { queue.GetFilteredRecordCount(); });
    add("GetByNameList", [&] { queue.GetByNameList("M.0", contents); });
    add("GetLockedUpMsgsServiceNames", [&] { queue.GetLockedUpMsgsServiceNames(services); });
    add("GetOldestMsgTime", [&] { queue.GetOldestMsgTime(); });
    add("GetTotalRecordCount", [&] { queue.GetTotalRecordCount(); });
    add("IsUniqueName", [&] { queue.IsUniqueName("M.0.it's.mxp"); });
    NotedQueue cascade(3);
    Script(text, "queue", cascade)("GetReadyMsg of the cascade queue", [&] { cascade.GetReadyMsg(&list, false); });
    NotedQueue schedule(2);
    Script(text, "queue", schedule)("GetReadyMsg of the schedule queue", [&] { schedule.GetReadyMsg(&list, false); });
    EmptyMessageHeaderList(&list);
    EmptyMessageContent(&content);
}

} // namespace

TEST(TransactSql, EveryStatementIsAsItIsWritten)
{
    std::stringstream sent;
    Departments(sent);
    Noted<vk::SqlReceiver> receivers;
    ChangesOfReceivers(sent, receivers);
    ReadsOfReceivers(sent, receivers);
    PartsOfReceivers(sent, receivers);
    Carriers(sent);
    GatewayUsers(sent);
    Clients(sent);
    ChangesOfQueues(sent);
    ReadsOfQueues(sent);

    std::ofstream(VK_BUILD_DIR "/transact.sql") << sent.str(); // for whoever means a change
    std::stringstream written;
    written << std::ifstream(VK_SOURCE_DIR "/tests/database/transact.sql").rdbuf();
    EXPECT_EQ(sent.str(), written.str()) << "all that was sent is in " VK_BUILD_DIR "/transact.sql";
}
