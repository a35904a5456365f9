#pragma once

#include "VKSqlDialect.h"
#include "VKSqlRecord.h"

namespace vk {

/// The SQL of the file database.
class SQLite3Dialect final : public SqlDialect
{
public:
    /// The one object; it has no state.
    static const SQLite3Dialect& Get();

    std::string TableOf(const TableName& table) const override { return table.file; }
    std::string ColumnType(ColumnKind kind, int width) const override;
    std::string IfNull() const override { return "IFNULL"; }
    std::string ConditionColumn(const std::string& condition) const override { return condition; }
    std::string TableProbe(const TableName& table) const override
    {
        return std::string("PRAGMA table_info(") + table.file + ")";
    }
    std::string Page(const std::string& query, const std::string& order, long size, long offset) const override;
    /// A row takes the id it is given at any time.
    std::string KeepIdentity(const TableName&, bool) const override { return ""; }
};

/// The column text of a table in the file database, made once; lives as long as the program.
template <const auto& kTable>
const char* SQLite3Columns()
{
    static const std::string text = ColumnsText(SQLite3Dialect::Get(), kTable.fields);
    return text.c_str();
}

} // namespace vk
