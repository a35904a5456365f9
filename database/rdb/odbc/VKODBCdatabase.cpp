#include "VKODBCdatabase.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "VKDBexception.h"
#include "VKDBsystem.h"
#include "VKDriverOutput.h"
#include "VKODBCstatement.h"
#include "VKOracleCall.h"
#include "VKRDBiDataSet.h"

using vk::OdbcBytes;
using vk::OdbcError;
using vk::OdbcStatement;

namespace {

std::string Formatted(const char* format, va_list values)
{
    va_list again;
    va_copy(again, values);
    const int size = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (size < 0)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "The statement cannot be formatted.");
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, values);
    text.pop_back();
    return text;
}

VKRDBiDataSet* NewTable(vk::OdbcResult result)
{
    return std::make_unique<VKRDBiDataSet>(std::move(result.columns), std::move(result.rows)).release();
}

/// A name as it may stand in a statement without quotes.
const std::string& RequireName(const std::string& name)
{
    for (const char c : name)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0 && std::string_view("_$#.").find(c) == std::string_view::npos)
            throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                                "[" + name + "] is no name of a sequence.");
    if (name.empty())
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "The name of a sequence is missing.");
    return name;
}

} // namespace

VKRDBiDatabase* VKRDBiDatabase::GetInstance(int type, VKsysEventLogInterface*)
{
    if (type != 0)
        return std::make_unique<VKRDBiDatabase>().release();
    return std::make_unique<VKODBCdatabase>().release();
}

VKODBCdatabase::VKODBCdatabase() = default;
VKODBCdatabase::~VKODBCdatabase() { Free(); }

std::string VKODBCdatabase::PreprocessSqlStringCopy(const std::string& text, std::size_t maxLen)
{
    std::string out;
    for (const char c : text)
        out.append(c == '\'' ? 2 : 1, c);
    if (maxLen != 0 && out.size() > maxLen)
        out.resize(maxLen);
    return out;
}

void VKODBCdatabase::ThrowConnectionError(const char* what) const
{
    const OdbcError error = vk::ReadOdbcError(SQL_HANDLE_DBC, m_hConnection);
    if (error.connectionLost)
        VKDBsystem::NoteLostConnection();
    throw VKDBexception(error.code, __FILE__, __LINE__, what + (" [" + GetSourceName()) + "]: " + error.text, error.text);
}

bool VKODBCdatabase::Open(const std::string& connect, const std::string& user, const std::string& password, bool isDSN,
                          bool)
{
    const vk::DriverOutput output(true);
    Free();
    m_strWhyClosed.clear();
    m_strConnect = connect;
    m_strUser = user;
    m_strPassword = password;
    m_bDSN = isDSN;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &m_hEnvironment)))
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Failed to allocate ODBC environment");
    SQLSetEnvAttr(m_hEnvironment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    // An administrator who has set the variable means another file.
    setenv("ODBCINI", "/usr/local/vardock/config/odbc.ini", 0);
    SQLAllocHandle(SQL_HANDLE_DBC, m_hEnvironment, &m_hConnection);
    SQLCHAR told[1024];
    SQLSMALLINT toldLength = 0;
    const SQLRETURN result =
        isDSN ? SQLConnect(m_hConnection, OdbcBytes(connect), SQL_NTS, OdbcBytes(user), SQL_NTS, OdbcBytes(password), SQL_NTS)
              : SQLDriverConnect(m_hConnection, nullptr, OdbcBytes(connect), SQL_NTS, told, sizeof told, &toldLength,
                                 SQL_DRIVER_NOPROMPT);
    if (SQL_SUCCEEDED(result)) {
        m_bDriverPrints = GetInfo(SQL_DRIVER_NAME).rfind("psqlodbc", 0) != 0;
        return true;
    }
    const OdbcError error = vk::ReadOdbcError(SQL_HANDLE_DBC, m_hConnection);
    Free();
    throw VKDBexception(error.code, __FILE__, __LINE__, error.text);
}

bool VKODBCdatabase::ReOpen()
{
    const std::string connect = m_strConnect;
    const std::string user = m_strUser;
    const std::string password = m_strPassword;
    return Open(connect, user, password, m_bDSN, true);
}

void VKODBCdatabase::Free()
{
    m_pending.reset();
    if (m_hConnection != SQL_NULL_HDBC) {
        // A connection with an open transaction does not disconnect.
        SQLEndTran(SQL_HANDLE_DBC, m_hConnection, SQL_ROLLBACK);
        SQLDisconnect(m_hConnection);
        SQLFreeHandle(SQL_HANDLE_DBC, m_hConnection);
    }
    if (m_hEnvironment != SQL_NULL_HENV)
        SQLFreeHandle(SQL_HANDLE_ENV, m_hEnvironment);
    m_hConnection = SQL_NULL_HDBC;
    m_hEnvironment = SQL_NULL_HENV;
}

bool VKODBCdatabase::Close()
{
    Free();
    return true;
}

bool VKODBCdatabase::TestConnection() { return ExecuteCommand("SELECT 1;"); }

bool VKODBCdatabase::TestNReconnect()
{
    try {
        if (TestConnection())
            return true;
    } catch (...) { // what the test is for
    }
    try {
        Close();
        return ReOpen();
    } catch (const std::exception& failure) { // told by false; the next statement tells why
        m_strWhyClosed = failure.what();
        return false;
    }
}

void VKODBCdatabase::RequireOpen() const
{
    if (m_hConnection == SQL_NULL_HDBC)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                            "The data source [" + GetSourceName() + "] is not open.", m_strWhyClosed);
}

template <class Body> auto VKODBCdatabase::Run(const std::string& text, Body&& body)
{
    RequireOpen();
    m_pending.reset();
    // Not for a driver that prints nothing: other threads' output would go astray for nothing.
    const vk::DriverOutput output(m_bDriverPrints);
    auto statement = std::make_unique<OdbcStatement>(m_hConnection, text, VKDBsystem::isOracle);
    m_lRows = statement->TouchedRows();
    return body(statement);
}

/// All results are read, since each may tell of an error; the last one counts.
vk::OdbcResult VKODBCdatabase::RunToLastResult(const std::string& text, const vk::OdbcPage& page)
{
    return Run(text, [&](const std::unique_ptr<OdbcStatement>& statement) {
        vk::OdbcResult last;
        for (; statement->HasResult(); statement->Next())
            last = statement->Read(page);
        return last;
    });
}

bool VKODBCdatabase::ExecuteQuery(const std::string& text, VKRDBiDataSet*& dataSet)
{
    return ExecuteQuerySet(text, dataSet, 0, 0);
}

bool VKODBCdatabase::ExecuteQuerySet(const std::string& text, VKRDBiDataSet*& dataSet, int first, int count)
{
    dataSet = nullptr;
    dataSet = NewTable(RunToLastResult(text, {first, count}));
    return true;
}

bool VKODBCdatabase::ExecuteQueryMultiSet(const std::string& text, VKRDBiDataSet*& dataSet, bool& more, int first,
                                          int count)
{
    dataSet = nullptr;
    more = false;
    Run(text, [&](std::unique_ptr<OdbcStatement>& statement) { m_pending = std::move(statement); });
    m_pendingPage = {first, count};
    return getRSData(dataSet, more);
}

/// Stands on the next result already when it returns: only so is it known whether there is one.
bool VKODBCdatabase::getRSData(VKRDBiDataSet*& dataSet, bool& more)
{
    dataSet = nullptr;
    more = false;
    std::unique_ptr<OdbcStatement> statement = std::move(m_pending);
    if (statement == nullptr || !statement->HasResult())
        return false;
    const vk::DriverOutput output(m_bDriverPrints);
    vk::OdbcResult result = statement->Read(m_pendingPage);
    more = statement->Next();
    dataSet = NewTable(std::move(result));
    if (more)
        m_pending = std::move(statement);
    return true;
}

bool VKODBCdatabase::ExecuteQuery(VKRDBiDataSet*& dataSet, const char* format, ...)
{
    dataSet = nullptr;
    va_list values;
    va_start(values, format);
    const std::string text = Formatted(format, values);
    va_end(values);
    return ExecuteQuery(text, dataSet);
}

bool VKODBCdatabase::ExecuteCommandFormat(const char* format, ...)
{
    va_list values;
    va_start(values, format);
    const std::string text = Formatted(format, values);
    va_end(values);
    return ExecuteCommand(text);
}

bool VKODBCdatabase::ExecuteCommand(const std::string& text)
{
    RunToLastResult(text);
    return true;
}

bool VKODBCdatabase::ExecuteSelectQuery(const std::string& text, VKODBCResultSet& result)
{
    vk::OdbcResult last = RunToLastResult(text);
    result.Clear();
    for (VKDBiRow& row : last.rows)
        result.Add(std::move(row));
    result.SetEffectedRowsCount(static_cast<int>(m_lRows));
    return true;
}

bool VKODBCdatabase::ExecuteUpdateQuery(const std::string& text, VKODBCResultSet& result)
{
    return ExecuteSelectQuery(text, result);
}

bool VKODBCdatabase::ExecuteInsertQuery(const std::string& text, VKODBCResultSet& result, unsigned long& id)
{
    ExecuteSelectQuery(text, result);
    id = result[0][0].GetValueULong();
    return true;
}

unsigned long VKODBCdatabase::GetLastRowInsertID(DatabaseType type, const std::string& sequenceName)
{
    std::string text = "SELECT ID = @@IDENTITY, ErrorCode = @@ERROR";
    if (type == DatabaseTypeOracle)
        text = "SELECT " + RequireName(sequenceName) + ".currval AS ID, 0 AS ErrorCode FROM dual";
    else if (type == DatabaseTypePostgreSql)
        text = "SELECT currval('" + RequireName(sequenceName) + "') AS ID, 0 AS ErrorCode";
    VKODBCResultSet result;
    ExecuteSelectQuery(text, result);
    return result[0]["ID"].GetValueULong();
}

std::string VKODBCdatabase::oracleQueryFixForUnix(const std::string& text, SQLHSTMT statement)
{
    const vk::OracleCall call = vk::WithoutCursorParameters(text);
    if (!call.cursor.empty())
        SQLSetCursorName(statement, OdbcBytes(call.cursor), SQL_NTS);
    return call.text;
}

void VKODBCdatabase::GetSQLError(SQLRETURN result, SQLHSTMT statement, std::string& text)
{
    text.clear();
    if (!SQL_SUCCEEDED(result))
        text = vk::ReadOdbcError(SQL_HANDLE_STMT, statement).text;
}

void VKODBCdatabase::SetAutoCommit(bool on)
{
    RequireOpen();
    const SQLULEN value = on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
    if (!SQL_SUCCEEDED(SQLSetConnectAttr(m_hConnection, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(value), 0)))
        ThrowConnectionError("Unable to change the transaction mode of");
}

bool VKODBCdatabase::BeginTransaction()
{
    SetAutoCommit(false);
    return true;
}

bool VKODBCdatabase::EndTransaction(SQLSMALLINT how)
{
    RequireOpen();
    m_pending.reset();
    if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, m_hConnection, how)))
        ThrowConnectionError("Unable to end a transaction on");
    SetAutoCommit(true);
    return true;
}

std::string VKODBCdatabase::GetServerName() { return IsOpen() ? GetInfo(SQL_DBMS_NAME) : ""; }

std::string VKODBCdatabase::GetInfo(SQLUSMALLINT what) const
{
    SQLCHAR text[128] = {};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(m_hConnection, what, text, sizeof text, &length)))
        return "";
    return reinterpret_cast<const char*>(text);
}
