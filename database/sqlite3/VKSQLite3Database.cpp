#include "VKSQLite3Database.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include "VKDBexception.h"
#include "VKSQLite3Retry.h"
#include "VKSqlTransaction.h"

namespace {

constexpr int kOpenAttempts = 50;
constexpr unsigned int kOpenPauseMicroseconds = 500000;
constexpr int kBusyTimeoutMs = 60000;

} // namespace

VKSQLite3Database::VKSQLite3Database(const std::string& path, bool skipSchemaCheck) : m_strPath(path)
{
    Construct(skipSchemaCheck);
}

VKSQLite3Database::VKSQLite3Database(const std::string& path, const std::map<std::string, std::string>& schema,
                                     bool skipSchemaCheck)
    : m_strPath(path)
{
    if (!SetSchema(schema))
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Unable to set DB schema.");
    Construct(skipSchemaCheck);
}

VKSQLite3Database::VKSQLite3Database(const std::string& path, const VKSQLite3TableDesc* tables, int count,
                                     bool skipSchemaCheck)
    : m_strPath(path)
{
    if (!SetSchema(tables, count))
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Unable to set DB schema.");
    Construct(skipSchemaCheck);
}

VKSQLite3Database::~VKSQLite3Database() { CloseDatabase(); }

void VKSQLite3Database::Construct(bool skipSchemaCheck)
try {
    RefuseMissingDirectory();
    if (!OpenDatabase(false))
        throw VKDBexception(m_iLastErrorCode, __FILE__, __LINE__, "Unable to open DB [" + m_strPath + "]",
                            m_strLastError);
    RefuseDamagedFile();
    if (!InitializeDatabase(skipSchemaCheck))
        throw VKDBexception(m_iLastErrorCode, __FILE__, __LINE__, "Unable to initialize DB.", m_strLastError);
} catch (...) {
    CloseDatabase();
    throw;
}

/// No wait makes a directory appear, so this fails at once where the open loop would try for 25 seconds.
void VKSQLite3Database::RefuseMissingDirectory() const
{
    const std::size_t slash = m_strPath.find_last_of('/');
    if (slash == std::string::npos)
        return;
    const std::string directory = m_strPath.substr(0, slash + 1);
    struct stat info;
    if (stat(directory.c_str(), &info) != 0)
        throw VKDBexception(SQLITE_CANTOPEN, __FILE__, __LINE__, "Unable to open DB [" + m_strPath + "]",
                            "the directory " + directory + " does not exist or cannot be entered");
    if (stat(m_strPath.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        throw VKDBexception(SQLITE_CANTOPEN, __FILE__, __LINE__, "Unable to open DB [" + m_strPath + "]",
                            "this is a directory");
}

/// A file that is no database or was cut short does not heal either, but its codes count as retryable. Reading the
/// header under a lock tells; all other failures are left to the statements that follow.
void VKSQLite3Database::RefuseDamagedFile()
{
    sqlite3_busy_timeout(m_pHandle, kBusyTimeoutMs);
    const int code = sqlite3_exec(m_pHandle, "PRAGMA schema_version;", nullptr, nullptr, nullptr);
    if ((code & 0xFF) == SQLITE_NOTADB || (code & 0xFF) == SQLITE_CORRUPT) {
        StoreError(code);
        throw VKDBexception(code, __FILE__, __LINE__, "Unable to open DB [" + m_strPath + "]", m_strLastError);
    }
}

bool VKSQLite3Database::OpenDatabase(bool markReady)
{
    if (m_bOpened)
        return true;
    ClearError();
    for (int attempt = 0; attempt < kOpenAttempts; ++attempt) {
        const int code = sqlite3_open(m_strPath.c_str(), &m_pHandle);
        if (code == SQLITE_OK) {
            ClearError();
            sqlite3_extended_result_codes(m_pHandle, 1);
            m_bOpened = true;
            m_bSettled = m_settings.empty();
            m_bReady = markReady;
            return true;
        }
        StoreError(code);
        sqlite3_close(m_pHandle); // a failed open leaves a handle that only carries the error
        m_pHandle = nullptr;
        if (!vk::IsRetryable(code))
            return false;
        vk::RetryPause(kOpenPauseMicroseconds);
    }
    return false;
}

bool VKSQLite3Database::CloseDatabase()
{
    if (!m_bOpened)
        return true;
    ClearError();
    for (int attempt = 0; attempt < kOpenAttempts; ++attempt) {
        const int code = sqlite3_close(m_pHandle);
        if (code == SQLITE_OK) {
            ClearError();
            m_pHandle = nullptr;
            m_bOpened = m_bReady = m_bTransactionInProgress = false;
            return true;
        }
        StoreError(code);
        if (!vk::IsRetryable(code))
            return false;
        vk::RetryPause(kOpenPauseMicroseconds);
    }
    return false;
}

void VKSQLite3Database::RefreshDatabase()
{
    if (m_bOpened)
        CloseDatabase();
    RefuseMissingDirectory();
    if (!OpenDatabase(false))
        throw VKDBexception(m_iLastErrorCode, __FILE__, __LINE__, "Unable to open DB [" + m_strPath + "]",
                            m_strLastError);
    if (!InitializeDatabase(true))
        throw VKDBexception(m_iLastErrorCode, __FILE__, __LINE__, "Unable to initialize DB.", m_strLastError);
}

bool VKSQLite3Database::InitializeDatabase(bool skipSchemaCheck)
{
    if (!m_bOpened)
        return false;
    sqlite3_busy_timeout(m_pHandle, kBusyTimeoutMs);
    m_bReady = skipSchemaCheck || CheckNCreateSchema();
    return true;
}

bool VKSQLite3Database::ExecuteSelectQuery(const std::string& query, VKSQLite3ResultSet& result)
{
    if (!m_bReady)
        return false;
    ClearError();
    char** table = nullptr;
    char* message = nullptr;
    int rows = 0;
    int columns = 0;
    const int code = sqlite3_get_table(m_pHandle, query.c_str(), &table, &rows, &columns, &message);
    if (StoreError(code, message) != SQLITE_OK)
        throw VKDBexception(code, __FILE__, __LINE__, "Unable to execute SELECT query [" + query + "].",
                            m_strLastError);
    result.SetDataSet(table, rows, columns);
    return true;
}

int VKSQLite3Database::ExecuteUpdateQueryCallback(void*, int, char**, char**) { return 0; }

bool VKSQLite3Database::ExecuteUpdateQuery(const std::string& query, VKSQLite3ResultSet& result)
{
    if (!m_bReady)
        return false;
    ClearError();
    char* message = nullptr;
    const int code = sqlite3_exec(m_pHandle, query.c_str(), ExecuteUpdateQueryCallback, nullptr, &message);
    if (StoreError(code, message) != SQLITE_OK)
        throw VKDBexception(code, __FILE__, __LINE__, "Unable to execute UPDATE query [" + query + "].",
                            m_strLastError);
    result.SetDataSet(sqlite3_changes(m_pHandle));
    return true;
}

bool VKSQLite3Database::ExecuteInsertQuery(const std::string& query, VKSQLite3ResultSet& result, unsigned long& id)
{
    if (!ExecuteUpdateQuery(query, result)) // its failure says UPDATE for an insert as well, which is meant
        return false;
    const sqlite3_int64 rowId = sqlite3_last_insert_rowid(m_pHandle);
    id = rowId < 0 ? 0 : static_cast<unsigned long>(rowId);
    return true;
}

bool VKSQLite3Database::SelectQueryTransaction(const std::string& query, VKSQLite3ResultSet& result)
{
    vk::Transaction transaction(*this, vk::TransactionLock::Shared);
    return transaction.IsOpen() && ExecuteSelectQuery(query, result) && transaction.Commit();
}

bool VKSQLite3Database::InsertQueryTransaction(const std::string& query, VKSQLite3ResultSet& result, unsigned long& id)
{
    vk::Transaction transaction(*this, vk::TransactionLock::Exclusive);
    return transaction.IsOpen() && ExecuteInsertQuery(query, result, id) && transaction.Commit();
}

bool VKSQLite3Database::IsAutoCommitEnabled() const { return m_bOpened && sqlite3_get_autocommit(m_pHandle) != 0; }
bool VKSQLite3Database::DisableAutoCommit() { return RunPlain("BEGIN;"); }
bool VKSQLite3Database::EnableAutoCommit() { return RunPlain("COMMIT;"); }

bool VKSQLite3Database::SetSynchronousMode(int mode)
{
    return Set("PRAGMA synchronous=" + std::to_string(mode) + ";");
}

bool VKSQLite3Database::SetJournalMode(const std::string& mode) { return Set("PRAGMA journal_mode=" + mode + ";"); }

bool VKSQLite3Database::Set(const std::string& setting)
{
    if (!RunPlain(setting))
        return false;
    m_settings.push_back(setting);
    return true;
}

/// Gives a new handle the settings of the one before. Another process may have the file just now; then they wait.
void VKSQLite3Database::Settle()
{
    if (m_bSettled || !m_bOpened)
        return;
    m_bSettled = true;
    sqlite3_busy_timeout(m_pHandle, 0);
    for (const std::string& setting : m_settings)
        m_bSettled &= sqlite3_exec(m_pHandle, setting.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_busy_timeout(m_pHandle, kBusyTimeoutMs);
}

bool VKSQLite3Database::IsStale() const
{
    int moved = 0;
    return m_bOpened && (sqlite3_db_readonly(m_pHandle, "main") == 1 ||
                         (sqlite3_file_control(m_pHandle, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK &&
                          moved != 0));
}

std::string VKSQLite3Database::WhyRefused() const
{
    const int code = m_iLastErrorCode & 0xFF;
    return code == SQLITE_OK || code == SQLITE_BUSY || code == SQLITE_LOCKED ? "it is in use" : m_strLastError;
}

bool VKSQLite3Database::DefineScalarSQLFunction(const std::string& name, ScalarFunction function, int argCount,
                                                int textEncoding)
{
    if (name.empty() || function == nullptr || !m_bOpened)
        return false;
    return StoreError(sqlite3_create_function(m_pHandle, name.c_str(), argCount, textEncoding, nullptr, function,
                                              nullptr, nullptr)) == SQLITE_OK;
}

bool VKSQLite3Database::RunPlain(const std::string& statement)
{
    VKSQLite3ResultSet result;
    return ExecuteUpdateQuery(statement, result);
}

void VKSQLite3Database::ClearError()
{
    m_iLastErrorCode = SQLITE_OK;
    m_strLastError.clear();
}

/// Keeps a result code with the handle's text; gives the code back.
int VKSQLite3Database::StoreError(int code)
{
    m_iLastErrorCode = code;
    m_strLastError = code == SQLITE_OK ? "" : m_pHandle ? sqlite3_errmsg(m_pHandle) : sqlite3_errstr(code);
    return code;
}

/// Keeps what a statement failed with.
void VKSQLite3Database::StoreError(const VKDBexception& failure)
{
    m_iLastErrorCode = failure.GetErrorCode();
    m_strLastError = failure.GetSysMsg();
}

/// Keeps a result code with the text that came with it, which is freed; gives the code back.
int VKSQLite3Database::StoreError(int code, char* sqliteMessage)
{
    if (sqliteMessage == nullptr)
        return StoreError(code);
    m_iLastErrorCode = code;
    m_strLastError = sqliteMessage;
    sqlite3_free(sqliteMessage);
    return code;
}
