#pragma once

#include <memory>
#include <string>

#include "VKDBiResultSet.h"
#include "VKSqlDialect.h"
#include "VKSqlRow.h"

namespace vk {

/// Another entity's tables: in the file database a file that is attached under a schema name.
struct SqlFile
{
    const char* schema;
    const char* file;
};

/// A connection that runs statements, the same for every backend. Serves one thread at a time. A statement that fails,
/// or that the backend refuses to take, throws VKDBexception.
class SqlConnection
{
public:
    virtual ~SqlConnection() = default;

    virtual const SqlDialect& Dialect() const = 0;

    /// What errors name: the file or the data source.
    virtual std::string GetPath() const = 0;

    virtual std::unique_ptr<VKDBiResultSet> ExecuteSelectQuery(const std::string& query) = 0;
    /// Hands each row of a SELECT on as it is read, where the backend can: thousands of them are never held twice.
    virtual void ForEachRow(const std::string& query, const SqlRowReader& take)
    {
        const auto rows = ExecuteSelectQuery(query);
        for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
            take(SqlResultRow((*rows)[row]));
    }
    /// Gives back how many rows were touched.
    virtual long ExecuteUpdateQuery(const std::string& query) = 0;
    /// Gives back the id of the new row.
    virtual unsigned long ExecuteInsertQuery(const std::string& query) = 0;

    /// Why a transaction was last refused, to stand behind a colon.
    virtual std::string WhyRefused() const { return "it is in use"; }
    virtual bool StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs) = 0;
    virtual bool StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs) = 0;
    virtual bool EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs) = 0;
    virtual bool EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs) = 0;

    /// Makes the tables of another entity reachable for reading, outside any transaction; where all tables stand
    /// together there is nothing to do.
    virtual bool CanAttach(const SqlFile&) { return true; }
    virtual void Attach(const SqlFile&) {}
    virtual void Detach(const SqlFile&) {}
};

/// Another entity's tables, reachable for reading as long as the object lives. It must outlive the transaction that uses them.
class SqlAttachment
{
public:
    SqlAttachment(SqlConnection& connection, const SqlFile& file) : m_connection(connection), m_file(file)
    {
        m_connection.Attach(m_file);
    }
    ~SqlAttachment()
    {
        try {
            m_connection.Detach(m_file);
        } catch (...) { // a handle that was opened anew in between holds no attachment any more
        }
    }
    SqlAttachment(const SqlAttachment&) = delete;
    SqlAttachment& operator=(const SqlAttachment&) = delete;

private:
    SqlConnection& m_connection;
    SqlFile m_file;
};

} // namespace vk
