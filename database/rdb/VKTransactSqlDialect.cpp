#include "VKTransactSqlDialect.h"

namespace vk {

const TransactSqlDialect& TransactSqlDialect::Get()
{
    static const TransactSqlDialect dialect;
    return dialect;
}

std::string TransactSqlDialect::ColumnType(ColumnKind kind, int width) const
{
    switch (kind) {
    case ColumnKind::Id: return "BIGINT IDENTITY(1,1) PRIMARY KEY";
    case ColumnKind::Integer: return "BIGINT";
    case ColumnKind::Real: return "FLOAT";
    case ColumnKind::Boolean: return "BIT";
    case ColumnKind::Varchar: return "VARCHAR(" + std::to_string(width) + ")";
    case ColumnKind::Text: return "VARCHAR(MAX)";
    }
    return "";
}

std::string TransactSqlDialect::Page(const std::string& query, const std::string& order, long size, long offset) const
{
    return "SELECT * FROM (SELECT TOP " + std::to_string(offset + size) + " *, ROW_NUMBER() over ( ORDER BY " + order +
           ") as rnum FROM (" + query + ") this_table_1 ) this_table_2 WHERE rnum > " + std::to_string(offset);
}

std::string TransactSqlDialect::KeepIdentity(const TableName& table, bool on) const
{
    return std::string("SET IDENTITY_INSERT ") + table.relational + (on ? " ON" : " OFF");
}

std::string TransactSqlDialect::LikeText(std::string_view text) const
{
    std::string escaped;
    for (const char c : SqlDialect::LikeText(text))
        escaped.append(c == '[' ? "\\" : "").push_back(c);
    return escaped;
}

} // namespace vk
