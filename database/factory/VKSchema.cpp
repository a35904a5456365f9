#include "VKSchema.h"

#include "VKPostgreSqlDialect.h"
#include "VKQueueTables.h"
#include "VKSqlSchema.h"
#include "VKTableCatalogue.h"
#include "VKTransactSqlDialect.h"

namespace vk {

const SqlDialect* RelationalDialect(std::string_view name)
{
    if (name == "tsql")
        return &TransactSqlDialect::Get();
    return name == "postgresql" ? &PostgreSqlDialect::Get() : nullptr;
}

std::vector<std::string> SchemaStatements(const SqlDialect& dialect)
{
    std::vector<std::string> statements;
    ForEachFamily([&](const auto& family) {
        ForEachTable(family, [&](const auto& table) {
            for (std::string& statement : TableStatements(dialect, table))
                statements.push_back(std::move(statement));
        });
    });
    for (const QueueServerTable& queue : kQueueServerTables) {
        const std::string name = dialect.TableOf(queue.name);
        for (std::string& statement : TableStatements(dialect, Table{queue.name, kQueueServerFields}))
            statements.push_back(std::move(statement));
        for (const QueueIndex& index : kQueueServerIndexes)
            statements.push_back("CREATE INDEX " + name + "_" + index.name + " ON " + name + " (" + index.columns +
                                 ")");
    }
    return statements;
}

} // namespace vk
