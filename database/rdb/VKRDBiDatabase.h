#pragma once

#include <string>

class VKODBCResultSet;
class VKRDBiDataSet;
class VKsysEventLogInterface;

/// Whose way of telling the last new id is meant.
enum DatabaseType { DatabaseTypeSqlServer = 0, DatabaseTypeOracle = 1, DatabaseTypePostgreSql = 2 };

/// A connection to a relational server. This class is the connection that does nothing: not open, and every operation
/// false. GetInstance gives a real one. Serves one thread at a time; the operations of a real one throw VKDBexception
/// with the driver's native code. A statement on a lost connection throws; only TestNReconnect connects anew.
class VKRDBiDatabase
{
public:
    /// A new connection, not open, the caller's; type 0 for ODBC, any other for the one that does nothing.
    static VKRDBiDatabase* GetInstance(int type, VKsysEventLogInterface* eventLog);

    virtual ~VKRDBiDatabase();

    /// With isDSN the first text names a data source, else it is a whole connect string. The values are kept for ReOpen.
    virtual bool Open(const std::string& connect, const std::string& user, const std::string& password, bool isDSN,
                      bool flag);
    virtual bool ReOpen() { return false; }
    virtual bool Close() { return false; }
    virtual bool IsOpen() { return false; }
    virtual bool TestConnection() { return false; }
    /// True when the connection works, or works again after opening it anew; never throws.
    virtual bool TestNReconnect() { return false; }

    // Results as tables. Each is a new one and the caller's; without one the pointer becomes null. A text with a format is
    // as long as its values make it.

    /// The last result that has columns.
    virtual bool ExecuteQuery(const std::string& text, VKRDBiDataSet*& dataSet);
    /// Of that result `count` rows from row `first` on; a count of 0 or less means all that follow.
    virtual bool ExecuteQuerySet(const std::string& text, VKRDBiDataSet*& dataSet, int first, int count);
    /// The first result that has columns, cut likewise; the others follow with getRSData, the same rows of each.
    /// `more` says whether there is one. Whatever runs next on the connection drops what was not fetched.
    virtual bool ExecuteQueryMultiSet(const std::string& text, VKRDBiDataSet*& dataSet, bool& more, int first,
                                      int count);
    /// The next result; false when there is none.
    virtual bool getRSData(VKRDBiDataSet*& dataSet, bool& more);
    virtual bool ExecuteCommand(const std::string& text);
    virtual bool ExecuteQuery(VKRDBiDataSet*& dataSet, const char* format, ...) __attribute__((format(printf, 3, 4)));
    virtual bool ExecuteCommandFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));
    virtual bool BeginTransaction() { return false; }
    virtual bool CommitTransaction() { return false; }
    virtual bool RollbackTransaction() { return false; }
    /// How many rows the last statement touched.
    virtual long GetNoRowsAffected() { return 0; }
    /// The id of the row that this connection added last. A sequence is needed but on T-SQL servers.
    virtual unsigned long GetLastRowInsertID(DatabaseType type, const std::string& sequenceName);
    virtual bool ExecuteSelectQuery(const std::string& text, VKODBCResultSet& result);
    virtual bool ExecuteUpdateQuery(const std::string& text, VKODBCResultSet& result);
    /// The id is the first column of the last result.
    virtual bool ExecuteInsertQuery(const std::string& text, VKODBCResultSet& result, unsigned long& id);

    // Name, retry, count and sleep are for the file database only.
    virtual bool StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs);
    virtual bool StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs);
    virtual bool EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs);
    virtual bool EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs);
    virtual bool EndTransactionRollbackNoExcep(const std::string& name, bool retry, int count, long sleepMs);

    /// What the driver says it is connected to: "PostgreSQL"; empty when it is not open.
    virtual std::string GetServerName() { return ""; }
    /// What errors name.
    virtual std::string GetSourceName() const { return ""; }
    /// Throws, with the reason when the last opening failed, unless it is open.
    virtual void RequireOpen() const {}
};
