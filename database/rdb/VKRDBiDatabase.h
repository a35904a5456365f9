#pragma once

#include <string>

class VKODBCResultSet;
class VKsysEventLogInterface;

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
    virtual bool ExecuteCommand(const std::string& text);
    virtual bool BeginTransaction() { return false; }
    virtual bool CommitTransaction() { return false; }
    virtual bool RollbackTransaction() { return false; }
    /// How many rows the last statement touched.
    virtual long GetNoRowsAffected() { return 0; }
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
};
