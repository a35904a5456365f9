#pragma once

#include <sql.h>
#include <sqlext.h>

#include <memory>

#include "VKODBCResultSet.h"
#include "VKODBCstatement.h"
#include "VKRDBiDatabase.h"

/// A connection through the ODBC driver manager. The password is kept for ReOpen and told nowhere.
class VKODBCdatabase final : public VKRDBiDatabase
{
public:
    VKODBCdatabase();
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
    bool ExecuteQuery(const std::string& text, VKRDBiDataSet*& dataSet) override;
    bool ExecuteQuerySet(const std::string& text, VKRDBiDataSet*& dataSet, int first, int count) override;
    bool ExecuteQueryMultiSet(const std::string& text, VKRDBiDataSet*& dataSet, bool& more, int first,
                              int count) override;
    bool getRSData(VKRDBiDataSet*& dataSet, bool& more) override;
    bool ExecuteCommand(const std::string& text) override;
    bool ExecuteQuery(VKRDBiDataSet*& dataSet, const char* format, ...) override __attribute__((format(printf, 3, 4)));
    bool ExecuteCommandFormat(const char* format, ...) override __attribute__((format(printf, 2, 3)));
    bool BeginTransaction() override;
    bool CommitTransaction() override { return EndTransaction(SQL_COMMIT); }
    bool RollbackTransaction() override { return EndTransaction(SQL_ROLLBACK); }
    long GetNoRowsAffected() override { return m_lRows; }
    unsigned long GetLastRowInsertID(DatabaseType type, const std::string& sequenceName) override;
    bool ExecuteSelectQuery(const std::string& text, VKODBCResultSet& result) override;
    bool ExecuteUpdateQuery(const std::string& text, VKODBCResultSet& result) override;
    bool ExecuteInsertQuery(const std::string& text, VKODBCResultSet& result, unsigned long& id) override;
    std::string GetServerName() override;
    std::string GetSourceName() const override { return m_bDSN ? m_strConnect : "ODBC"; }
    void RequireOpen() const override;

    /// Quotes doubled, then cut to maxLen when that is not 0. A cut may leave a lone quote, so no statement is made with
    /// it; the dialect conditions what enters a statement.
    static std::string PreprocessSqlStringCopy(const std::string& text, std::size_t maxLen);

    /// The text as it is run on an Oracle server: without cursor parameters, the first of which names the statement's
    /// cursor.
    static std::string oracleQueryFixForUnix(const std::string& text, SQLHSTMT statement);

    /// What the driver says of a call on the statement that gave `result`, one record a line; empty when it succeeded.
    static void GetSQLError(SQLRETURN result, SQLHSTMT statement, std::string& text);

private:
    bool EndTransaction(SQLSMALLINT how);
    template <class Body> auto Run(const std::string& text, Body&& body);
    vk::OdbcResult RunToLastResult(const std::string& text, const vk::OdbcPage& page = {});
    std::string GetInfo(SQLUSMALLINT what) const;
    void SetAutoCommit(bool on);
    void Free();
    [[noreturn]] void ThrowConnectionError(const char* what) const;

    SQLHENV m_hEnvironment = SQL_NULL_HENV;
    SQLHDBC m_hConnection = SQL_NULL_HDBC;
    std::unique_ptr<vk::OdbcStatement> m_pending; ///< stands on the result that getRSData gives next
    vk::OdbcPage m_pendingPage;
    long m_lRows = 0;
    std::string m_strConnect;
    std::string m_strUser;
    std::string m_strPassword;
    bool m_bDSN = false;
    bool m_bDriverPrints = true;
    std::string m_strWhyClosed; ///< what the driver said when it could not be opened anew
};
