#include "VKSQLite3Database.h"

#include <sqlite3.h>

#include "VKDBexception.h"
#include "VKSQLite3Retry.h"

/// \file
/// Transactions of VKSQLite3Database: statements around which the retry loop runs.

bool VKSQLite3Database::StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs)
{
    // Takes the write reservation at once although it is named Shared; this is meant.
    return StartTransaction(SqliteTransactionShared, "BEGIN IMMEDIATE TRANSACTION ", name, retry, count, sleepMs);
}

bool VKSQLite3Database::StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs)
{
    return StartTransaction(SqliteTransactionExclusive, "BEGIN EXCLUSIVE TRANSACTION ", name, retry, count, sleepMs);
}

bool VKSQLite3Database::EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs)
{
    return EndTransaction(SqliteTransactionCommit, "COMMIT TRANSACTION ", name, retry, count, sleepMs);
}

bool VKSQLite3Database::EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs)
{
    return EndTransaction(SqliteTransactionRollback, "ROLLBACK TRANSACTION ", name, retry, count, sleepMs);
}

bool VKSQLite3Database::StartTransaction(int type, const char* statement, const std::string& name, bool retry,
                                         int count, long sleepMs)
{
    if (!m_bOpened || m_bTransactionInProgress)
        return false;
    Settle();
    m_bTransactionInProgress = AttemptTransaction(type, statement + name + ";", retry, count, sleepMs);
    return m_bTransactionInProgress;
}

bool VKSQLite3Database::EndTransaction(int type, const char* statement, const std::string& name, bool retry, int count,
                                       long sleepMs)
{
    if (!m_bOpened || !m_bTransactionInProgress)
        return false;
    if (!AttemptTransaction(type, statement + name + ";", retry, count, sleepMs))
        return false;
    m_bTransactionInProgress = false;
    return true;
}

bool VKSQLite3Database::AttemptTransaction(int type, const std::string& query, bool retry, int count, long sleepMs)
{
    const bool starts = type == SqliteTransactionShared || type == SqliteTransactionExclusive;
    const bool known = type >= SqliteTransactionShared && type <= SqliteTransactionRollback;
    VKSQLite3ResultSet result;
    VKDBexception last(SQLITE_OK, "");
    for (int left = count < 1 ? 1 : count; left > 0; --left) {
        try {
            if (ExecuteUpdateQuery(query, result))
                return true;
            RefreshDatabase();
            return false;
        } catch (const VKDBexception& failure) {
            last = failure;
            // A commit that a full or failing disk has ended is rolled back already: tried again it would only say so.
            const bool over = type == SqliteTransactionCommit && IsAutoCommitEnabled();
            if (starts && failure.GetErrorCode() == SQLITE_READONLY) {
                RefreshDatabase();
            } else if (known && (over || !vk::IsRetryable(failure.GetErrorCode()))) {
                RefreshDatabase();
                throw;
            }
        }
        if (!retry)
            break;
        vk::RetryPause(static_cast<unsigned int>(sleepMs * 1000));
    }
    RefreshDatabase();
    StoreError(last); // why, for whoever tells it
    return false;
}
