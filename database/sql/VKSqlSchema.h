#pragma once

#include <string>
#include <vector>

#include "VKSqlRecord.h"

namespace vk {

/// The statements that make a table on a relational server, with its keys and indexes: CREATE TABLE, then CREATE INDEX.
/// The tables that it refers to must stand.
template <class Fields> std::vector<std::string> TableStatements(const SqlDialect& dialect, const Table<Fields>& table)
{
    const std::string name = dialect.TableOf(table.name);
    std::string columns;
    std::string computed;
    std::string keys;
    std::vector<std::string> statements(1);
    ForEachField(table.fields, [&](const auto& field) {
        using Row = std::decay_t<decltype(field)>;
        columns += "    " + ColumnDefinition(dialect, field) + ",\n";
        if constexpr (Row::template has<References>) {
            const References& reference = field.template mark<References>();
            std::string column = field.name;
            if (reference.kind == Reference::RowOrZero) {
                column += "_ref";
                computed += "    " + dialect.NullForZeroColumn(column, field.name) + ",\n";
            }
            keys += "    FOREIGN KEY (" + column + ") REFERENCES " + dialect.TableOf(reference.table) + " (id)" +
                    (reference.kind == Reference::OwningRow ? " ON DELETE CASCADE" : "") + ",\n";
        }
        const auto addIndex = [&](const char* index) {
            statements.push_back(std::string("CREATE INDEX ") + index + " ON " + name + " (" +
                                 dialect.IndexTerm(detail::KindOfField<Row>(), field.name) + ")");
        };
        if constexpr (Row::template has<Indexed>) // a server's serves tests without regard to case as well
            addIndex(field.template mark<Indexed>().name);
        else if constexpr (Row::template has<IndexedNoCase>)
            addIndex(field.template mark<IndexedNoCase>().name);
    });
    std::string body = columns + computed + keys;
    body.erase(body.size() - 2, 1); // the last comma
    statements[0] = "CREATE TABLE " + name + " (\n" + body + ")";
    return statements;
}

} // namespace vk
