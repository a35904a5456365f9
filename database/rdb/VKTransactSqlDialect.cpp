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

std::string TransactSqlDialect::PageOfTable(const std::string& columns, const std::string& from,
                                            const std::string& order, long size, long offset) const
{
    return "SELECT * FROM (SELECT TOP " + std::to_string(offset + size) + " " + columns +
           ", ROW_NUMBER() OVER (ORDER BY " + order + ") as rnum FROM " + from + ") this_table WHERE rnum > " +
           std::to_string(offset) + ";";
}

std::string TransactSqlDialect::WithFirstLetter(std::string_view column, char letter) const
{
    const std::string name(column);
    return Text({&letter, 1}) + "+SUBSTRING(" + name + ", 2, LEN(" + name + ")-1)";
}

std::string TransactSqlDialect::DeleteBehindNewest(const TableName& table, const std::string& condition,
                                                   long kept) const
{
    return "WITH this_table AS (SELECT ROW_NUMBER() OVER (ORDER BY last_modify_time DESC, create_time DESC) AS rnum "
           "FROM " +
           TableOf(table) + " WHERE " + condition + ") DELETE FROM this_table WHERE this_table.rnum > " +
           std::to_string(kept);
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
