#pragma once

#include "VKSqlDialect.h"

namespace vk {

/// The SQL of a server that speaks T-SQL.
class TransactSqlDialect final : public SqlDialect
{
public:
    /// The one object; it has no state.
    static const TransactSqlDialect& Get();

    std::string TableOf(const TableName& table) const override { return table.relational; }
    std::string ColumnType(ColumnKind kind, int width) const override;
    /// A query of its own around it: DISTINCT takes no other terms than its columns.
    std::string Sorted(const std::string& query, const std::string& order) const override
    {
        return SqlDialect::Sorted("SELECT * FROM (" + query + ") this_table_1", order);
    }
    std::string Substring() const override { return "SUBSTRING"; }
    std::string Page(const std::string& query, const std::string& order, long size, long offset) const override;
    std::string PageOfTable(const std::string& columns, const std::string& from, const std::string& order, long size,
                            long offset) const override;
    std::string WithFirstLetter(std::string_view column, char letter) const override;
    std::string DeleteBehindNewest(const TableName& table, const std::string& condition, long kept) const override;
    /// The procedure tells a failure by its result only, and asks for a transaction that has begun: a driver that
    /// switches autocommit off begins one with the first look at a table.
    std::string HoldName(const std::string& name) const override
    {
        return "DECLARE @held INT; SELECT @held = COUNT(id) FROM " + name + " WHERE id=0; EXEC @held = sp_getapplock " +
               "@Resource='" + name + "', @LockMode='Exclusive', @LockOwner='Transaction'; " +
               "SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END";
    }
    std::string SelectEnd() const override { return ""; }
    std::string InsertEnd() const override { return "; SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR "; }
    std::string UpdateEnd() const override { return " SELECT ErrorCode = @@ERROR "; }
    std::string KeepIdentity(const TableName& table, bool on) const override;

protected:
    /// A bracket opens a set of characters in LIKE here.
    std::string LikeText(std::string_view text) const override;
};

} // namespace vk
