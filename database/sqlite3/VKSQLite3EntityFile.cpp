#include "VKSQLite3EntityFile.h"

#include "VKDBsystem.h"

namespace vk {

std::unique_ptr<SQLite3Connection> OpenEntityFile(const VKDBsystem& system, const SQLite3EntityFile& file)
{
    return std::make_unique<SQLite3Connection>(system.GetDataConfigDir(), file.file, file.tables, file.tableCount);
}

void CreateIndexes(SQLite3Connection& connection, const SQLite3Index* indexes, std::size_t count)
{
    InTransaction(connection, TransactionLock::Exclusive, [&] {
        for (const SQLite3Index* index = indexes; index != indexes + count; ++index)
            connection.ExecuteUpdateQuery(std::string("CREATE INDEX IF NOT EXISTS '") + index->name + "' ON '" +
                                          index->table + "' (" +
                                          (index->noCase ? std::string("UPPER(") + index->column + ")"
                                                         : std::string("'") + index->column + "' ASC") +
                                          ");");
    });
}

std::vector<std::string> ColumnNames(SQLite3Connection& connection, const char* table)
{
    const auto rows = connection.ExecuteSelectQuery(std::string("PRAGMA table_info(") + table + ");");
    std::vector<std::string> names;
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        names.push_back((*rows)[row]["name"].GetValueString());
    return names;
}

} // namespace vk
