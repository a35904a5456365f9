#pragma once

#include <map>
#include <string>
#include <vector>

#include "VKSQLite3ResultSet.h"
#include "VKSQLite3TableDesc.h"
#include "VKSqlRow.h"

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;
class VKDBexception;
class VKsysEventLogInterface;

/// What a transaction statement does.
enum SqliteTransactionType {
    SqliteTransactionShared = 0,
    SqliteTransactionExclusive = 1,
    SqliteTransactionCommit = 2,
    SqliteTransactionRollback = 3
};

/// One SQLite handle on one file: opens it with retries, creates missing tables, runs statements, and runs transactions
/// with retries that let several processes share the file. closed -> opened -> ready; a handle that is opened but not
/// ready refuses statements by returning false.
/// One object serves one thread at a time. All failures are VKDBexception with the SQLite result code (extended), the
/// statement in the message and SQLite's text as system message.
class VKSQLite3Database
{
public:
    /// Opens the file, creating it when it is missing. Unless skipSchemaCheck is set, IsReady() tells whether the
    /// schema could be checked. Throws when the file cannot be opened, when its directory is missing, when it is no
    /// database, and when it is damaged.
    VKSQLite3Database(const std::string& path, bool skipSchemaCheck);
    VKSQLite3Database(const std::string& path, const std::map<std::string, std::string>& schema, bool skipSchemaCheck);
    VKSQLite3Database(const std::string& path, const VKSQLite3TableDesc* tables, int count, bool skipSchemaCheck);
    ~VKSQLite3Database();

    VKSQLite3Database(const VKSQLite3Database&) = delete;
    VKSQLite3Database& operator=(const VKSQLite3Database&) = delete;

    /// Opens the handle; true at once when it is open. Up to 50 attempts 500 ms apart while the code is retryable.
    bool OpenDatabase(bool markReady);

    /// Closes the handle, in the same loop. An open transaction is rolled back by SQLite.
    bool CloseDatabase();

    /// Replaces the handle by a new one, so that nothing of an unclear state outlives it. The schema is not checked.
    void RefreshDatabase();

    /// Sets the busy time limit (60 s) and checks the schema; false when not open.
    bool InitializeDatabase(bool skipSchemaCheck);

    bool IsOpened() const { return m_bOpened; }
    bool IsReady() const { return m_bReady; }
    bool IsTransactionInProgress() const { return m_bTransactionInProgress; }
    int GetLastErrorCode() const { return m_iLastErrorCode; }
    const std::string& GetLastErrorString() const { return m_strLastError; }
    const std::string& GetPath() const { return m_strPath; }
    /// Whether a new handle may do more: another file than the opened one has its path by now, or none, or it was opened
    /// without the right to write.
    bool IsStale() const;
    /// Why a transaction was last refused, to stand behind a colon.
    std::string WhyRefused() const;
    /// Kept, not used: no statement is logged here. The logger stays the caller's.
    void SetTraceLogger(VKsysEventLogInterface* logger) { m_pTraceLogger = logger; }

    /// False, with nothing changed, when a name or a column text is missing.
    bool SetSchema(const VKSQLite3TableDesc* tables, int count);
    bool SetSchema(const std::map<std::string, std::string>& schema);
    void ClearSchema() { m_mapSchema.clear(); }

    /// Creates the tables of the schema that are missing, all in one exclusive transaction.
    bool CheckNCreateSchema();
    bool CreateTable(const std::string& name, const std::string& columns);
    bool IsTableExists(const std::string& name);

    /// The directory with "/" behind it unless it ends in "/" or "\", then the file; just the file for an empty one.
    static std::string CreateTablePath(const std::string& directory, const std::string& file);

    /// Run one text. False when not ready; every other failure throws.
    bool ExecuteSelectQuery(const std::string& query, VKSQLite3ResultSet& result);
    /// The same, each row as SQLite steps to it; nothing of the statement outlives the call. What `take` throws ends it.
    bool ForEachRow(const std::string& query, const vk::SqlRowReader& take);
    bool ExecuteUpdateQuery(const std::string& query, VKSQLite3ResultSet& result);
    /// id becomes the row id of the new row, 0 when SQLite gives a negative one.
    bool ExecuteInsertQuery(const std::string& query, VKSQLite3ResultSet& result, unsigned long& id);

    /// A whole query in a transaction of its own; false when the transaction could not be started.
    bool SelectQueryTransaction(const std::string& query, VKSQLite3ResultSet& result);
    bool InsertQueryTransaction(const std::string& query, VKSQLite3ResultSet& result, unsigned long& id);

    /// Start and end a transaction. A busy file is tried again up to count times, sleepMs milliseconds apart, when
    /// retry is set. False: not open, not (or already) in a transaction, or the attempts are used up; the handle is
    /// fresh then.
    bool StartTransactionShared(const std::string& name, bool retry, int count, long sleepMs);
    bool StartTransactionExclusive(const std::string& name, bool retry, int count, long sleepMs);
    bool EndTransactionCommit(const std::string& name, bool retry, int count, long sleepMs);
    bool EndTransactionRollback(const std::string& name, bool retry, int count, long sleepMs);

    bool DisableAutoCommit();
    bool EnableAutoCommit();
    bool IsAutoCommitEnabled() const;

    /// "PRAGMA synchronous": 0 off, 1 normal, 2 full. Stays when the handle is replaced.
    bool SetSynchronousMode(int mode);
    /// "PRAGMA journal_mode". Stays as well.
    bool SetJournalMode(const std::string& mode);

    using ScalarFunction = void (*)(sqlite3_context*, int, sqlite3_value**);
    /// Makes a function callable from SQL; refuses an empty name and a null function. Lost with RefreshDatabase.
    bool DefineScalarSQLFunction(const std::string& name, ScalarFunction function, int argCount, int textEncoding);

    /// Replaces every single quote by a double quote, in place.
    static void PreprocessSqlString(char* text);
    /// Doubles every single quote.
    static void PreprocessSqlString(std::string& text);
    /// Doubles quotes, then cuts to maxLen unless that is 0; the cut may fall between the two quotes of a pair.
    static std::string PreprocessSqlStringCopy(const std::string& text, int maxLen);
    /// The same, with a backslash put before every "_" and "\" first, for LIKE with ESCAPE '\'. "%" stays a wild card.
    static std::string PreprocessSqlLikeStringCopy(const std::string& text, int maxLen);
    /// printf into a text of at most maxLen characters; what is beyond is cut.
    static std::string PrepareSqlQuery(int maxLen, const char* format, ...) __attribute__((format(printf, 2, 3)));

private:
    static int ExecuteUpdateQueryCallback(void*, int, char**, char**);

    void Construct(bool skipSchemaCheck);
    void RefuseMissingDirectory() const;
    void RefuseDamagedFile();
    bool RunSchemaCheck();
    bool AttemptTransaction(int type, const std::string& query, bool retry, int count, long sleepMs);
    bool StartTransaction(int type, const char* statement, const std::string& name, bool retry, int count,
                          long sleepMs);
    bool EndTransaction(int type, const char* statement, const std::string& name, bool retry, int count, long sleepMs);
    bool RunPlain(const std::string& statement);
    bool Set(const std::string& setting);
    void Settle();
    void ClearError();
    int StoreError(int code);
    void StoreError(const VKDBexception& failure);
    int StoreError(int code, char* sqliteMessage);

    std::string m_strPath;
    sqlite3* m_pHandle = nullptr; ///< owned; open and close go through OpenDatabase and CloseDatabase only
    std::vector<std::string> m_settings; ///< statements that each handle begins with
    bool m_bSettled = true;              ///< the handle has them
    bool m_bOpened = false;
    bool m_bReady = false;
    bool m_bTransactionInProgress = false;
    int m_iLastErrorCode = 0;
    std::string m_strLastError;
    std::map<std::string, std::string> m_mapSchema;
    VKsysEventLogInterface* m_pTraceLogger = nullptr;
};
