#pragma once

#include <sql.h>
#include <sqlext.h>

#include "VKODBCResultSet.h"
#include "VKRDBiDatabase.h"

/// A connection through the ODBC driver manager. The password is kept for ReOpen and told nowhere.
class VKODBCdatabase final : public VKRDBiDatabase
{
public:
    VKODBCdatabase() = default;
    ~VKODBCdatabase() override;
    VKODBCdatabase(const VKODBCdatabase&) = delete;
    VKODBCdatabase& operator=(const VKODBCdatabase&) = delete;

    bool Open(const std::string& connect, const std::string& user, const std::string& password, bool isDSN,
              bool flag) override;
    bool ReOpen() override;
    bool Close() override;
    bool IsOpen() override { return m_hConnection != SQL_NULL_HDBC; }
    bool TestConnection() override;
    bool TestNReconnect() override;
    bool ExecuteCommand(const std::string& text) override;
    bool BeginTransaction() override;
    bool CommitTransaction() override { return EndTransaction(SQL_COMMIT); }
    bool RollbackTransaction() override { return EndTransaction(SQL_ROLLBACK); }
    long GetNoRowsAffected() override { return m_lRows; }
    bool ExecuteSelectQuery(const std::string& text, VKODBCResultSet& result) override;
    bool ExecuteUpdateQuery(const std::string& text, VKODBCResultSet& result) override;
    bool ExecuteInsertQuery(const std::string& text, VKODBCResultSet& result, unsigned long& id) override;
    std::string GetServerName() override;
    std::string GetSourceName() const override { return m_bDSN ? m_strConnect : "ODBC"; }

    /// Quotes doubled, then cut to maxLen when that is not 0. A cut may leave a lone quote, so no statement is made with
    /// it; the dialect conditions what enters a statement.
    static std::string PreprocessSqlStringCopy(const std::string& text, std::size_t maxLen);

private:
    bool EndTransaction(SQLSMALLINT how);
    void Run(const std::string& text, VKODBCResultSet& result);
    void RequireOpen() const;
    void SetAutoCommit(bool on);
    void Free();
    [[noreturn]] void ThrowConnectionError(const char* what) const;

    SQLHENV m_hEnvironment = SQL_NULL_HENV;
    SQLHDBC m_hConnection = SQL_NULL_HDBC;
    long m_lRows = 0;
    std::string m_strConnect;
    std::string m_strUser;
    std::string m_strPassword;
    bool m_bDSN = false;
};
