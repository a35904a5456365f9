#include "VKSqlReceiver.h"

#include <optional>

#include "VKDBiDepartment.h"
#include "VKRecordList.h"
#include "VKSqlStore.h"
#include "VKTableRow.h"

namespace vk {

namespace {

constexpr const TableName& kName = kReceiverTable.name;
constexpr const char* kByName = "UPPER(name) ASC";
constexpr SqlFile kDepartments = {"dbDepartments", "departments.sdb"};

constexpr int kOffDutyWithCover = 2;

} // namespace

SqlReceiver::SqlReceiver() = default;
SqlReceiver::~SqlReceiver() = default;

void SqlReceiver::UseStore(std::unique_ptr<SqlStore> store) { m_store = std::move(store); }

bool SqlReceiver::AddImpl(VK_RECEIVER* receiver)
{
    std::optional<SqlAttachment> departments;
    if (VKDBiDepartment::s_bRecLimit) {
        MakeDepartments();
        departments.emplace(m_store->Connection(), kDepartments);
    }
    receiver->id = m_store->Exclusive([&] {
        if (departments && IsLimitReached(receiver->department_id))
            throw VKDBexception(DbError::DepartmentLimit, __FILE__, __LINE__,
                                "Department maximum receivers limit exceeds.");
        return InsertWithParts(*receiver);
    });
    return true;
}

unsigned long SqlReceiver::InsertWithParts(const VK_RECEIVER& receiver)
{
    const unsigned long id = m_store->InsertRow(kReceiverTable, receiver);
    InsertDeptRights(receiver, id);
    if (receiver.status_code == kOffDutyWithCover && receiver.forward_to_id == 0 && receiver.disable_start_date > 0)
        AddDisableHistory(receiver, id);
    return id;
}

void SqlReceiver::InsertDeptRights(const VK_RECEIVER& receiver, unsigned long id)
{
    for (int i = 0; i < receiver.dept_rights_count; ++i) {
        VK_DEPT_RIGHTS rights = receiver.dept_rights[i];
        rights.owner_id = id;
        m_store->InsertRow(kReceiverDeptTable, rights);
    }
}

void SqlReceiver::AddDisableHistory(const VK_RECEIVER& receiver, unsigned long id)
{
    VK_DISABLE_HISTORY history;
    history.receiver_id = id;
    history.disable_start_date = receiver.disable_start_date;
    history.disable_end_date = receiver.disable_end_date;
    SetText(history.forward_to_number,
            GetText(receiver.forward_to_number, sizeof receiver.forward_to_number, "forward_to_number"),
            "forward_to_number");
    unsigned long row = 0;
    try {
        row = m_store->InsertRow(kDisableHistoryTable, history);
    } catch (const VKDBexception& failure) {
        throw VKDBexception(failure.GetErrorCode(), __FILE__, __LINE__,
                            "Failed to insert record in Disable History Table.", failure.GetSysMsg());
    }
    if (row == 0)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            "Record could not be inserted in Disable History Table successfully.");
}

/// The departments stand in a file of their own, which is made when it is not there yet.
void SqlReceiver::MakeDepartments()
{
    std::unique_ptr<VKDBiDepartment>(VKDBiDepartment::CreateInstance(GetDbSystem()));
}

bool SqlReceiver::IsDepartmentRecvLimitReached(unsigned long departmentId)
{
    MakeDepartments();
    const SqlAttachment departments(m_store->Connection(), kDepartments);
    return m_store->Shared([&] { return IsLimitReached(departmentId); });
}

bool SqlReceiver::IsLimitReached(unsigned long departmentId)
{
    const long most =
        m_store->SelectNumber("SELECT max_receivers FROM {} WHERE id={}", kDepartmentTable.name, departmentId);
    return most >= 1 &&
           m_store->SelectNumber("SELECT COUNT(id) FROM {} WHERE department_id={}", kName, departmentId) >= most;
}

bool SqlReceiver::IsDepartmentBeingUsed(unsigned long departmentId)
{
    return m_store->Shared([&] {
        for (const TableName& table : {kName, kReceiverDeptTable.name})
            if (m_store->SelectNumber("SELECT COUNT(id) FROM {} WHERE department_id={}", table, departmentId) > 0)
                return true;
        return false;
    });
}

bool SqlReceiver::Get(VK_RECEIVER_LIST* list)
{
    EmptyReceiverList(list);
    const auto rows =
        m_store->Shared([&] { return m_store->Select("SELECT * FROM {} ORDER BY {}", kName, SqlRaw{kByName}); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        AppendRecord(list->list, list->count, VK_RECEIVER{});
        FillStructFromResultSet(&list->list[list->count - 1], *rows, row);
    }
    return true;
}

bool SqlReceiver::GetByID(VK_RECEIVER* receiver, unsigned long id)
{
    return ReadOne(receiver, m_store->Part("id={}", id).text);
}

bool SqlReceiver::GetByName(VK_RECEIVER* receiver, const std::string& name)
{
    return ReadOne(receiver, m_store->Dialect().EqualsNoCase("name", name));
}

bool SqlReceiver::GetByPin(VK_RECEIVER* receiver, const std::string& pin)
{
    return ReadOne(receiver, m_store->Dialect().EqualsNoCase("pin", pin));
}

bool SqlReceiver::ReadOne(VK_RECEIVER* receiver, const std::string& condition)
{
    EmptyReceiver(receiver);
    return m_store->Shared([&] {
        const auto rows = m_store->Select("SELECT * FROM {} WHERE {}", kName, SqlRaw{condition});
        if (!FillStructFromResultSet(receiver, *rows, 0))
            return false;
        ReadDeptRights(*receiver);
        return true;
    });
}

void SqlReceiver::ReadDeptRights(VK_RECEIVER& receiver)
{
    const auto rows =
        m_store->Select("SELECT * FROM {} WHERE owner_id={} ORDER BY id", kReceiverDeptTable.name, receiver.id);
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        VK_DEPT_RIGHTS rights;
        ReadRow(kReceiverDeptTable.fields, (*rows)[row], rights);
        AppendRecord(receiver.dept_rights, receiver.dept_rights_count, rights);
    }
}

bool SqlReceiver::GetNamesList(std::vector<VK_NAME_RECORD>& names)
{
    names.clear();
    const auto rows =
        m_store->Shared([&] { return m_store->Select("SELECT id, name FROM {} ORDER BY {}", kName, SqlRaw{kByName}); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        names.push_back({(*rows)[row][0].GetValueULong(), (*rows)[row][1].GetValueString()});
    return true;
}

long SqlReceiver::GetTotalRecordCount()
{
    return m_store->Shared([&] { return m_store->SelectNumber("SELECT COUNT(id) FROM {}", kName); });
}

/// Compares with LOWER where all other name tests use UPPER; this is meant.
bool SqlReceiver::GetIDByName(unsigned long& id, const std::string& name)
{
    const auto rows = m_store->Shared(
        [&] { return m_store->Select("SELECT id FROM {} WHERE LOWER(name) = LOWER({})", kName, name); });
    id = (*rows)[0][0].GetValueULong();
    return rows->GetReturnedRowsCount() > 0;
}

bool SqlReceiver::IsUniqueName(const std::string& name, unsigned long excludeId)
{
    const SqlRaw same{m_store->Dialect().EqualsNoCase("name", name)};
    const auto rows = m_store->Shared(
        [&] { return m_store->Select("SELECT id FROM {} WHERE {} AND id<>{}", kName, same, excludeId); });
    return rows->GetReturnedRowsCount() == 0;
}

} // namespace vk
