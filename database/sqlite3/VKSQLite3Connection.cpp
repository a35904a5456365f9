#include "VKSQLite3Connection.h"

#include <unistd.h>

#include "VKDBexception.h"
#include "VKSQLite3Dialect.h"

namespace vk {

SQLite3Connection::SQLite3Connection(const std::string& directory, const char* file, const VKSQLite3TableDesc* tables,
                                     int count)
    : m_strDirectory(directory),
      m_database(VKSQLite3Database::CreateTablePath(directory, file), tables, count, false)
{
    RequireTaken(m_database.IsReady());
}

const SqlDialect& SQLite3Connection::Dialect() const { return SQLite3Dialect::Get(); }

/// A handle refuses statements only while it is not ready: another process keeps the file, or it cannot be opened anew.
void SQLite3Connection::RequireTaken(bool taken) const
{
    if (!taken)
        throw VKDBexception(m_database.GetLastErrorCode() ? m_database.GetLastErrorCode() : DbError::General, __FILE__,
                            __LINE__, "The database [" + m_database.GetPath() + "] is not ready.",
                            m_database.GetLastErrorString());
}

/// Runs a statement.
template <class Run> void SQLite3Connection::Watched(Run&& run)
{
    try {
        RequireTaken(run());
    } catch (const VKDBexception&) {
        m_bDoubtful = true;
        throw;
    }
}

/// A handle never heals by itself: one that was opened without the right to write, before the directory was mounted
/// again or a copy was restored in place of the file, stays what it is for good. Before a transaction it is replaced.
void SQLite3Connection::OpenAnewWhenDoubtful()
{
    if (m_iAttached > 0)
        return;
    const bool anotherFile = !m_database.IsOpened() || m_database.IsStale();
    if (!anotherFile && !m_bDoubtful)
        return;
    m_database.RefreshDatabase();
    if (anotherFile)
        m_database.CheckNCreateSchema(); // what stays missing tells with the next statement
    m_bDoubtful = false;
}

std::unique_ptr<VKDBiResultSet> SQLite3Connection::ExecuteSelectQuery(const std::string& query)
{
    auto result = std::make_unique<VKSQLite3ResultSet>();
    Watched([&] { return m_database.ExecuteSelectQuery(query, *result); });
    return result;
}

void SQLite3Connection::ForEachRow(const std::string& query, const SqlRowReader& take)
{
    Watched([&] { return m_database.ForEachRow(query, take); });
}

long SQLite3Connection::ExecuteUpdateQuery(const std::string& query)
{
    VKSQLite3ResultSet result;
    Watched([&] { return m_database.ExecuteUpdateQuery(query, result); });
    return result.GetEffectedRowsCount();
}

unsigned long SQLite3Connection::ExecuteInsertQuery(const std::string& query)
{
    VKSQLite3ResultSet result;
    unsigned long id = 0;
    Watched([&] { return m_database.ExecuteInsertQuery(query, result, id); });
    return id;
}

bool SQLite3Connection::StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs)
{
    OpenAnewWhenDoubtful();
    return m_database.StartTransactionShared(name, retry, count, sleepMs);
}

bool SQLite3Connection::StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs)
{
    OpenAnewWhenDoubtful();
    return m_database.StartTransactionExclusive(name, retry, count, sleepMs);
}

bool SQLite3Connection::EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs)
{
    return m_database.EndTransactionCommit(name, retry, count, sleepMs);
}

bool SQLite3Connection::EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs)
{
    return m_database.EndTransactionRollback(name, retry, count, sleepMs);
}

bool SQLite3Connection::CanAttach(const SqlFile& file)
{
    return access(VKSQLite3Database::CreateTablePath(m_strDirectory, file.file).c_str(), F_OK) == 0;
}

void SQLite3Connection::Attach(const SqlFile& file)
{
    OpenAnewWhenDoubtful(); // before: a new handle has no attachments
    const std::string path = VKSQLite3Database::CreateTablePath(m_strDirectory, file.file);
    if (!CanAttach(file))
        throw VKDBexception(DbError::General, __FILE__, __LINE__, "Unable to open DB [" + path + "]",
                            "there is no such file");
    ExecuteUpdateQuery("ATTACH '" + VKSQLite3Database::PreprocessSqlStringCopy(path, 0) + "' AS " + file.schema + ";");
    ++m_iAttached;
    // It is only read. Without this the end of each transaction would write, sync and delete a file that names both.
    try {
        ExecuteUpdateQuery(std::string("PRAGMA ") + file.schema + ".synchronous=OFF;");
    } catch (...) { // nobody would detach it
        Detach(file);
        throw;
    }
}

void SQLite3Connection::Detach(const SqlFile& file)
{
    --m_iAttached;
    ExecuteUpdateQuery(std::string("DETACH ") + file.schema + ";");
}

} // namespace vk
