#pragma once

#include <memory>
#include <string>

#include "VKSQLite3Database.h"
#include "VKSqlConnection.h"

namespace vk {

/// One file of the file database as a connection for the entities. Other entities' files are attached from the same
/// directory.
class SQLite3Connection final : public SqlConnection
{
public:
    /// Opens the file in the directory and makes the missing tables. Throws VKDBexception when it is not usable then.
    SQLite3Connection(const std::string& directory, const char* file, const VKSQLite3TableDesc* tables, int count);

    VKSQLite3Database& Database() { return m_database; }

    const SqlDialect& Dialect() const override;
    std::string GetPath() const override { return m_database.GetPath(); }
    std::unique_ptr<VKDBiResultSet> ExecuteSelectQuery(const std::string& query) override;
    void ForEachRow(const std::string& query, const SqlRowReader& take) override;
    long ExecuteUpdateQuery(const std::string& query) override;
    unsigned long ExecuteInsertQuery(const std::string& query) override;
    std::string WhyRefused() const override { return m_database.WhyRefused(); }
    bool StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs) override;
    bool StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs) override;
    bool EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs) override;
    bool EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs) override;
    /// Whether the file is there.
    bool CanAttach(const SqlFile& file) override;
    /// Throws unless the file is there: attaching would leave an empty one behind.
    void Attach(const SqlFile& file) override;
    void Detach(const SqlFile& file) override;

private:
    void RequireTaken(bool taken) const;
    template <class Run> void Watched(Run&& run);
    void OpenAnewWhenDoubtful();

    std::string m_strDirectory;
    VKSQLite3Database m_database;
    int m_iAttached = 0;      ///< files that a new handle would not have
    bool m_bDoubtful = false; ///< a statement failed: the handle may be at fault, not only the file
};

} // namespace vk
