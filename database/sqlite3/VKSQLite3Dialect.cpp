#include "VKSQLite3Dialect.h"

namespace vk {

const SQLite3Dialect& SQLite3Dialect::Get()
{
    static const SQLite3Dialect dialect;
    return dialect;
}

std::string SQLite3Dialect::ColumnType(ColumnKind kind, int width) const
{
    switch (kind) {
    case ColumnKind::Id: return "INTEGER PRIMARY KEY AUTOINCREMENT";
    case ColumnKind::Integer: return "INTEGER";
    case ColumnKind::Real: return "REAL";
    case ColumnKind::Boolean: return "BOOLEAN";
    case ColumnKind::Varchar: return "VARCHAR(" + std::to_string(width) + ")";
    case ColumnKind::Text: return "TEXT";
    }
    return "";
}

std::string SQLite3Dialect::Page(const std::string& query, const std::string& order, long size, long offset) const
{
    return query + " ORDER BY " + order + " LIMIT " + std::to_string(size) + " OFFSET " + std::to_string(offset);
}

} // namespace vk
