#include "VKSqlReceiverFiles.h"

#include <utility>

#include "VKDBiCarrier.h"
#include "VKDBiDepartment.h"
#include "VKReceiver.h"

namespace vk {

namespace {

constexpr SqlFile kDepartments = {"dbDepartments", "departments.sdb"};
constexpr SqlFile kCarriers = {"dbCarriers", "carriers.sdb"};
constexpr SqlFile kGroups = {"dbRecipGroups", "recipient_groups.sdb"};

/// An entity makes its file when an object of it is made.
template <class Entity> void MakeFile(SqlConnection& connection, const SqlFile& file, VKDBsystem* system)
{
    if (!connection.CanAttach(file))
        std::unique_ptr<Entity>(Entity::CreateInstance(system));
}

} // namespace

std::unique_ptr<SqlAttachment> SqlReceiverFiles::Departments()
{
    MakeFile<VKDBiDepartment>(m_store.Connection(), kDepartments, m_owner.GetDbSystem());
    return std::make_unique<SqlAttachment>(m_store.Connection(), kDepartments);
}

std::unique_ptr<SqlAttachment> SqlReceiverFiles::Carriers()
{
    MakeFile<VKDBiCarrier>(m_store.Connection(), kCarriers, m_owner.GetDbSystem());
    return std::make_unique<SqlAttachment>(m_store.Connection(), kCarriers);
}

std::unique_ptr<SqlAttachment> SqlReceiverFiles::Groups()
{
    if (!m_store.Connection().CanAttach(kGroups))
        return nullptr;
    return std::make_unique<SqlAttachment>(m_store.Connection(), kGroups);
}

bool SqlReceiverFiles::HasGroupTable()
{
    return m_store.Select("{}", SqlRaw{m_store.Dialect().TableProbe(kGroupTable)})->GetReturnedRowsCount() > 0;
}

SqlDepartmentLimit::SqlDepartmentLimit(SqlStore& store, SqlReceiverFiles& files)
    : m_store(store), m_files(files), m_departments(files.Departments()),
      m_groups(VKDBiDepartment::s_bCountGrp ? files.Groups() : nullptr)
{
}

bool SqlDepartmentLimit::IsReached(unsigned long departmentId)
{
    const auto countIn = [&](const TableName& table) {
        return m_store.SelectNumber("SELECT COUNT(id) FROM {} WHERE department_id={}", table, departmentId);
    };
    const long most =
        m_store.SelectNumber("SELECT max_receivers FROM {} WHERE id={}", kDepartmentTable.name, departmentId);
    if (most < 1)
        return false;
    long count = countIn(kReceiverTable.name);
    if (m_groups && m_files.HasGroupTable())
        count += countIn(SqlReceiverFiles::kGroupTable);
    return count >= most;
}

/// On a server two transactions would both count before either stores what it adds.
void SqlDepartmentLimit::RequireRoom(unsigned long departmentId)
{
    if (!std::exchange(m_bHeld, true))
        m_store.HoldTable(kReceiverTable.name);
    if (IsReached(departmentId))
        throw VKDBexception(DbError::DepartmentLimit, __FILE__, __LINE__,
                            "Department maximum receivers limit exceeds.");
}

} // namespace vk
