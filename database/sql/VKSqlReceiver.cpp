#include "VKCarrier.h"
#include "VKSqlReceiverParts.h"

/// \file
/// What changes receivers, their schedules and their attributes.

namespace vk {

namespace {

/// The parts of one kind of all receivers.
template <class Record>
std::vector<Record> AllOf(const VK_RECEIVER_LIST& list, Record* VK_RECEIVER::*parts, int VK_RECEIVER::*count)
{
    std::vector<Record> all;
    for (int i = 0; i < list.count; ++i)
        all.insert(all.end(), list.list[i].*parts, list.list[i].*parts + list.list[i].*count);
    return all;
}

} // namespace

SqlReceiver::SqlReceiver() = default;
SqlReceiver::~SqlReceiver() = default;

void SqlReceiver::UseStore(std::unique_ptr<SqlStore> store)
{
    m_parts = std::make_unique<Parts>(std::move(store), *this);
}

// Receivers.

bool SqlReceiver::AddImpl(VK_RECEIVER* receiver)
{
    m_parts->change.Add(*receiver);
    return true;
}

/// Rules are the business of the layer above.
bool SqlReceiver::AddAll(VK_RECEIVER_LIST* list, bool checkOnly, std::vector<VKRefusedRecord>& refused)
{
    refused.clear();
    if (!checkOnly)
        m_parts->change.AddAll(*list);
    return !checkOnly;
}

bool SqlReceiver::ModifyImpl(VK_RECEIVER* receiver, unsigned long oldDepartmentId, VK_DISABLE_HISTORY* update,
                             VK_DISABLE_HISTORY* add, bool keepHistory)
{
    return m_parts->change.Modify(*receiver, oldDepartmentId, update, add, keepHistory);
}

/// The password is no part of what is written.
bool SqlReceiver::ModifyDepartment(VK_RECEIVER* receiver, unsigned long oldDepartmentId, bool,
                                   VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add, bool keepHistory)
{
    return m_parts->change.ModifyDepartment(*receiver, oldDepartmentId, update, add, keepHistory);
}

/// Receivers are counted where they are, so that their department need not be told.
bool SqlReceiver::Delete(unsigned long id, unsigned long) { return m_parts->change.Delete(id); }

bool SqlReceiver::ChangeStatus(VK_RECEIVER* receiver, VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add,
                               bool keepHistory)
{
    return m_parts->change.ChangeStatus(*receiver, update, add, keepHistory);
}

bool SqlReceiver::UpdateMXPServiceName(const std::string& oldName, const std::string& newName)
{
    return m_parts->change.MovePins({VKProtocolMxpOneWay, VKProtocolMxpTwoWay}, oldName, newName) > 0;
}

bool SqlReceiver::UpdateXMPPServiceName(const std::string& oldName, const std::string& newName)
{
    return m_parts->change.MovePins({VKProtocolXmpp}, oldName, newName) > 0;
}

bool SqlReceiver::UpdateReceiverSecureStatus(unsigned long receiverId, bool secure)
{
    return m_parts->change.SetSecure(receiverId, secure);
}

bool SqlReceiver::SaveAdvMessagingData(VK_RECEIVER* receiver)
{
    return m_parts->change.SaveAdvMessagingData(*receiver);
}

bool SqlReceiver::AddGuestDepartment(unsigned long receiverId, unsigned long departmentId)
{
    return m_parts->change.AddGuestDepartment(receiverId, departmentId);
}

bool SqlReceiver::DeleteGuestDepartment(unsigned long receiverId, unsigned long departmentId)
{
    return m_parts->change.DeleteGuestDepartment(receiverId, departmentId);
}

bool SqlReceiver::ConvertRecords(VK_RECEIVER_LIST* list)
{
    SqlStore& store = *m_parts->store;
    store.Exclusive([&] {
        store.InsertRowsWithIds(kReceiverTable, list->list, list->count, "receiver");
        const auto departments = AllOf(*list, &VK_RECEIVER::dept_rights, &VK_RECEIVER::dept_rights_count);
        store.InsertRowsWithIds(kReceiverDeptTable, departments.data(), static_cast<int>(departments.size()),
                                "receiver department");
        const auto schedules = AllOf(*list, &VK_RECEIVER::schedules, &VK_RECEIVER::schedule_count);
        store.InsertRowsWithIds(kReceiverScheduleTable, schedules.data(), static_cast<int>(schedules.size()),
                                "receiver schedule");
    });
    return true;
}

// Schedules.

bool SqlReceiver::AddSchedule(VK_ONDUTY_SCHEDULE* schedule) { return m_parts->schedules.Add(schedule); }
bool SqlReceiver::ModifySchedule(VK_ONDUTY_SCHEDULE* schedule) { return m_parts->schedules.Modify(*schedule); }
bool SqlReceiver::DeleteSchedule(unsigned long id) { return m_parts->schedules.Delete(id); }

bool SqlReceiver::DeleteSchedule(unsigned long ownerId, unsigned long memberId, int memberType)
{
    return m_parts->schedules.DeleteOf(ownerId, memberId, memberType);
}

bool SqlReceiver::GetSchedule(VK_ONDUTY_SCHEDULE* schedule, unsigned long id)
{
    return m_parts->schedules.Get(schedule, id);
}

// Attributes.

bool SqlReceiver::AddAttribute(VK_ATTRIBUTE* attribute) { return m_parts->attributes.Add(attribute); }
bool SqlReceiver::ModifyAttribute(VK_ATTRIBUTE* attribute) { return m_parts->attributes.Modify(*attribute); }
bool SqlReceiver::DeleteAttributeByID(unsigned long id) { return m_parts->attributes.Delete(id); }

bool SqlReceiver::GetAllAttributes(VK_ATTRIBUTE_LIST* list)
{
    m_parts->attributes.List(list);
    return true;
}

bool SqlReceiver::AddReceiverAttribute(VK_RECEIVER_ATTRIBUTE* attribute)
{
    return m_parts->attributes.AddValue(attribute);
}

bool SqlReceiver::ReplaceReceiverAttributes(unsigned long receiverId, VK_RECEIVER_ATTRIBUTE_LIST* values)
{
    m_parts->attributes.ReplaceValues(receiverId, *values);
    return true;
}

bool SqlReceiver::DeleteReceiverAttributeByRcvID(unsigned long receiverId)
{
    return m_parts->attributes.DeleteValuesOfReceiver(receiverId);
}

bool SqlReceiver::DeleteReceiverAttributeByAttribID(unsigned long attributeId)
{
    return m_parts->attributes.DeleteValuesOfAttribute(attributeId);
}

bool SqlReceiver::GetReceiverAttributeByRcvID(VK_RECEIVER_ATTRIBUTE_LIST* list, unsigned long receiverId)
{
    EmptyReceiverAttributeList(list);
    if (receiverId != 0)
        m_parts->attributes.ListValues(list, receiverId);
    return list->count > 0;
}

bool SqlReceiver::IsUniqueAttributeName(const std::string& name, unsigned long excludeId)
{
    return m_parts->attributes.IsUniqueName(name, excludeId);
}

bool SqlReceiver::IsAttribBeingUsed(unsigned long attributeId)
{
    return m_parts->attributes.CountReceivers(attributeId) > 0;
}

bool SqlReceiver::GetReceiversAttributesList(VK_RECEIVER_ATTRIBUTE_LIST* list)
{
    m_parts->attributes.ListValues(list, 0);
    return true;
}

long SqlReceiver::GetAssociatedRecvCountByAttribute(unsigned long attributeId)
{
    return m_parts->attributes.CountReceivers(attributeId);
}

bool SqlReceiver::GetAttributesNameList(std::vector<VK_NAME_RECORD>& names)
{
    m_parts->attributes.ListNames(names);
    return true;
}

} // namespace vk
