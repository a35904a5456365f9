#include "VKSqlReceiver.h"

#include "VKCarrier.h"
#include "VKMD5.h"
#include "VKRecipientRights.h"
#include "VKSqlReceiverAttributes.h"
#include "VKSqlReceiverChange.h"
#include "VKSqlReceiverLists.h"
#include "VKSqlReceiverSchedules.h"

namespace vk {

namespace {

constexpr const TableName& kName = kReceiverTable.name;
constexpr int kRecipientIsReceiver = 1;

/// The receivers of one user in a list of recipients.
template <class List> std::vector<unsigned long> ReceiversOf(const List& list, unsigned long userId)
{
    std::vector<unsigned long> ids;
    for (int i = 0; i < list.count; ++i)
        if (list.list[i].user_id == userId && list.list[i].recipient_type == kRecipientIsReceiver)
            ids.push_back(list.list[i].recipient_id);
    return ids;
}

/// The parts of one kind of all receivers.
template <class Record>
std::vector<Record> AllOf(const VK_RECEIVER_LIST& list, Record* VK_RECEIVER::*parts, int VK_RECEIVER::*count)
{
    std::vector<Record> all;
    for (int i = 0; i < list.count; ++i)
        all.insert(all.end(), list.list[i].*parts, list.list[i].*parts + list.list[i].*count);
    return all;
}

bool Grants(const VK_DEPT_PERMISSION& permission, DeptPerm right)
{
    switch (right) {
    case DeptPermSendReceiver:
        return permission.send_receiver;
    case DeptPermSendGroup:
        return permission.send_group;
    case DeptPermModReceiver:
        return permission.mod_receiver > 0;
    case DeptPermModGroup:
        return permission.mod_group > 0;
    }
    return false;
}

} // namespace

struct SqlReceiver::Parts
{
    Parts(std::unique_ptr<SqlStore> ownStore, SqlReceiver& owner)
        : store(std::move(ownStore)), files(*store, owner), history(*store), change(*store, files, history),
          lists(*store, files, owner), schedules(*store), attributes(*store)
    {
    }

    /// Runs a SELECT that gives one number in a transaction of its own.
    template <class... Values> long Number(std::string_view pattern, const Values&... values)
    {
        return store->Shared([&] { return store->SelectNumber(pattern, values...); });
    }

    std::unique_ptr<SqlStore> store;
    SqlReceiverFiles files;
    SqlReceiverHistory history;
    SqlReceiverChange change;
    SqlReceiverLists lists;
    SqlReceiverSchedules schedules;
    SqlReceiverAttributes attributes;
};

SqlReceiver::SqlReceiver() = default;
SqlReceiver::~SqlReceiver() = default;

void SqlReceiver::UseStore(std::unique_ptr<SqlStore> store)
{
    m_parts = std::make_unique<Parts>(std::move(store), *this);
}

// Change.

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

// Reads.

bool SqlReceiver::Get(VK_RECEIVER_LIST* list, bool withDepartments, bool withSchedules, bool withMiscSettings)
{
    SqlReceiverLists::Extras extras;
    extras.departments = withDepartments;
    extras.schedules = withSchedules;
    extras.miscSettings = withMiscSettings;
    m_parts->lists.Get(list, extras);
    return true;
}

bool SqlReceiver::GetByIDs(VK_RECEIVER_LIST* list, const std::vector<unsigned long>& ids)
{
    m_parts->lists.GetWhere(list, m_parts->store->Part("id IN {}", SqlRaw{SqlIdList(ids)}).text);
    return true;
}

bool SqlReceiver::GetForSend(VK_RECEIVER_LIST* list, bool withDepartments, bool withSchedules, bool withMiscSettings,
                             bool onlyEnabled)
{
    m_parts->lists.Get(list, {withDepartments, withSchedules, withMiscSettings, true, onlyEnabled});
    return true;
}

bool SqlReceiver::GetForMemberDetails(VK_RECEIVER_LIST* list)
{
    m_parts->lists.GetBrief(list,
                            "{receiver}.id, {receiver}.name, {receiver}.description, {receiver}.pin, {receiver}.email, "
                            "{receiver}.type, {receiver}.two_way, {receiver}.carrier_id, {receiver}.department_id, "
                            "{receiver}.disable_start_date, {receiver}.disable_end_date, {receiver}.status_code, "
                            "{receiver}.first_name, {receiver}.last_name, {receiver}.forward_to_id, "
                            "{receiver}.advanced_messaging, {receiver}.is_secure",
                            true);
    return true;
}

bool SqlReceiver::GetForScheduler(VK_RECEIVER_LIST* list, bool withSchedules)
{
    m_parts->lists.GetForScheduler(list, withSchedules);
    return true;
}

bool SqlReceiver::GetForFavorites(VK_RECEIVER_LIST* list)
{
    m_parts->lists.GetBrief(list, "{receiver}.id, {receiver}.name, {receiver}.type, {receiver}.department_id", false);
    return true;
}

bool SqlReceiver::GetByID(VK_RECEIVER* receiver, unsigned long id)
{
    return m_parts->lists.GetOne(receiver, "id=" + std::to_string(id));
}

bool SqlReceiver::GetByName(VK_RECEIVER* receiver, const std::string& name)
{
    return m_parts->lists.GetOne(receiver, m_parts->store->Dialect().EqualsNoCase("name", name));
}

bool SqlReceiver::GetByPin(VK_RECEIVER* receiver, const std::string& pin)
{
    return m_parts->lists.GetOne(receiver, m_parts->store->Dialect().EqualsNoCase("pin", pin));
}

bool SqlReceiver::GetByNameForScheduler(VK_RECEIVER* receiver, const std::string& name)
{
    if (!m_parts->lists.GetOne(receiver, m_parts->store->Dialect().EqualsNoCase("name", name), true))
        return false;
    const std::string disabled = m_parts->lists.DisabledAt(time(nullptr));
    receiver->disabled =
        m_parts->Number("SELECT COUNT(id) FROM {} WHERE id={} AND {}", kName, receiver->id, SqlRaw{disabled}) > 0;
    return true;
}

bool SqlReceiver::GetNamesList(std::vector<VK_NAME_RECORD>& names)
{
    m_parts->lists.GetNames(names);
    return true;
}

bool SqlReceiver::GetOnlyEnabled(VK_RECEIVER_LIST* list)
{
    SqlReceiverLists::Extras extras;
    extras.onlyEnabled = true;
    m_parts->lists.Get(list, extras);
    return true;
}

bool SqlReceiver::GetDepartmentList(std::map<unsigned long, unsigned long>& departments)
{
    m_parts->lists.GetDepartments(departments);
    return true;
}

bool SqlReceiver::GetReceiverProperties(std::vector<VKReceProperty>& properties)
{
    m_parts->lists.GetProperties(properties);
    return true;
}

bool SqlReceiver::Get(VK_RECEIVER_VIEW_LIST* list)
{
    m_parts->lists.GetViews(list, m_parts->lists.Filter());
    return true;
}

bool SqlReceiver::GetViewsByPin(VK_RECEIVER_VIEW_LIST* list, const std::string& pin)
{
    EmptyReceiverViewList(list);
    const SqlRaw same{m_parts->store->Dialect().EqualsNoCase("pin", pin)};
    if (m_parts->Number("SELECT id FROM {} WHERE {}", kName, same) == 0) // seldom there: spares the other tables
        return true;
    SqlReceiverFilter filter;
    filter.exactPin = pin;
    m_parts->lists.GetViews(list, filter);
    return true;
}

bool SqlReceiver::GetDisableHistory(VK_DISABLE_HISTORY_LIST* list, unsigned long receiverId, long from, long to)
{
    m_parts->history.List(list, receiverId, from, to);
    return true;
}

bool SqlReceiver::GetAdvMessagingData(VK_RECEIVER* receiver, unsigned long id)
{
    return GetByID(receiver, id) && ConvertJSONToAdvMessagingData(receiver);
}

bool SqlReceiver::GetCoveredBy(VK_RECEIVER_LIST* list, unsigned long coverId)
{
    m_parts->lists.GetWhere(list, m_parts->store->Part("forward_to_id={}", coverId).text);
    return true;
}

long SqlReceiver::GetTotalRecordCount() { return m_parts->Number("SELECT COUNT(id) FROM {}", kName); }

/// Compares with LOWER where all other name tests use UPPER; this is meant.
bool SqlReceiver::GetIDByName(unsigned long& id, const std::string& name)
{
    SqlStore& store = *m_parts->store;
    const auto rows =
        store.Shared([&] { return store.Select("SELECT id FROM {} WHERE LOWER(name) = LOWER({})", kName, name); });
    id = (*rows)[0][0].GetValueULong();
    return rows->GetReturnedRowsCount() > 0;
}

// Tests.

bool SqlReceiver::IsUniqueName(const std::string& name, unsigned long excludeId)
{
    const SqlRaw same{m_parts->store->Dialect().EqualsNoCase("name", name)};
    return m_parts->Number("SELECT id FROM {} WHERE {} AND id<>{}", kName, same, excludeId) == 0;
}

bool SqlReceiver::IsUniqueScheduleName(const std::string& name, unsigned long receiverId, unsigned long excludeId)
{
    return m_parts->schedules.IsUniqueName(name, receiverId, excludeId);
}

bool SqlReceiver::IsFaxReceiverPresent()
{
    return m_parts->Number("SELECT COUNT(id) FROM {} WHERE carrier_id={}", kName, VK_FAX_CARRIER_ID) > 0;
}

bool SqlReceiver::IsVoiceReceiverPresent()
{
    return m_parts->Number("SELECT COUNT(id) FROM {} WHERE carrier_id={}", kName, VK_VOICE_CARRIER_ID) > 0;
}

bool SqlReceiver::IsTimeZoneBeingUsed(unsigned long timeZoneId)
{
    return m_parts->Number("SELECT * FROM {} WHERE time_zone_id={}", kName, timeZoneId) > 0;
}

bool SqlReceiver::IsDepartmentRecvLimitReached(unsigned long departmentId)
{
    SqlDepartmentLimit limit(*m_parts->store, m_parts->files);
    return m_parts->store->Shared([&] { return limit.IsReached(departmentId); });
}

bool SqlReceiver::IsDepartmentBeingUsed(unsigned long departmentId)
{
    for (const TableName& table : {kName, kReceiverDeptTable.name})
        if (m_parts->Number("SELECT COUNT(id) FROM {} WHERE department_id={}", table, departmentId) > 0)
            return true;
    return false;
}

bool SqlReceiver::IsCarrierBeingUsed(unsigned long carrierId)
{
    return m_parts->Number("SELECT COUNT(id) FROM {} WHERE carrier_id={} OR bk_carrier_id={}", kName, carrierId,
                           carrierId) > 0;
}

/// Read here, so that no second connection is needed for the rules of a receiver.
bool SqlReceiver::GetCarrier(VK_CARRIER* carrier, unsigned long id)
{
    EmptyCarrier(carrier);
    const auto carriers = m_parts->files.Carriers();
    bool found = false;
    m_parts->store->Shared([&] {
        m_parts->store->SelectRecords<VK_CARRIER>(
            kCarrierTable.fields,
            [&](VK_CARRIER& read, const SqlRow&) {
                std::free(std::exchange(read.carrier_data, nullptr));
                *carrier = read;
                found = true;
            },
            "SELECT * FROM {} WHERE id={}", kCarrierTable.name, id);
    });
    return found;
}

bool SqlReceiver::IsGroupName(const std::string& name)
{
    const auto groups = m_parts->files.Groups();
    const SqlRaw same{m_parts->store->Dialect().EqualsNoCase("name", name)};
    return groups && m_parts->store->Shared([&] {
        return m_parts->files.HasGroupTable() && m_parts->store->SelectNumber("SELECT COUNT(id) FROM {} WHERE {}",
                                                                              SqlReceiverFiles::kGroupTable, same) > 0;
    });
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

// Filters.

void SqlReceiver::SetFilter(const std::string& name, const std::string& pin, unsigned long carrierId, int protocolId,
                            unsigned long departmentId, const std::string& coverName, FltNameLetter firstLetter)
{
    SqlReceiverFilter& filter = m_parts->lists.Filter();
    filter.name = name;
    filter.pin = pin;
    filter.carrierId = carrierId;
    filter.protocolId = protocolId;
    filter.departmentId = departmentId;
    filter.coverName = coverName;
    filter.firstLetter = firstLetter;
}

void SqlReceiver::SetFilter(FltEnabled available, FltEnabled voice, FltEnabled advancedMessaging)
{
    SqlReceiverFilter& filter = m_parts->lists.Filter();
    filter.available = available;
    filter.voice = voice;
    filter.advancedMessaging = advancedMessaging;
}

void SqlReceiver::SetFilter(VK_USER_GROUP* group, bool fullRights, DeptPerm right)
{
    auto& departments = m_parts->lists.Filter().departmentIds;
    departments.reset();
    if (fullRights || group == nullptr)
        return;
    departments.emplace();
    for (int i = 0; i < group->dept_perms.count; ++i)
        if (Grants(group->dept_perms.list[i], right))
            departments->push_back(group->dept_perms.list[i].department_id);
}

void SqlReceiver::SetFilter(VK_FAVORITE_LIST* favorites, unsigned long userId)
{
    m_parts->lists.Filter().favoriteIds = ReceiversOf(*favorites, userId);
}

void SqlReceiver::SetFilter(VK_RECIP_PERM_LIST* permissions, unsigned long userId)
{
    m_parts->lists.Filter().permittedIds = ReceiversOf(*permissions, userId);
}

void SqlReceiver::SetFilterOwner(unsigned long ownerId) { m_parts->lists.Filter().ownerId = ownerId; }

void SqlReceiver::SetFilterReceiverIDs(const std::vector<unsigned long>& ids)
{
    m_parts->lists.Filter().receiverIds = ids;
}

void SqlReceiver::SetFilterAttribute(const std::map<unsigned long, std::string>& values)
{
    m_parts->lists.Filter().attributes = values;
}

void SqlReceiver::SetFilterAccount(const std::string& accountName, const std::string& password)
{
    m_parts->lists.Filter().accountName = accountName;
    m_parts->lists.Filter().accountDigest = Md5Text(password);
}

void SqlReceiver::ClearFilter() { m_parts->lists.Filter() = {}; }

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

} // namespace vk
