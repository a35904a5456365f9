#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "VKSQLite3Connection.h"
#include "VKSQLite3Dialect.h"
#include "VKSQLite3TableDesc.h"
#include "VKSqlStore.h"

class VKDBsystem;

namespace vk {

/// An index: its name, its table and the one column it is over; or over what that is in upper case.
struct SQLite3Index
{
    const char* name;
    const char* table;
    const char* column;
    bool noCase = false;
};

/// The file of an entity family in the data configuration directory.
struct SQLite3EntityFile
{
    const char* file;
    const VKSQLite3TableDesc* tables;
    int tableCount;
};

/// Opens an entity's file with its tables. Throws VKDBexception when it cannot be used.
std::unique_ptr<SQLite3Connection> OpenEntityFile(const VKDBsystem& system, const SQLite3EntityFile& file);

/// Makes the indexes that are missing, all in one transaction.
void CreateIndexes(SQLite3Connection& connection, const SQLite3Index* indexes, std::size_t count);

/// Those of tables, as their fields are marked.
template <class... Fields> void CreateIndexes(SQLite3Connection& connection, const Table<Fields>&... tables)
{
    std::vector<SQLite3Index> indexes;
    const auto gather = [&](const auto& table) {
        ForEachField(table.fields, [&](const auto& field) {
            if constexpr (std::decay_t<decltype(field)>::template has<Indexed>)
                indexes.push_back({field.template mark<Indexed>().name, table.name.file, field.name});
            if constexpr (std::decay_t<decltype(field)>::template has<IndexedNoCase>)
                indexes.push_back({field.template mark<IndexedNoCase>().name, table.name.file, field.name, true});
        });
    };
    (gather(tables), ...);
    CreateIndexes(connection, indexes.data(), indexes.size());
}

/// The names of a table's columns; empty when there is no such table.
std::vector<std::string> ColumnNames(SQLite3Connection& connection, const char* table);

/// Adds the columns of a table that a file made by an older version lacks; old rows get what a new row without the value
/// has, 0 or an empty text, so that conditions find them. `unreadable` is what the error says when the table cannot be
/// read.
template <class Fields>
void AddMissingColumns(SQLite3Connection& connection, const Table<Fields>& table, const char* unreadable)
{
    InTransaction(connection, TransactionLock::Exclusive, [&] {
        const std::vector<std::string> present = ColumnNames(connection, table.name.file);
        if (present.empty())
            throw VKDBexception(DbError::General, __FILE__, __LINE__, unreadable);
        std::string ofOldRows;
        ForEachField(table.fields, [&](const auto& field) {
            using Row = std::decay_t<decltype(field)>;
            if (std::find(present.begin(), present.end(), field.name) != present.end())
                return;
            constexpr ColumnKind kind = detail::KindOfField<Row>();
            const std::string value = kind == ColumnKind::Varchar || kind == ColumnKind::Text ? "''" : "0";
            constexpr bool hasDefault = Row::template has<DefaultZero> || Row::template has<SqlDefault>;
            constexpr bool needsDefault = Row::template has<NotNull> && !hasDefault;
            connection.ExecuteUpdateQuery(std::string("ALTER TABLE ") + table.name.file + " ADD " +
                                          ColumnDefinition(connection.Dialect(), field) +
                                          (needsDefault ? " DEFAULT " + value : "") + ";");
            if (!hasDefault && !needsDefault)
                detail::AddWithComma(ofOldRows, std::string(field.name) + "=" + value);
        });
        if (!ofOldRows.empty())
            connection.ExecuteUpdateQuery(std::string("UPDATE ") + table.name.file + " SET " + ofOldRows + ";");
    });
}

} // namespace vk
