#pragma once

#include <memory>

#include "VKDBsystem.h"
#include "VKRDBiDatabase.h"
#include "VKSqlStore.h"

namespace vk {

/// A connection to a relational server for the entities. Its dialect is the one of the server that the driver names.
class RdbConnection final : public SqlConnection
{
public:
    /// An open connection; nobody else uses it at the same time.
    explicit RdbConnection(std::shared_ptr<VKRDBiDatabase> database);

    const SqlDialect& Dialect() const override { return m_dialect; }
    std::string GetPath() const override { return m_database->GetSourceName(); }
    std::unique_ptr<VKDBiResultSet> ExecuteSelectQuery(const std::string& query) override;
    long ExecuteUpdateQuery(const std::string& query) override;
    unsigned long ExecuteInsertQuery(const std::string& query) override;
    bool StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs) override;
    bool StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs) override;
    bool EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs) override;
    bool EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs) override;

private:
    std::shared_ptr<VKRDBiDatabase> m_database;
    const SqlDialect& m_dialect;
};

/// The connection that the next entity of the system works on. Throws VKDBexception when there is none.
std::shared_ptr<VKRDBiDatabase> RequireConnection(VKDBsystem& system);

/// That connection with its dialect, for an entity's operations; its statements have at most so many characters.
std::unique_ptr<SqlStore> OpenServerStore(VKDBsystem& system, std::size_t statementLimit);

} // namespace vk
