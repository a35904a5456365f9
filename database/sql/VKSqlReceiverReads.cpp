#include "VKCarrier.h"
#include "VKSqlReceiverParts.h"

/// \file
/// What reads receivers and answers questions about them.

namespace vk {

namespace {

constexpr const TableName& kName = kReceiverTable.name;

} // namespace

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

} // namespace vk
