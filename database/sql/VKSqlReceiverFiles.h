#pragma once

#include <memory>

#include "VKSqlStore.h"

class VKDBbaseInterface;

namespace vk {

/// The tables of other entities that receivers look at, attached as long as the objects live that are given back; they
/// must outlive the transaction that uses them. A file that is not there yet is made; that of the groups is not, since
/// nothing is in it.
class SqlReceiverFiles
{
public:
    /// Both must outlive the object.
    SqlReceiverFiles(SqlStore& store, VKDBbaseInterface& owner) : m_store(store), m_owner(owner) {}

    std::unique_ptr<SqlAttachment> Departments();
    std::unique_ptr<SqlAttachment> Carriers();
    /// Null when there are no groups.
    std::unique_ptr<SqlAttachment> Groups();

    /// Whether the groups' table is there; for use in a transaction, with the groups attached.
    bool HasGroupTable();

    static constexpr TableName kGroupTable{"recipient_group", "VK_RECIPIENT_GROUP"};

private:
    SqlStore& m_store;
    VKDBbaseInterface& m_owner;
};

/// A department's limit of receivers. Holds what it looks at attached: make it before the transaction that asks it.
class SqlDepartmentLimit
{
public:
    SqlDepartmentLimit(SqlStore& store, SqlReceiverFiles& files);

    /// Whether the department has a limit and as many receivers, and groups when those count, as it allows.
    bool IsReached(unsigned long departmentId);
    /// Throws code 100 when it is reached; for use in one exclusive transaction.
    void RequireRoom(unsigned long departmentId);

private:
    SqlStore& m_store;
    SqlReceiverFiles& m_files;
    std::unique_ptr<SqlAttachment> m_departments;
    std::unique_ptr<SqlAttachment> m_groups;
    bool m_bHeld = false; ///< nobody else adds meanwhile
};

} // namespace vk
