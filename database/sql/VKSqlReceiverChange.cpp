#include "VKSqlReceiverChange.h"

#include <ctime>
#include <optional>
#include <strings.h>
#include <vector>

#include "VKCarrier.h"
#include "VKDBiDepartment.h"
#include "VKTableRow.h"

namespace vk {

namespace {

constexpr const TableName& kName = kReceiverTable.name;
constexpr int kAvailable = 1;
constexpr int kOffDutyWithCover = 2;

/// Characters in the statement that adds a receiver.
constexpr std::size_t kAddLimit = 2047;

/// The one column that a change of settings writes.
constexpr Table kMiscSettings{kName, Fields(Field<&VK_RECEIVER::id>("id", PrimaryKey{}),
                                            Field<&VK_RECEIVER::misc_settings>("misc_settings", Secret{}))};

bool IsCovered(const VK_RECEIVER& receiver)
{
    return receiver.status_code == kOffDutyWithCover && receiver.forward_to_id != 0;
}

/// An address with another domain; none when it is in a third one.
std::optional<std::string> InDomain(const std::string& address, const std::string& from, const std::string& to)
{
    const std::size_t at = address.find('@');
    if (at == std::string::npos)
        return std::nullopt;
    const std::size_t end = std::min(address.find('/', at), address.size()); // a resource follows the domain
    const std::string domain = address.substr(at + 1, end - at - 1);
    if (strcasecmp(domain.c_str(), from.c_str()) != 0)
        return std::nullopt;
    return address.substr(0, at + 1) + to + address.substr(end);
}

} // namespace

void SqlReceiverChange::Add(VK_RECEIVER& receiver) { AddRows(&receiver, 1); }

void SqlReceiverChange::AddAll(VK_RECEIVER_LIST& list) { AddRows(list.list, list.count); }

/// In one transaction. What was not stored keeps the id that it had.
void SqlReceiverChange::AddRows(VK_RECEIVER* receivers, int count)
{
    std::optional<SqlDepartmentLimit> limit;
    if (VKDBiDepartment::s_bRecLimit)
        limit.emplace(m_store, m_files);
    std::vector<unsigned long> before;
    try {
        m_store.Exclusive([&] {
            for (int i = 0; i < count; ++i) {
                if (limit)
                    limit->RequireRoom(receivers[i].department_id);
                before.push_back(receivers[i].id);
                AddRow(receivers[i]);
            }
        });
    } catch (...) {
        for (std::size_t i = 0; i < before.size(); ++i)
            receivers[i].id = before[i];
        throw;
    }
}

void SqlReceiverChange::AddRow(VK_RECEIVER& receiver)
{
    receiver.id = m_store.InsertRowWithin(kAddLimit, kReceiverTable, receiver);
    InsertDeptRights(receiver);
    if (receiver.status_code == kOffDutyWithCover && receiver.forward_to_id == 0 && receiver.disable_start_date > 0)
        m_history.AddFor(receiver, receiver.id);
}

bool SqlReceiverChange::Modify(VK_RECEIVER& receiver, unsigned long oldDepartmentId, const VK_DISABLE_HISTORY* update,
                               const VK_DISABLE_HISTORY* add, bool keepHistory)
{
    if (receiver.status_code == kAvailable)
        receiver.disable_start_date = receiver.disable_end_date = 0;
    std::optional<SqlDepartmentLimit> limit;
    if (VKDBiDepartment::s_bRecLimit && receiver.department_id != oldDepartmentId)
        limit.emplace(m_store, m_files);
    return m_store.Exclusive([&] {
        if (limit)
            limit->RequireRoom(receiver.department_id);
        const auto old = m_store.Select("SELECT status_code FROM {} WHERE id={}", kName, receiver.id);
        if (old->GetReturnedRowsCount() == 0)
            return false;
        m_store.UpdateRow(kReceiverTable, receiver);
        DeleteDeptRights(receiver.id);
        InsertDeptRights(receiver);
        if (keepHistory && (update != nullptr || add != nullptr))
            m_history.Apply(update, add, receiver.id);
        else if (keepHistory)
            FollowStatus(receiver, (*old)[0][0].GetValueInt());
        return true;
    });
}

void SqlReceiverChange::FollowStatus(const VK_RECEIVER& receiver, int oldStatus)
{
    const bool was = oldStatus == kAvailable;
    const bool is = receiver.status_code == kAvailable;
    if (was && !is && !IsCovered(receiver))
        m_history.AddFor(receiver, receiver.id);
    else if (!was && is)
        m_history.Close(receiver.id, time(nullptr));
}

bool SqlReceiverChange::ModifyDepartment(const VK_RECEIVER& receiver, unsigned long oldDepartmentId,
                                         const VK_DISABLE_HISTORY* update, const VK_DISABLE_HISTORY* add,
                                         bool keepHistory)
{
    std::optional<SqlDepartmentLimit> limit;
    if (VKDBiDepartment::s_bRecLimit && receiver.department_id != oldDepartmentId)
        limit.emplace(m_store, m_files);
    return m_store.Exclusive([&] {
        if (limit)
            limit->RequireRoom(receiver.department_id);
        if (m_store.Update("UPDATE {} SET department_id={} WHERE id={}", kName, receiver.department_id, receiver.id) ==
            0)
            return false;
        DeleteDeptRights(receiver.id);
        InsertDeptRights(receiver);
        if (keepHistory)
            m_history.Apply(update, add, receiver.id);
        return true;
    });
}

bool SqlReceiverChange::Delete(unsigned long id)
{
    return m_store.Exclusive([&] {
        const bool was = m_store.Update("DELETE FROM {} WHERE id={}", kName, id) > 0;
        DeleteDeptRights(id);
        // Schedules of group members share the table, and a group may have the same number.
        m_store.Update("DELETE FROM {} WHERE owner_id={} AND member_id=0", kReceiverScheduleTable.name, id);
        m_history.DeleteOf(id);
        m_store.Update("DELETE FROM {} WHERE receiver_id={}", kReceiverAttributeTable.name, id);
        return was;
    });
}

bool SqlReceiverChange::ChangeStatus(const VK_RECEIVER& receiver, const VK_DISABLE_HISTORY* update,
                                     const VK_DISABLE_HISTORY* add, bool keepHistory)
{
    return m_store.Exclusive([&] {
        // The cover ends with the change, which is meant.
        if (m_store.Update("UPDATE {} SET disable_start_date={}, disable_end_date={}, status_code={}, forward_to_id=0 "
                           "WHERE id={}",
                           kName, receiver.disable_start_date, receiver.disable_end_date, receiver.status_code,
                           receiver.id) == 0)
            return false;
        if (keepHistory)
            m_history.Apply(update, add, receiver.id);
        return true;
    });
}

long SqlReceiverChange::MovePins(std::initializer_list<int> protocols, const std::string& oldName,
                                 const std::string& newName)
{
    SqlRaw list;
    for (const int protocol : protocols)
        list.text += (list.text.empty() ? "" : ", ") + std::to_string(protocol);
    const auto carriers = m_files.Carriers();
    return m_store.Exclusive([&] {
        long moved = 0;
        const struct
        {
            const char* pin;
            const char* carrier;
            std::size_t capacity;
        } columns[] = {{"pin", "carrier_id", sizeof(VK_RECEIVER::pin)},
                       {"bk_pin", "bk_carrier_id", sizeof(VK_RECEIVER::bk_pin)}};
        for (const auto& column : columns) {
            const auto rows =
                m_store.Select("SELECT id, {} FROM {} WHERE {} IN (SELECT id FROM {} WHERE protocol_id IN ({}))",
                               SqlRaw{column.pin}, kName, SqlRaw{column.carrier}, kCarrierTable.name, list);
            for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
                const auto pin = InDomain((*rows)[row][1].GetValueString(), oldName, newName);
                if (!pin)
                    continue;
                RequireFits(*pin, column.capacity, column.pin);
                moved += m_store.Update("UPDATE {} SET {}={} WHERE id={}", kName, SqlRaw{column.pin}, *pin,
                                        (*rows)[row][0].GetValueULong());
            }
        }
        return moved;
    });
}

bool SqlReceiverChange::SetSecure(unsigned long receiverId, bool secure)
{
    return m_store.Exclusive(
        [&] { return m_store.Update("UPDATE {} SET is_secure={} WHERE id={}", kName, secure, receiverId) > 0; });
}

bool SqlReceiverChange::SaveAdvMessagingData(VK_RECEIVER& receiver)
{
    return m_store.Exclusive([&] {
        const auto rows = m_store.Select("SELECT misc_settings FROM {} WHERE id={}", kName, receiver.id);
        if (rows->GetReturnedRowsCount() == 0)
            return false;
        ReadValue(receiver.misc_settings, (*rows)[0][0], "misc_settings");
        ConvertMiscSettingsToJSON(&receiver, VKMiscSettingsAdvMsgng);
        return m_store.UpdateRow(kMiscSettings, receiver) > 0;
    });
}

bool SqlReceiverChange::IsThere(const TableName& table, unsigned long id)
{
    return m_store.SelectNumber("SELECT COUNT(id) FROM {} WHERE id={}", table, id) > 0;
}

/// Tested here on every backend: the files have no foreign keys.
bool SqlReceiverChange::AddGuestDepartment(unsigned long receiverId, unsigned long departmentId)
{
    const auto departments = m_files.Departments();
    return m_store.Exclusive([&] {
        if (!IsThere(kName, receiverId) || !IsThere(kDepartmentTable.name, departmentId))
            throw VKDBexception(DbError::RuleOrConstraint, __FILE__, __LINE__, "foreign key constraints failed");
        if (m_store.SelectNumber("SELECT COUNT(id) FROM {} WHERE owner_id={} AND department_id={}",
                                 kReceiverDeptTable.name, receiverId, departmentId) > 0)
            return true;
        VK_DEPT_RIGHTS rights;
        rights.owner_id = receiverId;
        rights.department_id = departmentId;
        return m_store.InsertRow(kReceiverDeptTable, rights) != 0;
    });
}

bool SqlReceiverChange::DeleteGuestDepartment(unsigned long receiverId, unsigned long departmentId)
{
    return m_store.Exclusive([&] {
        return m_store.Update("DELETE FROM {} WHERE owner_id={} AND department_id={}", kReceiverDeptTable.name,
                              receiverId, departmentId) > 0;
    });
}

void SqlReceiverChange::InsertDeptRights(const VK_RECEIVER& receiver)
{
    for (int i = 0; i < receiver.dept_rights_count; ++i) {
        VK_DEPT_RIGHTS rights = receiver.dept_rights[i];
        rights.owner_id = receiver.id;
        m_store.InsertRow(kReceiverDeptTable, rights);
    }
}

void SqlReceiverChange::DeleteDeptRights(unsigned long receiverId)
{
    m_store.Update("DELETE FROM {} WHERE owner_id={}", kReceiverDeptTable.name, receiverId);
}

} // namespace vk
