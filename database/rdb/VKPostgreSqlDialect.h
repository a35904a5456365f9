#pragma once

#include "VKSqlDialect.h"

namespace vk {

/// The SQL of PostgreSQL.
class PostgreSqlDialect final : public SqlDialect
{
public:
    /// The one object; it has no state.
    static const PostgreSqlDialect& Get();

    std::string TableOf(const TableName& table) const override { return table.relational; }
    /// The server keeps characters, not bytes.
    void RequireStorable(std::string_view text, const char* field) const override;
    std::string ColumnType(ColumnKind kind, int width) const override;
    /// A query of its own around it: DISTINCT takes no other terms than its columns.
    std::string Sorted(const std::string& query, const std::string& order) const override
    {
        return SqlDialect::Sorted("SELECT * FROM (" + query + ") this_table_1", order);
    }
    std::string Page(const std::string& query, const std::string& order, long size, long offset) const override;
    /// Unlike a lock on the table it does not get in the way of the server's own cleaning.
    std::string HoldName(const std::string& name) const override
    {
        return "SELECT pg_advisory_xact_lock(hashtext('" + name + "'))";
    }
    std::string SelectEnd() const override { return ""; }
    std::string InsertEnd() const override { return " RETURNING id"; }
    std::string UpdateEnd() const override { return ""; }
    std::string NullForZeroColumn(std::string_view name, std::string_view of) const override;
    std::string IndexTerm(ColumnKind kind, std::string_view column) const override;
    /// A row takes the id it is given at any time; what counts the ids has to be told afterwards.
    std::string KeepIdentity(const TableName& table, bool on) const override;
};

} // namespace vk
