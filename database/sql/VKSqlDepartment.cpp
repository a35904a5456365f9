#include "VKSqlDepartment.h"

#include <algorithm>

#include "VKSqlStore.h"

namespace vk {

namespace {

constexpr const TableName& kName = kDepartmentTable.name;
constexpr const char* kByName = "UPPER(name) ASC";

} // namespace

SqlDepartment::SqlDepartment() = default;
SqlDepartment::~SqlDepartment() = default;

void SqlDepartment::UseStore(std::unique_ptr<SqlStore> store) { m_store = std::move(store); }

bool SqlDepartment::Add(VK_DEPARTMENT* department)
{
    department->id = m_store->Exclusive([&] { return m_store->InsertRow(kDepartmentTable, *department); });
    return true;
}

bool SqlDepartment::Modify(VK_DEPARTMENT* department)
{
    return m_store->Exclusive([&] { return m_store->UpdateRow(kDepartmentTable, *department); }) > 0;
}

bool SqlDepartment::Delete(unsigned long id)
{
    return m_store->Exclusive([&] { return m_store->Update("DELETE FROM {} WHERE id={}", kName, id); }) > 0;
}

bool SqlDepartment::IncrementReceiverCount(unsigned long id)
{
    if (id == 0)
        return false;
    const SqlRaw belowLimit{s_bRecLimit ? " AND num_receivers < max_receivers" : ""};
    m_store->Exclusive([&] {
        if (m_store->Update("UPDATE {} SET num_receivers = num_receivers+1 WHERE id={}{}", kName, id, belowLimit) == 0)
            ExplainUntouched(id, true);
    });
    return true;
}

bool SqlDepartment::DecrementReceiverCount(unsigned long id)
{
    if (id == 0)
        return false;
    m_store->Exclusive([&] {
        if (m_store->Update("UPDATE {} SET num_receivers = num_receivers-1 WHERE id={} AND num_receivers > 0", kName,
                            id) == 0)
            ExplainUntouched(id, false);
    });
    return true;
}

/// Throws the reason why a count was not changed. With limits on, a department without a limit (-1) gives none, and its
/// count stays as it is.
void SqlDepartment::ExplainUntouched(unsigned long id, bool incremented)
{
    const auto result = m_store->Select("SELECT num_receivers, max_receivers FROM {} WHERE id={}", kName, id);
    if (result->GetReturnedRowsCount() == 0)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            "Unknown department. The record may have been deleted.");
    const long count = (*result)[0][0].GetValueLong();
    const long most = (*result)[0][1].GetValueLong();
    if (!incremented && count <= 0)
        throw VKDBexception(DbError::General, __FILE__, __LINE__, "Department receiver count has corrupted.");
    if (incremented && s_bRecLimit && most >= 1 && count >= most)
        throw VKDBexception(DbError::DepartmentLimit, __FILE__, __LINE__,
                            "Department maximum receivers limit exceeds.");
}

bool SqlDepartment::Get(VK_DEPARTMENT_LIST* list)
{
    EmptyDepartmentList(list);
    const std::string filter = FilterClause();
    const auto rows = m_store->Shared([&] {
        const SqlRaw where{filter};
        const std::string query = m_store->Part("SELECT * FROM {}{}", kName, where).text;
        if (m_iPageSize <= 0)
            return m_store->Select("{} ORDER BY {}", SqlRaw{query}, SqlRaw{kByName});
        const long total = m_store->SelectNumber("SELECT COUNT(id) FROM {}{}", kName, where);
        m_iPageCount = static_cast<int>((total + m_iPageSize - 1) / m_iPageSize);
        const long offset = (std::max(m_iPageNumber, 1) - 1L) * m_iPageSize;
        return m_store->Select("{}", SqlRaw{m_store->Dialect().Page(query, kByName, m_iPageSize, offset)});
    });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        VK_DEPARTMENT department;
        FillStructFromResultSet(&department, *rows, row);
        AddDepartment(list, &department);
    }
    return true;
}

bool SqlDepartment::GetByID(VK_DEPARTMENT* department, unsigned long id)
{
    return ReadOne(department, m_store->Part("id={}", id).text);
}

bool SqlDepartment::GetByName(VK_DEPARTMENT* department, const std::string& name)
{
    return ReadOne(department, m_store->Dialect().EqualsNoCase("name", name));
}

bool SqlDepartment::ReadOne(VK_DEPARTMENT* department, const std::string& condition)
{
    *department = VK_DEPARTMENT{};
    const auto rows =
        m_store->Shared([&] { return m_store->Select("SELECT * FROM {} WHERE {}", kName, SqlRaw{condition}); });
    return FillStructFromResultSet(department, *rows, 0);
}

long SqlDepartment::GetTotalRecordCount()
{
    return m_store->Shared([&] { return m_store->SelectNumber("SELECT COUNT(id) FROM {}", kName); });
}

bool SqlDepartment::IsUniqueName(const std::string& name, unsigned long excludeId)
{
    const SqlRaw same{m_store->Dialect().EqualsNoCase("name", name)};
    const auto rows = m_store->Shared(
        [&] { return m_store->Select("SELECT id FROM {} WHERE {} AND id<>{}", kName, same, excludeId); });
    return rows->GetReturnedRowsCount() == 0;
}

bool SqlDepartment::GetNamesList(std::vector<VK_NAME_RECORD>& names)
{
    names.clear();
    const auto rows =
        m_store->Shared([&] { return m_store->Select("SELECT id, name FROM {} ORDER BY {}", kName, SqlRaw{kByName}); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        names.push_back({(*rows)[row][0].GetValueULong(), (*rows)[row][1].GetValueString()});
    return true;
}

bool SqlDepartment::GetIDByName(unsigned long& id, const std::string& name)
{
    const SqlRaw same{m_store->Dialect().EqualsNoCase("name", name)};
    const auto rows = m_store->Shared([&] { return m_store->Select("SELECT id FROM {} WHERE {}", kName, same); });
    id = (*rows)[0][0].GetValueULong();
    return rows->GetReturnedRowsCount() > 0;
}

void SqlDepartment::SetFilter(const std::string& name) { m_strNameFilter = name; }

void SqlDepartment::SetFilter(int pageSize, int pageNumber)
{
    m_iPageSize = pageSize;
    m_iPageNumber = pageNumber;
}

void SqlDepartment::ClearFilter()
{
    m_strNameFilter.clear();
    m_iPageSize = m_iPageNumber = m_iPageCount = 0;
}

std::string SqlDepartment::FilterClause() const
{
    if (m_strNameFilter.empty() || m_strNameFilter == "*")
        return "";
    const std::string column = m_store->Dialect().TableOf(kName) + ".name";
    return " WHERE " + m_store->Dialect().BeginsNoCase(column, m_strNameFilter);
}

bool SqlDepartment::ConvertRecords(VK_DEPARTMENT_LIST* list)
{
    m_store->Exclusive([&] { m_store->InsertRowsWithIds(kDepartmentTable, list->list, list->count, "department"); });
    return true;
}

} // namespace vk
