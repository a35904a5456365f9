#include "VKRDBConnection.h"

#include "VKDBexception.h"
#include "VKODBCResultSet.h"
#include "VKPostgreSqlDialect.h"
#include "VKTransactSqlDialect.h"

namespace vk {

namespace {

const SqlDialect& DialectOf(const std::string& server)
{
    if (server == "PostgreSQL")
        return PostgreSqlDialect::Get();
    return TransactSqlDialect::Get();
}

} // namespace

RdbConnection::RdbConnection(std::shared_ptr<VKRDBiDatabase> database)
    : m_database(std::move(database)), m_dialect(DialectOf(m_database->GetServerName()))
{
}

std::unique_ptr<VKDBiResultSet> RdbConnection::ExecuteSelectQuery(const std::string& query)
{
    auto result = std::make_unique<VKODBCResultSet>();
    m_database->ExecuteSelectQuery(query, *result);
    return result;
}

long RdbConnection::ExecuteUpdateQuery(const std::string& query)
{
    VKODBCResultSet result;
    m_database->ExecuteUpdateQuery(query, result);
    return result.GetEffectedRowsCount();
}

unsigned long RdbConnection::ExecuteInsertQuery(const std::string& query)
{
    VKODBCResultSet result;
    unsigned long id = 0;
    m_database->ExecuteInsertQuery(query, result, id);
    return id;
}

bool RdbConnection::StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs)
{
    return m_database->StartTransactionShared(name, retry, count, sleepMs);
}

bool RdbConnection::StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs)
{
    return m_database->StartTransactionExclusive(name, retry, count, sleepMs);
}

bool RdbConnection::EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs)
{
    return m_database->EndTransactionCommit(name, retry, count, sleepMs);
}

bool RdbConnection::EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs)
{
    return m_database->EndTransactionRollback(name, retry, count, sleepMs);
}

std::shared_ptr<VKRDBiDatabase> RequireConnection(VKDBsystem& system)
{
    auto database = system.GetDatabaseInstance();
    if (!database)
        throw VKDBexception(DbError::General, __FILE__, __LINE__, "The relational database is not open.");
    database->RequireOpen(); // an object on a dead connection could not even tell which dialect it speaks
    return database;
}

std::unique_ptr<SqlStore> OpenServerStore(VKDBsystem& system, std::size_t statementLimit)
{
    return std::make_unique<SqlStore>(std::make_unique<RdbConnection>(RequireConnection(system)), statementLimit);
}

} // namespace vk
